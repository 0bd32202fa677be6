#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <poll.h>

#include "line/channel/Channel.h"
#include "line/station/Station.h"
#include "programs/Descriptor.h"

// How a program of the site ended.
struct HookEnd {
    std::string failure; // why it does not count, empty where it ended well in its time; from outside in part
    std::string output;  // what it wrote to standard output
};

// A program of the site, run once for one unit: without a shell, in a session and an environment of its own, for so
// many seconds, with so much output at most. Whoever waits in poll() drives it; nothing here waits.
class Hook {
public:
    using Clock = std::chrono::steady_clock;

    // Starts it; it reads this JSON from standard input. Throws nothing that a hook is the reason of: that is its end.
    // The call has to live longer.
    Hook(const HookCall &call, const Json &said);
    Hook(HookCall &&, const Json &) = delete;
    // It, and what it has started, is killed where it still runs.
    ~Hook();
    Hook(const Hook &) = delete;
    Hook &operator=(const Hook &) = delete;

    // Adds what is to be waited for, until the deadline. At the end there is nothing to wait for, and the deadline has
    // passed: one that could not be started is at its end from the beginning.
    void watch(std::vector<pollfd> &all) const;
    Clock::time_point deadline() const { return m_process > 0 ? m_deadline : Clock::time_point(); }

    // Does what can be done now. True at the end, and from then on.
    bool proceed();
    const HookEnd &end() const { return m_end; }

private:
    void begin(const Json &said);
    void listen(Descriptor &from, std::string &into);
    bool isFlooded() const;
    bool hasExited() const;
    void finish(const std::string &failure);
    void collect();

    const HookCall &m_call;
    const Clock::time_point m_deadline;
    pid_t m_process = 0; // 0 where none runs
    Descriptor m_exit;   // readable when the process has ended
    Descriptor m_output;
    Descriptor m_complaints; // its standard error
    std::string m_complained;
    HookEnd m_end;
};
