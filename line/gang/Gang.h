#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

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
        std::size_t firstAwaited = 0; // of what poll() waits for
        std::size_t endAwaited = 0;
    };
    // What the operator has seen, of each nest.
    struct Shown {
        std::vector<std::pair<Phase, std::string>> steps;
        std::vector<int> percents;
    };

    bool isOver() const;
    void wait();
    Clock::time_point next() const;
    void work();
    void takeSignals();
    void look();
    void take(const PortWatch::Change &change);
    void press(std::size_t nest);
    void open(std::size_t nest);
    void begin(std::size_t nest);
    void proceed(std::size_t nest);
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
    std::vector<pollfd> m_awaited;
    std::optional<Refusal> m_registerFailure;
    Shown m_shown;
    Clock::time_point m_percentsDue = Clock::time_point::max(); // others than those that are shown
    Clock::time_point m_began;
    std::chrono::duration<double> m_making{}; // all units that have passed
    int m_signalsTaken = 0;
    int m_withoutPort = 0;
    bool m_isUsedUp = false;
    bool m_isInterrupted = false;
};
