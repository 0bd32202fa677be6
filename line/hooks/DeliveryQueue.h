#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "line/hooks/Hook.h"
#include "line/register/Register.h"

// Tells hook.after of each record that the register keeps for it, one after the other, until it has ended well: at
// least once, so a record can come twice, and "attempt" says which it is. New records go first, at once; those that
// could not be delivered are tried again, the least tried first, with pauses that grow as long as nothing succeeds.
// Driven as a hook is, by whoever waits in poll().
class DeliveryQueue {
public:
    using Clock = Hook::Clock;

    // Of a station; without a hook it only counts. Both references have to live longer. What the functions of the
    // register throw goes through, here and below.
    DeliveryQueue(Register &units, std::string station, const std::optional<HookCall> &call);

    // A record has been queued in the register.
    void added();

    // Adds what is to be waited for. proceed() is due when it is ready, and at the time of wakeUp().
    void watch(std::vector<pollfd> &all) const;
    Clock::time_point wakeUp() const; // in the past for now, the end of time where nothing is to be done
    void proceed();

    // Records that are not delivered.
    std::int64_t waiting() const { return m_waiting; }
    // Whether there are some that nobody has tried to deliver, since the line began at least.
    bool isBusy() const { return m_running != nullptr || mayBeNew(); }
    // Why the last one could not be delivered; from outside in part; empty where it could.
    const std::string &trouble() const { return m_trouble; }

private:
    struct Running {
        Running(std::int64_t attempt, const HookCall &call, const Json &record);
        const std::int64_t attempt;
        Hook hook;
    };

    bool mayBeNew() const { return m_call && m_waiting > 0 && m_new; }
    void beginNext();
    void finish(const HookEnd &end);

    Register &m_units;
    const std::string m_station;
    const std::optional<HookCall> &m_call;
    std::int64_t m_waiting;
    bool m_new = true; // some may not have been tried
    std::unique_ptr<Running> m_running;
    std::chrono::seconds m_pause;
    Clock::time_point m_again; // for those that were tried
    std::string m_trouble;
};
