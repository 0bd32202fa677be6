#pragma once

#include <ostream>
#include <string>

namespace sim {

// Where the simulator says what happens. Refusals, what the host sent in vain, and faults are always told,
// the rest only when verbose.
class Log {
public:
    Log(std::ostream &out, bool verbose) : m_out(out), m_verbose(verbose) {}

    void refused(const std::string &text) { m_out << "refused: " << text << std::endl; }
    void ignored(const std::string &text) { m_out << "ignored: " << text << std::endl; }
    void fault(const std::string &text) { m_out << "fault: " << text << std::endl; }
    void note(const std::string &text) {
        if (m_verbose)
            m_out << text << std::endl;
    }

private:
    std::ostream &m_out;
    bool m_verbose;
};

} // namespace sim
