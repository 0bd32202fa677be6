#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zvbl {

// The log of a link, written to the file that ZVBL_TRACE names, if it names one. A line is written in
// one piece to the end of the file, so several links and processes can share it. A file that can't be
// written changes nothing for the link. docs/troubleshooting-trace.md tells how it reads.
class Trace {
public:
    explicit Trace(std::string port); // the port's name stands in every line
    ~Trace();
    Trace(const Trace &) = delete;
    Trace &operator=(const Trace &) = delete;

    void sent(const std::uint8_t *bytes, std::size_t count) { line('>', bytes, count); }
    void received(const std::uint8_t *bytes, std::size_t count) { line('<', bytes, count); }
    void discarded(const std::uint8_t *bytes, std::size_t count) { line('x', bytes, count); }
    // What is more than bytes, as text.
    void sent(const std::string &text) { write('>', text); }
    void received(const std::string &text) { write('<', text); }
    void discarded(const std::string &text) { write('x', text); }
    void remark(const std::string &text) { write('#', text); }
    bool on() const { return m_file >= 0; }

private:
    void line(char mark, const std::uint8_t *bytes, std::size_t count);
    void write(char mark, const std::string &text);

    std::string m_port;
    int m_file = -1;
};

} // namespace zvbl
