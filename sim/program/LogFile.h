#pragma once

#include <ostream>
#include <sstream>
#include <string>

namespace sim {

// A file that lines are added to. It never holds the chip up: what a pipe does not take at once is dropped.
class LogFile {
public:
    // The file of that name, made if there is none. False and a message when it cannot be written.
    bool open(const std::string &path, std::string &error);

    std::ostream &stream() { return m_stream; }

private:
    class Lines : public std::stringbuf {
    public:
        Lines() : std::stringbuf(std::ios::out) {}
        ~Lines() override;
        int fd = -1;

    protected:
        int sync() override;
    };

    Lines m_lines;
    std::ostream m_stream{&m_lines};
};

} // namespace sim
