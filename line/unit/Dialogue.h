#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <stdexcept>

#include "line/channel/Channel.h"

class COperation;

// The other end wants no more of the unit.
struct Stopped : std::runtime_error {
    Stopped() : std::runtime_error("stopped") {}
};

// What is said with the program that keeps the record, while a unit is made. A channel that fails is a
// std::runtime_error.
class Dialogue {
public:
    explicit Dialogue(Channel &channel) : m_channel(channel) {}

    // Runs a step and takes its time. Throws Stopped, before it, where that was asked for.
    void step(const char *name, const std::function<void()> &work);
    // The same for one that is not left in the middle.
    void wholeStep(const char *name, const std::function<void()> &work);
    // Milliseconds of each step.
    const Json &times() const { return m_times; }

    // Puts down what a job has done, in percent, and cancels it between two sectors where the other end wants no more.
    // One job at a time: the one that was named last.
    void follow(COperation &job);
    // Throws Stopped where a job was cancelled.
    void refuseStopped() const;

    void tell(const Json &message) { m_channel.send(message); }
    // Waits for what the other end has to say; false for another word than this, and at the end. Throws Stopped.
    bool hears(const char *word, Json &message);
    // From here on nothing stops it.
    void finishInAnyCase() { m_mayStop = false; }

    // For the listener of a job, however often.
    void showPercent(int now);

private:
    using Clock = std::chrono::steady_clock;

    void listen();

    Channel &m_channel;
    Json m_times = Json::object();
    COperation *m_job = nullptr;
    std::uint8_t m_steps = 0; // that were told, as Progress counts them
    int m_percent = -1;       // of the last one, that was put down
    bool m_mayStop = true;
    bool m_isStopped = false;
};
