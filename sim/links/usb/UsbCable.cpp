#include "sim/links/usb/UsbCable.h"

#include <algorithm>

namespace sim {

namespace {

// A full-speed frame of 1 ms has room for 19 packets of 64 bytes. The setup and status stages of a transfer
// take about half a packet's time.
constexpr std::size_t packetLength = 64;
constexpr Nanoseconds packetTime = millisecond / 19;
constexpr Nanoseconds stagesTime = packetTime / 2;

} // namespace

Nanoseconds UsbCable::busTime(std::size_t length) const {
    const auto packets = static_cast<Nanoseconds>((length + packetLength - 1) / packetLength);
    return pace_ ? stagesTime + packets * packetTime : 0;
}

// All bytes of a data stage; a stage without data counts as one byte. `data` becomes what arrives.
ByteEffect UsbCable::damage(Direction direction, Bytes &data) {
    ByteEffect all;
    Bytes arrived;
    for (std::size_t i = 0; i < std::max<std::size_t>(data.size(), 1); ++i) {
        const ByteEffect effect = faults_.byte(direction);
        all.lost = all.lost || effect.lost || (data.empty() && effect.damage != 0);
        all.doubled = all.doubled || effect.doubled;
        all.lateMs += effect.lateMs;
        if (effect.hangup) {
            all.hangup = true;
            all.replugMs = effect.replugMs;
        }
        if (!data.empty())
            arrived.insert(arrived.end(), effect.doubled ? 2 : 1, static_cast<std::uint8_t>(data[i] ^ effect.damage));
    }
    // The length of a transfer is told in front of it: of too many bytes the last ones fall off.
    arrived.resize(data.size());
    data = arrived;
    return all;
}

void UsbCable::unplug(const ByteEffect &effect, Nanoseconds now) {
    unplugged_ = true;
    replugAt_ = effect.replugMs ? std::optional(now + *effect.replugMs * millisecond) : std::nullopt;
}

UsbAnswer UsbCable::control(const UsbSetup &setup, const Bytes &out, Nanoseconds now) {
    advance(now);
    if (unplugged_)
        return UsbAnswer::silent();
    const Nanoseconds start = std::max(now, free_);
    if (setup.standard())
        return device_.control(setup, out, start);
    Bytes data = out;
    const ByteEffect effect = setup.towardsHost() ? ByteEffect{} : damage(Direction::rx, data);
    if (effect.hangup)
        unplug(effect, now);
    if (effect.hangup || effect.lost)
        return UsbAnswer::silent();
    const Nanoseconds way = setup.towardsHost() ? 0 : busTime(data.size());
    const Nanoseconds arrival = start + effect.lateMs * millisecond + way;
    UsbAnswer answer = device_.control(setup, data, arrival);
    if (effect.doubled && out.empty())
        answer = device_.control(setup, data, arrival);
    free_ = arrival;
    return deliver(setup, answer, arrival);
}

UsbAnswer UsbCable::deliver(const UsbSetup &setup, UsbAnswer answer, Nanoseconds arrival) {
    if (answer.kind == UsbAnswer::Kind::silent || !setup.towardsHost())
        return answer;
    if (answer.kind == UsbAnswer::Kind::done && !answer.data.empty()) {
        const ByteEffect effect = damage(Direction::tx, answer.data);
        if (effect.hangup)
            unplug(effect, arrival);
        if (effect.hangup || effect.lost)
            return UsbAnswer::silent();
        answer.at += effect.lateMs * millisecond;
    }
    answer.at += busTime(answer.data.size());
    free_ = answer.at;
    device_.delivered(answer.at);
    return answer;
}

UsbAnswer UsbCable::out(std::uint8_t endpoint, const Bytes &data, Nanoseconds now) {
    advance(now);
    return unplugged_ ? UsbAnswer::silent() : device_.out(endpoint, data, now);
}

UsbAnswer UsbCable::in(std::uint8_t endpoint, std::size_t length, Nanoseconds now) {
    advance(now);
    return unplugged_ ? UsbAnswer::silent() : device_.in(endpoint, length, now);
}

// ---- coming and going

void UsbCable::advance(Nanoseconds now) {
    if (replugAt_ && now >= *replugAt_) {
        unplugged_ = false;
        free_ = *replugAt_;
        device_.losePower(*replugAt_); // the board has its power from the port
        replugAt_.reset();
    }
}

UsbPresence UsbCable::presence(Nanoseconds now) {
    advance(now);
    UsbPresence presence = device_.presence(now);
    presence.attached = presence.attached && !unplugged_;
    presence.forGood = unplugged_ && !replugAt_;
    return presence;
}

std::optional<Nanoseconds> UsbCable::nextEvent(Nanoseconds now) {
    advance(now);
    return unplugged_ ? replugAt_ : device_.nextEvent(now);
}

void UsbCable::pressReset(Nanoseconds now) {
    advance(now);
    if (!unplugged_) // without power there is no reset
        device_.pressReset(std::max(now, free_));
}

void UsbCable::losePower(Nanoseconds now) {
    advance(now);
    device_.losePower(now);
}

} // namespace sim
