// Getting in step with the chip on a CAN bus, and the speed of both.

#include <algorithm>

#include "libs/zvbl/framing/CanFraming.h"

namespace zvbl {
namespace {

constexpr auto closingTime = std::chrono::milliseconds(300); // for what is told the chip at the end
constexpr int tries = 3;
const CanSpeed &startSpeed = *findCanSpeed(wire::canStartSpeed);

} // namespace

CanFraming::~CanFraming() {
    if (!m_inStep || !m_chipChanged)
        return;
    try {
        [[maybe_unused]] const Status status = tellSpeed(startSpeed, std::min<Duration>(m_timeout, closingTime));
    } catch (...) {
        m_trace.remark("the chip keeps its speed");
    }
}

Status CanFraming::start(const StartSettings &settings, Duration timeout) {
    const CanSpeed *speed = findCanSpeed(settings.rate);
    if (settings.rate != 0 && !speed)
        return Status::badArgument;
    m_timeout = timeout;
    m_inStep = m_chipChanged = false;
    Status status = discardUntil(TimePoint{});
    if (status == Status::ok) {
        const bool asItIs = !speed || m_bus.bitRate() == 0 || m_bus.bitRate() == speed->bitsPerSecond;
        status = asItIs ? open(timeout) : startAtTwoSpeeds(speed->bitsPerSecond, timeout);
    }
    m_inStep = status == Status::ok;
    return status;
}

// A chip that was not reset since may be at the speed that the bus had until now.
Status CanFraming::startAtTwoSpeeds(unsigned bitsPerSecond, Duration timeout) {
    const unsigned before = m_bus.bitRate();
    Status status = changeBus(bitsPerSecond);
    if (status != Status::ok)
        return status;
    status = open(timeout / 2);
    if (status == Status::ok)
        return status;
    if (const Status back = m_bus.setBitRate(before); back != Status::ok)
        return back;
    return open(timeout / 2);
}

// Sends opening frames until one is answered: a chip that starts, or works, loses some. noStart: there was
// no answer. What comes before it is old.
Status CanFraming::open(Duration timeout) {
    const TimePoint end = Clock::now() + timeout;
    Status status = Status::noAnswer;
    int sent = 0;
    bool heardWrong = false;
    for (TimePoint now = Clock::now(); now < end && status == Status::noAnswer; now = Clock::now()) {
        const TimePoint until = std::min<TimePoint>(now + m_timing.opening, end);
        status = send({wire::sync, 0, {}}, until);
        ++sent;
        std::uint8_t answer = 0;
        if (status == Status::ok)
            status = hearOpened(until, answer);
        if (status == Status::ok && answer != wire::ack && answer != wire::nack) {
            heardWrong = true;
            status = discardUntil(until);
            status = status == Status::ok ? Status::noAnswer : status;
        }
    }
    if (status == Status::ok && sent > 1)
        status = discardUntilQuiet(end); // the answers to the other ones
    if (status == Status::noAnswer)
        m_bus.explain();
    return status == Status::noAnswer && !heardWrong ? Status::noStart : status;
}

// Hears until the opening frame is answered. What comes before it is old.
Status CanFraming::hearOpened(TimePoint until, std::uint8_t &answer) {
    for (CanFrame frame;;) {
        if (const Status status = hear(frame, until); status != Status::ok)
            return status;
        const bool right = isAnswerTo(wire::sync, frame);
        note(frame, right);
        if (right) {
            answer = frame.size == 1 ? frame.data[0] : std::uint8_t{0};
            return Status::ok;
        }
        if (Clock::now() > until)
            return Status::noAnswer;
    }
}

Status CanFraming::getInStep() {
    // What is late of the command before comes now, or before the opening frame's answer.
    Status status = discardUntilQuiet(Clock::now() + m_timeout);
    if (status == Status::ok)
        status = open(m_timeout);
    return status == Status::ok || status == Status::gone ? status : Status::outOfStep;
}

// 0 leaves the bus as it is. A bus without a rate of its own is left so too, and the chip with it.
Status CanFraming::setSpeed(unsigned long speed, Duration timeout) {
    m_timeout = timeout;
    if (speed == 0)
        return Status::ok;
    const CanSpeed *wanted = findCanSpeed(speed);
    if (!wanted)
        return Status::badArgument;
    if (m_bus.bitRate() == wanted->bitsPerSecond)
        return Status::ok;
    if (m_bus.bitRate() == 0) {
        m_trace.remark("the bus has no bit rate to set");
        return Status::ok;
    }
    if (const Status status = m_bus.mayChangeBitRate(); status != Status::ok)
        return status;
    const Status status = tellSpeed(*wanted, timeout);
    if (status != Status::ok && status != Status::noAnswer)
        return status;
    return follow(wanted->bitsPerSecond, status);
}

// Repeats the command as long as the chip is there at the old speed, and its answer is not.
Status CanFraming::tellSpeed(const CanSpeed &speed, Duration timeout) {
    const Command command{wire::opSetSpeed, {{{speed.code}, Check::complement}}};
    Status status = Status::noAnswer;
    for (int left = tries; left > 0 && status == Status::noAnswer; --left) {
        Bytes nothing;
        const Status now = transfer(command, nothing, timeout);
        if (now == Status::outOfStep && left < tries)
            break; // it has changed, and its answer was lost
        status = now;
    }
    return status;
}

// Brings the bus to the speed that the chip has now, and looks whether it is there. `told` is how the chip
// took it; when it is not there the bus goes back.
Status CanFraming::follow(unsigned bitsPerSecond, Status told) {
    const unsigned before = m_bus.bitRate();
    m_inStep = false;
    Status status = m_bus.setBitRate(bitsPerSecond);
    if (status == Status::ok)
        status = getInStep();
    m_inStep = status == Status::ok;
    if (m_inStep)
        m_chipChanged = bitsPerSecond != wire::canStartSpeed;
    else if (told != Status::ok && m_bus.setBitRate(before) == Status::ok)
        status = told;
    return status;
}

Status CanFraming::changeBus(unsigned bitsPerSecond) {
    const Status status = m_bus.mayChangeBitRate();
    return status == Status::ok ? m_bus.setBitRate(bitsPerSecond) : status;
}

} // namespace zvbl
