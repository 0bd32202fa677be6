#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zvbl {

// The log of a link, written to the file that ZVBL_TRACE names, if it names one. A line is written in
// one piece to the end of the file, so several links and processes can share it. A file that can't be
// written changes nothing for the link. With ZVBL_TRACE_DATA=no, data of READ and WRITE are only counted. Text may come
// from anybody: what is not printable is written as \xNN. docs/troubleshooting-trace.md tells how it reads.
class Trace {
public:
    // The port's name stands in every line, the name of the link's kind in the first line of the run.
    Trace(const std::string &port, const char *link);
    ~Trace();
    Trace(const Trace &) = delete;
    Trace &operator=(const Trace &) = delete;

    void sent(const std::uint8_t *bytes, std::size_t count) { line('>', bytes, count); }
    void received(const std::uint8_t *bytes, std::size_t count) { line('<', bytes, count); }
    // What is discarded in a row is listed up to a limit, and from there on counted: a device that never
    // stops talking does not fill the disk.
    void discarded(const std::uint8_t *bytes, std::size_t count);
    // A frame of a bus as text: its identifier, and the bytes in hexadecimal.
    void sent(const std::string &text) { frame('>', text); }
    void received(const std::string &text) { frame('<', text); }
    void discarded(const std::string &text);
    void remark(const std::string &text) { write('#', text); }
    bool on() const { return m_file >= 0; }

    // What lies between the two is one command. After a packet that failed, its data may still be under way until a
    // command succeeds.
    void beginExchange(bool isRead, bool isWrite);
    void endExchange(bool succeeded);

private:
    bool hides(char mark, std::size_t count, bool plain);
    void frame(char mark, const std::string &text);
    void line(char mark, const std::uint8_t *bytes, std::size_t count);
    void write(char mark, const std::string &text);
    void put(char mark, const std::string &text);
    void tellCount();

    std::string m_port;
    int m_file = -1;
    bool m_showsData = true;
    bool m_mayHear = false;    // data of a packet
    bool m_sendsData = false;  // the command is WRITE
    int m_sentInCommand = 0;   // lines
    std::size_t m_listed = 0;  // bytes, of those that were discarded in a row
    std::size_t m_counted = 0; // the rest of them
};

} // namespace zvbl
