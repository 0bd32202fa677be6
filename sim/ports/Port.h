#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sim/bootloader/Board.h"
#include "sim/links/Passage.h"

namespace sim {

// A chip under power, and what a port needs to serve it.
struct Machine {
    Chip &chip;
    Faults &faults;
    Log &log;
    Wiring wiring;        // of the board
    bool pace;            // the line takes the time that it needs
    unsigned unit;        // which of the chips of its kind it is
    unsigned beside;      // further chips of the same kind
    std::size_t spimSize; // of those, in bytes
    const FlashTime flashTime;
};

// The number of a chip of its kind: of the one that is unit `unit`, or the `beside`-th one beside it, 1 to 16.
inline unsigned numberOf(unsigned unit, unsigned beside) {
    constexpr unsigned together = 17;
    return together * unit + beside;
}

// Whether a port has been quiet for a moment: the time to save the chip's state.
class Rest {
public:
    static constexpr Nanoseconds quiet = 20 * millisecond;

    // Something went by. Whether the port was at rest until then.
    bool disturb(Nanoseconds now) {
        m_lastTraffic = now;
        return std::exchange(m_resting, false);
    }

    // When the rest begins, if nothing goes by.
    std::optional<Nanoseconds> due() const { return m_resting ? std::nullopt : std::optional(m_lastTraffic + quiet); }
    void begin() { m_resting = true; }

private:
    Nanoseconds m_lastTraffic = 0;
    bool m_resting = true;
};

// Where the chip meets its host. A port has no loop of its own and waits for nobody: whoever runs it calls
// work() when one of fds() is readable, and no later than due().
class Port {
public:
    virtual ~Port() = default;

    // Makes the port: at the start, and again after an unplugging by a fault. False and a message.
    virtual bool plugIn(std::string &error) = 0;
    virtual void unplug() = 0;

    // What the line "ready ..." has to tell: each time that the port can be used anew, once. Else empty.
    virtual std::string takeReady() = 0;

    virtual void reset(Nanoseconds now) = 0;     // the reset button
    virtual void losePower(Nanoseconds now) = 0; // and it is back, with the port plugged in again

    // Takes in and gives out what is due. False and a message when the port cannot be used any more.
    virtual bool work(Nanoseconds now, std::string &error) = 0;
    virtual std::vector<int> fds() const = 0;
    virtual std::optional<Nanoseconds> due(Nanoseconds now) = 0;

    // Unplugged by a fault, and all that was to be delivered before that is; or gone for good.
    virtual std::optional<Hangup> hangup() const = 0;

    // Waits a moment until the host has what was given: an unplugging takes away what is unread.
    virtual void drain() {}

    // At the very end: waits, but not for long, for those who still use the port.
    virtual void awaitClients() {}

    // Held while any of the above is called, where other threads serve the port too.
    virtual std::unique_lock<std::mutex> hold() { return {}; }

    Rest &rest() { return m_rest; }

protected:
    Rest m_rest;
};

} // namespace sim
