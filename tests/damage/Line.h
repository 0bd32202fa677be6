#pragma once

#include <algorithm>
#include <deque>
#include <memory>
#include <sstream>
#include <vector>

#include "libs/zvbl/Bytes.h"
#include "libs/zvbl/Timing.h"
#include "sim/bootloader/Bootloader.h"
#include "tests/damage/Damage.h"
#include "tests/damage/VirtualTime.h"

namespace damage {

// A simulated chip, and the line to it that does harm. The library's port of that kind ends at the line that was
// made last.
class Line {
public:
    Line(const sim::ChipFacts &facts, const sim::CommandTable *variants = nullptr,
         const sim::CommandTable *additions = nullptr);
    virtual ~Line() = default;

    Lane toChip;
    Lane toHost;

    sim::Cells &flash(); // of the chip
    sim::Chip &chip() { return m_chip; }
    sim::Faults &faults() { return m_faults; } // for the power: all else goes wrong in the lanes
    bool isGone() const { return toChip.isGone() || toHost.isGone(); }

    // Whether harm befell what no check guards, so that one command became another.
    virtual bool becameAnother() const { return false; }

private:
    sim::Faults m_faults;
    std::ostringstream m_said;
    sim::Log m_log{m_said, false};
    sim::Chip m_chip;

protected:
    sim::Log &log() { return m_log; }

    sim::Bootloader bootloader;
};

// What is on its way to the host, with the times at which it is there.
template <class Timed>
class Arrivals {
public:
    template <class Harm>
    void add(const std::vector<Timed> &sent, Lane &lane, Harm harm) {
        for (const Lane::Unit &unit : lane.pass(sent.size())) {
            Timed timed = sent[unit.index];
            harm(timed, unit.mask);
            m_last = timed.at = std::max(timed.at + unit.late, m_last);
            m_timed.push_back(timed);
        }
    }

    // Whether something is there now, or comes before the deadline: then that is now.
    bool await(zvbl::TimePoint deadline) {
        const sim::Nanoseconds until = deadline.time_since_epoch().count();
        if (!m_timed.empty() && m_timed.front().at <= until)
            advanceTo(m_timed.front().at);
        if (!m_timed.empty() && m_timed.front().at <= now())
            return true;
        advanceTo(until);
        return false;
    }

    Timed take() {
        Timed timed = m_timed.front();
        m_timed.pop_front();
        return timed;
    }
    void clear() { m_timed.clear(); }

private:
    std::deque<Timed> m_timed;
    sim::Nanoseconds m_last = 0;
};

std::unique_ptr<Line> makeUsartLine(const sim::ChipFacts &facts);
std::unique_ptr<Line> makeCanLine(const sim::ChipFacts &facts);
std::unique_ptr<Line> makeI2cLine(const sim::ChipFacts &facts);
std::unique_ptr<Line> makeSpiLine(const sim::ChipFacts &facts);
std::unique_ptr<Line> makeDfuLine(const sim::ChipFacts &facts);
std::unique_ptr<Line> makeSlcanLine(const sim::ChipFacts &facts);

} // namespace damage
