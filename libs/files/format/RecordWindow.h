#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "libs/files/InputFile.h"
#include "libs/files/Status.h"

namespace files {

// A small window that moves along a text file record by record, so that memory does not grow with
// the file.
class RecordWindow {
public:
    // No record of any format is longer: a mark, 260 pairs of digits and the line's end fit.
    static constexpr std::size_t maxRecord = 600;

    explicit RecordWindow(InputFile &file);

    // Goes to the next record over line ends and blanks, and at the start over a byte order mark. Afterwards the whole
    // record is at begin(), as far as the file has it; `found` is false at the end of the file.
    Status next(bool &found) {
        for (;;) {
            while (m_at != m_end && isBlank(*m_at))
                ++m_at;
            if (available() >= maxRecord || m_atFileEnd) {
                found = m_at != m_end;
                return Status::ok;
            }
            const Status filled = refill();
            if (filled != Status::ok)
                return filled;
        }
    }

    const unsigned char *begin() const { return m_at; }
    std::size_t available() const { return static_cast<std::size_t>(m_end - m_at); }

    // Of begin(), in the file.
    std::uint64_t offset() const { return m_read - available(); }

    // Passes over a record of that many characters; false when it runs on after them.
    bool pass(std::size_t characters) {
        m_at += characters;
        return m_at == m_end || isBlank(*m_at) || *m_at == textEnd;
    }

    // Where next() has found something: passes over a Ctrl-Z, which old editors leave at the end of a text; false if it
    // is none.
    bool passTextEnd() {
        if (*m_at != textEnd)
            return false;
        ++m_at;
        return true;
    }

private:
    static constexpr unsigned char textEnd = 0x1A;

    static bool isBlank(unsigned char c) { return c == '\n' || c == '\r' || c == ' ' || c == '\t'; }
    Status refill();

    InputFile &m_file;
    std::vector<unsigned char> m_buffer;
    const unsigned char *m_at;
    const unsigned char *m_end;
    std::uint64_t m_read = 0; // bytes of the file
    bool m_started = false;
    bool m_atFileEnd = false;
};

} // namespace files
