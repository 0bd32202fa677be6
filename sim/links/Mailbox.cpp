#include "sim/links/Mailbox.h"

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"

namespace sim {

void Mailbox::group(const Bytes &bytes, Nanoseconds now) {
    if (bootloader_.idle()) {
        opening(bytes, now);
        return;
    }
    const std::size_t length = bootloader_.groupLength(bytes);
    if (bytes.size() == length)
        for (const std::uint8_t byte : bytes)
            bootloader_.feed(byte, now);
    else
        bootloader_.refuseGroup(
            std::to_string(bytes.size()) + " bytes where a group of " + std::to_string(length) + " belongs", now);
    collect();
}

void Mailbox::opening(const Bytes &bytes, Nanoseconds now) {
    if (bytes.size() != 2) {
        bootloader_.refuse(std::to_string(bytes.size()) + " bytes where an opcode and its complement belong", now);
    } else if ((bytes[0] ^ bytes[1]) != 0xFF) {
        bootloader_.refuse("an opcode with a wrong complement", now);
    } else {
        bootloader_.command(bytes[0], now);
        collect();
        return;
    }
    const std::vector<Output> refusal = bootloader_.takeOutput();
    answers_.insert(answers_.end(), refusal.begin(), refusal.end());
}

// Behind a command or one of its groups.
void Mailbox::collect() {
    const std::vector<Output> output = bootloader_.takeOutput();
    answers_.insert(answers_.end(), output.begin(), output.end());
    if (!bootloader_.idle() || bootloader_.ended() == Next::end)
        return;
    if (bootloader_.ended() == Next::powerLost)
        forget();
    else if (!answers_.empty())
        departure_ = bootloader_.ended();
}

void Mailbox::answer(std::uint8_t byte, Nanoseconds now) {
    answers_.push_back({{byte}, now});
}

void Mailbox::followDeparture(Nanoseconds now) {
    if (departure_ == Next::reset)
        bootloader_.startFrom(now);
    departure_.reset();
}

void Mailbox::fetched(Nanoseconds now) {
    leaving.reset();
    answers_.pop_front();
    if (answers_.empty())
        followDeparture(now);
}

void Mailbox::throwAway(Nanoseconds now) {
    leaving.reset();
    answers_.clear();
    followDeparture(now);
}

void Mailbox::forget() {
    leaving.reset();
    answers_.clear();
    departure_.reset();
}

void Mailbox::reset(Nanoseconds now) {
    forget();
    bootloader_.reset(now);
}

void Mailbox::losePower(Nanoseconds now) {
    forget();
    bootloader_.losePower(now);
}

} // namespace sim
