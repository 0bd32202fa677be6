#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <poll.h>

#include "line/channel/Channel.h"
#include "line/channel/Child.h"
#include "line/channel/Messages.h"
#include "line/plan/UnitImage.h"
#include "programs/Descriptor.h"

// How an attempt at a unit ended.
// NOLINTNEXTLINE(bugprone-exception-escape): the move of Json says that it throws nothing, and calls what could
struct Outcome {
    std::string cause; // empty where it passed, and where it was stopped
    std::string text;
    int code = 0;         // of the console's results
    Json identified;      // null where it did not come so far
    Json end;             // what the process that made it told last, null where that did not come
    bool stopped = false; // as stop() asked for
    bool passed() const { return cause.empty() && !stopped; }
};

// One attempt at a unit, in a process of its own. Whoever waits in poll() drives it; nothing here waits.
class Attempt {
public:
    using Clock = std::chrono::steady_clock;

    enum class Event {
        nothing,      // more, for now
        step,         // begins
        identified,   // goes on after go()
        irreversible, // what comes next can't be undone; goes on after burn()
        end           // the port is free again
    };

    // Begins it with the "make" of line/channel/Messages.h. Where the machine gives no channel or process for it, it
    // has failed at once.
    explicit Attempt(const Json &order);
    // One whose process is at the other end of a channel already, and has its order and the shared file.
    explicit Attempt(std::unique_ptr<Channel> channel, Descriptor shared = Descriptor());

    void watch(std::vector<pollfd> &all) const;
    // When next() has to be called whatever has come: a step may not be silent for ever.
    Clock::time_point deadline() const { return m_deadline; }

    // What has happened, one thing at a time. After "end" there is no more to it.
    Event next();
    const std::string &step() const { return m_step; }
    // Looks how far the step is, of which nobody is woken: to be called now and then, or it counts as silent.
    void look();
    int percent() const { return m_percent; } // as at the last look; -1 where the step tells none
    const Outcome &outcome() const { return m_outcome; }

    // "go", of line/channel/Messages.h, with an image in whole words. Throws Refusal, with notMade, where there is no
    // memory for it.
    void go(const Runs &image);
    void burn();
    // At the next place where that does no harm.
    void stop();

private:
    Event take(const Json &message);
    void takeEnd(const Json &message);
    Event end(const char *cause, const std::string &text);
    void waitAtMost(int milliseconds);

    std::unique_ptr<Channel> m_channel;
    std::string m_obstacle; // why it has none from the beginning
    std::unique_ptr<Child> m_worker;
    Descriptor m_shared; // a file without a name; the worker has it too
    Clock::time_point m_deadline;
    std::string m_step = "connect";
    std::uint8_t m_steps = 0; // as Progress counts them
    Progress m_progress = {};
    int m_percent = -1;
    Outcome m_outcome;
    bool m_isOver = false; // its last message is here
};
