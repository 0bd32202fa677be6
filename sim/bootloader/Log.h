#pragma once

#include <ostream>
#include <string>

namespace sim {

// Where the simulator says what happens. Refusals, what the host sent in vain, and faults are always told,
// the rest only when verbose.
class Log {
public:
    Log(std::ostream &out, bool verbose) : out_(out), verbose_(verbose) {}

    void refused(const std::string &text) { out_ << "refused: " << text << std::endl; }
    void ignored(const std::string &text) { out_ << "ignored: " << text << std::endl; }
    void fault(const std::string &text) { out_ << "fault: " << text << std::endl; }
    void note(const std::string &text) {
        if (verbose_)
            out_ << text << std::endl;
    }

private:
    std::ostream &out_;
    bool verbose_;
};

} // namespace sim
