#include "line/gang/Gang.h"

#include <algorithm>
#include <utility>

#include "line/gang/Causes.h"
#include "programs/Status.h"

using namespace std::chrono_literals;

namespace {

constexpr auto percentsPause = 500ms; // nobody reads more of them

} // namespace

Gang::Gang(Shift &shift, const std::vector<Nest> &nests, Start start, View &view, TellRecord tell)
    : m_shift(shift), m_nests(nests), m_start(start), m_view(view), m_tell(std::move(tell)),
      m_deliveries(shift.units, shift.station.name, shift.station.after), m_began(Clock::now()) {
    m_state.title = shift.job.name;
    m_state.plan = shift.plan.hash;
    m_state.order = shift.order;
    m_state.quantity = shift.job.quantity;
    m_state.made = shift.units.made(shift.plan.hash, shift.order);
    for (const Nest &nest : nests) {
        m_state.nests.emplace_back();
        m_state.nests.back().name = nest.name;
    }
    m_seats.reserve(nests.size());
    for (std::size_t i = 0; i < nests.size(); ++i)
        m_seats.push_back({Maker(shift, nests[i], m_state.nests[i])});
    if (start != Start::once)
        m_ports.emplace(nests, shift.station.link.kind);
    shift.orphan = [this](const Orphan &orphan) {
        if (m_shift.delivers())
            m_deliveries.added();
        this->tell(orphan);
    };
    shift.sameId = [this](const std::string &uid) {
        for (Seat &seat : m_seats)
            if (seat.maker.uid() == uid)
                seat.maker.giveUpSameId();
    };
}

void Gang::tellOrphans(const std::vector<Orphan> &orphans) {
    for (const Orphan &orphan : orphans)
        tell(orphan);
}

void Gang::tell(const Orphan &orphan) {
    if (!orphan.burning)
        return;
    const Json &record = orphan.record;
    m_state.notice += m_state.notice.empty() ? "the line ended while burning: " : ", ";
    m_state.notice += record.at("nest").get<std::string>() + ' ' +
                      (record.at("number").is_number() ? "number " + record.at("number").dump() + ' ' : "") + "uid " +
                      record.at("uid").get<std::string>();
}

int Gang::run() {
    if (m_start == Start::once)
        for (std::size_t i = 0; i < m_seats.size(); ++i)
            begin(i);
    show();
    while (!isOver()) {
        wait();
        work();
        show();
    }
    m_view.show(m_state);
    if (m_registerFailure)
        throw Refusal(*m_registerFailure);
    return status();
}

bool Gang::isBusy() const {
    return std::any_of(m_seats.begin(), m_seats.end(), [](const Seat &seat) { return seat.maker.isBusy(); });
}

bool Gang::isOver() const {
    const bool goesOn = m_start != Start::once && m_signalsTaken == 0 && !m_registerFailure;
    // What nobody has tried to deliver is tried, unless the operator will not wait for it.
    const bool delivers = m_deliveries.isBusy() && m_signalsTaken < 2 && !m_registerFailure;
    return !isBusy() && !goesOn && !delivers;
}

Gang::Clock::time_point Gang::next() const {
    Clock::time_point next = isBusy() ? std::min(m_viewDue, m_percentsDue) : m_viewDue;
    if (!m_registerFailure)
        next = std::min(next, m_deliveries.wakeUp());
    if (m_ports)
        next = std::min(next, m_ports->next());
    for (const Seat &seat : m_seats)
        next = std::min(next, seat.maker.deadline());
    return next;
}

void Gang::wait() {
    m_awaited.clear();
    m_ofSignals = m_awaited.add(m_signals.descriptor());
    m_ofPorts = m_ports ? m_awaited.add(m_ports->descriptor()) : Awaited::Part();
    m_ofView = m_awaited.add([this](std::vector<pollfd> &all) {
        for (const int descriptor : m_view.descriptors())
            all.push_back({descriptor, POLLIN, 0});
    });
    for (Seat &seat : m_seats)
        seat.awaited = m_awaited.add([&](std::vector<pollfd> &all) { seat.maker.watch(all); });
    m_awaited.add([this](std::vector<pollfd> &all) { m_deliveries.watch(all); });
    m_viewDue = m_view.next();
    m_awaited.wait(next() - Clock::now());
}

// A call of the system for what is not ready is what a line that is woken for one nest would take most of its time for.
void Gang::work() {
    if (m_awaited.isReady(m_ofSignals))
        takeSignals();
    if (m_ports && (m_awaited.isReady(m_ofPorts) || Clock::now() >= m_ports->next()))
        look();
    for (std::size_t i = 0; i < m_seats.size(); ++i)
        if (m_awaited.isReady(m_seats[i].awaited) || Clock::now() >= m_seats[i].maker.deadline())
            proceed(i);
    while (write()) {
    }
    lookAtPercents();
    guard([this] { deliver(); });
    if (m_awaited.isReady(m_ofView) || Clock::now() >= m_viewDue)
        for (const std::size_t nest : m_view.work())
            if (nest < m_seats.size() && m_start != Start::once)
                press(nest);
}

// Of all nests together: nobody is woken for them.
void Gang::lookAtPercents() {
    if (Clock::now() < m_percentsDue)
        return;
    for (Seat &seat : m_seats)
        seat.maker.look();
    m_percentsDue = Clock::now() + percentsPause;
}

// After the first one what is being made is finished; after the second one it is left where that does no harm.
void Gang::takeSignals() {
    m_signalsTaken += m_signals.take();
    m_isInterrupted |= m_start == Start::once || m_signalsTaken > 1;
    for (Seat &seat : m_seats)
        if (m_signalsTaken > 1)
            seat.maker.stop();
        else
            seat.maker.finish();
    m_state.notice = m_signalsTaken > 1 ? "what is being made is left where that does no harm"
                                        : "what is being made is finished; Ctrl-C again leaves it";
}

void Gang::look() {
    for (const PortWatch::Change &change : m_ports->look())
        take(change);
}

void Gang::take(const PortWatch::Change &change) {
    NestState &nest = m_state.nests[change.nest];
    if (nest.phase == Phase::closed || m_seats[change.nest].maker.isBusy())
        return;
    if (change.event == PortWatch::Event::plugged)
        return open(change.nest);
    nest = NestState();
    nest.name = m_nests[change.nest].name;
    if (change.event == PortWatch::Event::denied) {
        nest.phase = Phase::fail;
        nest.why = causeOf("permission").words;
    }
}

// The key of a nest opens it where it is closed, and begins a unit where that is the key's work.
void Gang::press(std::size_t nest) {
    NestState &shown = m_state.nests[nest];
    if (m_seats[nest].maker.isBusy())
        return;
    if (shown.phase == Phase::closed) {
        m_seats[nest].failuresInARow = 0;
        shown.phase = Phase::empty;
        shown.why.clear();
        if (m_ports->isPlugged(nest))
            open(nest);
    } else if (m_start == Start::key && m_ports->isPlugged(nest))
        begin(nest);
}

// There is something at the port.
void Gang::open(std::size_t nest) {
    if (m_start == Start::plug)
        return begin(nest);
    m_state.nests[nest].phase = Phase::ready;
}

void Gang::begin(std::size_t nest) {
    if (m_signalsTaken > 0 || m_registerFailure)
        return;
    if (m_ports)
        m_ports->hold(nest);
    m_seats[nest].begun = Clock::now();
    m_seats[nest].maker.start();
}

void Gang::proceed(std::size_t nest) {
    Maker &maker = m_seats[nest].maker;
    while (maker.isBusy() && maker.proceed())
        show(); // each of them
}

// What nests have for the register at the same time is one commit. Where that fails each of them has its own: what is
// wrong with one is nothing of the others. False where there was nothing.
bool Gang::write() {
    const auto entryOf = [this](std::size_t nest) { return m_seats[nest].maker.entry(); };
    std::vector<std::size_t> nests;
    for (std::size_t i = 0; i < m_seats.size(); ++i)
        if (entryOf(i) != Maker::Entry::none)
            nests.push_back(i);
    std::stable_sort(nests.begin(), nests.end(), [&](auto one, auto other) { return entryOf(one) < entryOf(other); });
    const bool areWritten = nests.size() > 1 && writeTogether(nests);
    for (const std::size_t nest : nests)
        guard([&] {
            Maker &maker = m_seats[nest].maker;
            if (!areWritten)
                writeAlone(maker);
            if (maker.written())
                over(nest);
            else
                proceed(nest);
        });
    if (std::exchange(m_hasPassed, false))
        guard([&] { m_state.made = m_shift.units.made(m_shift.plan.hash, m_shift.order); });
    return !nests.empty();
}

bool Gang::writeTogether(const std::vector<std::size_t> &nests) {
    try {
        m_shift.units.together([&] {
            for (const std::size_t nest : nests)
                m_seats[nest].maker.write();
        });
        return true;
    } catch (const Refusal &) {
        return false;
    }
}

void Gang::writeAlone(Maker &maker) {
    try {
        maker.write();
    } catch (const Refusal &refusal) {
        maker.notWritten(refusal);
        throw;
    }
}

// Without its register the line finishes what it can, and begins nothing more.
void Gang::guard(const std::function<void()> &work) {
    try {
        work();
    } catch (const Refusal &refusal) {
        if (!m_registerFailure)
            m_registerFailure.emplace(refusal);
        for (Seat &other : m_seats)
            other.maker.finish();
    }
}

void Gang::deliver() {
    if (m_registerFailure)
        return;
    m_deliveries.proceed();
    m_state.undelivered = static_cast<int>(m_deliveries.waiting());
}

void Gang::over(std::size_t nest) {
    Seat &seat = m_seats[nest];
    if (m_ports)
        m_ports->release(nest);
    const Json &record = seat.maker.record();
    m_isUsedUp |= seat.maker.isUsedUp();
    count(seat, m_state.nests[nest], record);
    if (!record.at("attempt").is_number())
        return;
    if (m_shift.delivers())
        m_deliveries.added();
    m_tell(record);
}

void Gang::count(Seat &seat, NestState &nest, const Json &record) {
    const std::string result = record.at("result");
    if (result == "pass") {
        ++m_state.passed;
        m_hasPassed = true;
        m_making += Clock::now() - seat.begun;
        m_state.secondsPerUnit = m_making.count() / m_state.passed;
        m_state.unitsPerHour = m_state.passed * 3600 / std::chrono::duration<double>(Clock::now() - m_began).count();
        seat.failuresInARow = 0;
        return;
    }
    if (result == "interrupted") {
        m_isInterrupted = true;
        return;
    }
    const std::string cause = record.at("cause");
    ++m_state.failed;
    ++m_state.failures[cause];
    m_withoutPort += cause == "no-port" ? 1 : 0;
    if (result != "fail" || m_start == Start::once || ++seat.failuresInARow < m_shift.station.stopAfter ||
        m_shift.station.stopAfter == 0)
        return;
    nest.phase = Phase::closed;
    nest.why = std::to_string(seat.failuresInARow) + " failures in a row";
}

// MEANT: what is the same is not shown again, so that a line that waits costs nothing.
void Gang::show() {
    bool isSame = m_shown.nests.size() == m_state.nests.size() && m_shown.notice == m_state.notice &&
                  m_shown.undelivered == m_state.undelivered;
    m_shown.nests.resize(m_state.nests.size());
    m_shown.notice = m_state.notice;
    m_shown.undelivered = m_state.undelivered;
    for (std::size_t i = 0; i < m_state.nests.size(); ++i) {
        const NestState &nest = m_state.nests[i];
        const auto now = std::tie(nest.phase, nest.step, nest.percent);
        isSame &= m_shown.nests[i] == now;
        m_shown.nests[i] = now;
    }
    if (!isSame)
        m_view.show(m_state);
}

int Gang::status() const {
    if (m_isUsedUp)
        return usedUp;
    if (m_isInterrupted)
        return interrupted;
    if (m_state.failed == 0)
        return allDone;
    const bool foundNothing = m_start == Start::once && static_cast<std::size_t>(m_withoutPort) == m_seats.size();
    return foundNothing ? noUnit : notMade;
}
