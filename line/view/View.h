#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "line/view/State.h"

// Shows a line to its operator, and hears the operator's keys. Whoever works the line polls for it.
class View {
public:
    using Clock = std::chrono::steady_clock;

    View() = default;
    virtual ~View() = default;
    View(const View &) = delete;
    View &operator=(const View &) = delete;

    // The state as it is now. Every state that is given may be seen; a screen shows the last one.
    virtual void show(const State &state) = 0;

    // To be polled for reading. After one is readable, and at the time that next() tells, work() has to be called.
    virtual std::vector<int> descriptors() const = 0;
    virtual Clock::time_point next() const = 0;

    // Draws what is due, and returns the nests whose keys were pressed.
    virtual std::vector<std::size_t> work() = 0;
};

// A screen where standard output is a terminal that can have one; else a line for each event. The keys come from
// standard input where that is a terminal, or where they are what begins a unit: else it belongs to whoever started us.
// The terminal is as it was after the view has gone.
std::unique_ptr<View> makeView(bool keysBegin);
