#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "line/gang/Awaited.h"
#include "line/gang/Maker.h"
#include "line/gang/Shift.h"
#include "line/gang/Signals.h"
#include "line/hooks/DeliveryQueue.h"
#include "line/ports/PortWatch.h"
#include "line/view/View.h"
#include "programs/Status.h"

// All nests of a line at work: one thread, which waits in one place.
class Gang {
public:
    enum class Start {
        once, // every nest makes one unit at once, and that is all
        plug, // a nest begins when something is plugged in at its port, until the operator ends the line
        key   // when the operator presses its key
    };
    using TellRecord = std::function<void(const Json &record)>; // after it is on disk

    // All of these live longer; the nests are some of the station's. What the shift calls is set here.
    Gang(Shift &shift, const std::vector<Nest> &nests, Start start, View &view, TellRecord tell);

    // What an earlier run has left open is told of.
    void tellOrphans(const std::vector<Orphan> &orphans);

    // Works until all is done, or until the operator has ended it. Returns the exit status, or throws the Refusal of
    // the register after the units that were being made are over.
    int run();

private:
    using Clock = Maker::Clock;
    struct Seat {
        Maker maker;
        Clock::time_point begun = {};
        int failuresInARow = 0;
        Awaited::Part awaited = {};
    };
    // What the operator has seen.
    struct Shown {
        std::vector<std::tuple<Phase, std::string, int>> nests; // the last one is the percent
        std::string notice;
        int undelivered = 0;
    };

    bool isOver() const;
    bool isBusy() const;
    void wait();
    Clock::time_point next() const;
    void work();
    void takeSignals();
    void look();
    void lookAtPercents();
    void take(const PortWatch::Change &change);
    void press(std::size_t nest);
    void open(std::size_t nest);
    void begin(std::size_t nest);
    void proceed(std::size_t nest);
    bool write();
    bool writeTogether(const std::vector<std::size_t> &nests);
    void writeAlone(Maker &maker);
    void guard(const std::function<void()> &work);
    void deliver();
    void over(std::size_t nest);
    void count(Seat &seat, NestState &nest, const Json &record);
    void tell(const Orphan &orphan);
    void show();
    int status() const;

    Shift &m_shift;
    const std::vector<Nest> &m_nests;
    const Start m_start;
    View &m_view;
    const TellRecord m_tell;
    Signals m_signals;
    std::optional<PortWatch> m_ports;
    DeliveryQueue m_deliveries;
    State m_state;
    std::vector<Seat> m_seats;
    Awaited m_awaited;
    std::optional<Refusal> m_registerFailure;
    Awaited::Part m_ofSignals;
    Awaited::Part m_ofPorts;
    Awaited::Part m_ofView;
    Clock::time_point m_viewDue;
    Shown m_shown;
    Clock::time_point m_percentsDue;
    Clock::time_point m_began;
    std::chrono::duration<double> m_making{}; // all units that have passed
    int m_signalsTaken = 0;
    int m_withoutPort = 0;
    bool m_hasPassed = false; // another one, which the order does not show yet
    bool m_isUsedUp = false;
    bool m_isInterrupted = false;
};
