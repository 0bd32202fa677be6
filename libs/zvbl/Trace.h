#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zvbl {

// The log of a link, written to the file that ZVBL_TRACE names, if it names one. A line is written in
// one piece to the end of the file, so several links and processes can share it. A file that can't be
// written changes nothing for the link. Text may come from anybody: what is not printable is written as
// \xNN. docs/troubleshooting-trace.md tells how it reads.
class Trace {
public:
    explicit Trace(const std::string &port); // the port's name stands in every line
    ~Trace();
    Trace(const Trace &) = delete;
    Trace &operator=(const Trace &) = delete;

    void sent(const std::uint8_t *bytes, std::size_t count) { line('>', bytes, count); }
    void received(const std::uint8_t *bytes, std::size_t count) { line('<', bytes, count); }
    // What is discarded in a row is listed up to a limit, and from there on counted: a device that never
    // stops talking does not fill the disk.
    void discarded(const std::uint8_t *bytes, std::size_t count);
    // What is more than bytes, as text.
    void sent(const std::string &text) { write('>', text); }
    void received(const std::string &text) { write('<', text); }
    void discarded(const std::string &text);
    void remark(const std::string &text) { write('#', text); }
    bool on() const { return m_file >= 0; }

private:
    void line(char mark, const std::uint8_t *bytes, std::size_t count);
    void write(char mark, const std::string &text);
    void put(char mark, const std::string &text);
    void tellCount();

    std::string m_port;
    int m_file = -1;
    std::size_t m_listed = 0;  // bytes, of those that were discarded in a row
    std::size_t m_counted = 0; // the rest of them
};

} // namespace zvbl
