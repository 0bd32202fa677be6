#include "sim/links/CanProtocol.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "libs/zvbl/wire/Wire.h"
#include "sim/bootloader/Groups.h"

namespace sim {

namespace {

constexpr std::size_t frameSize = 8;
constexpr std::uint32_t lastOpcode = 0xFF;

} // namespace

bool concernsChip(const CanFrame &frame) {
    return !frame.extended && !frame.remote && frame.id <= wire::canFromChip + lastOpcode;
}

std::string nameOf(const CanFrame &frame) {
    char text[16];
    std::snprintf(text, sizeof text, "%03X", static_cast<unsigned>(frame.id));
    return text;
}

CanProtocol::CanProtocol(Bootloader &bootloader, Log &log)
    : bootloader_(bootloader), log_(log), resets_(bootloader.resets()), speed_(wire::canStartSpeed) {}

void CanProtocol::followReset() {
    if (resets_ != bootloader_.resets()) {
        resets_ = bootloader_.resets();
        inStep_ = false;
        speed_ = wire::canStartSpeed;
        change_.reset();
    }
}

unsigned CanProtocol::speed(Nanoseconds now) {
    followReset();
    if (change_ && now >= change_->from) {
        speed_ = change_->speed;
        change_.reset();
    }
    return speed_;
}

void CanProtocol::sent(const TimedFrame &frame, Nanoseconds at) {
    if (frame.speedBehind != 0)
        change_ = SpeedChange{frame.speedBehind, at};
}

std::vector<TimedFrame> CanProtocol::takeOutput() {
    return std::exchange(out_, {});
}

bool CanProtocol::receive(const CanFrame &frame, unsigned busSpeed, Nanoseconds now) {
    const unsigned own = speed(now);
    if (busSpeed != 0 && busSpeed != own) {
        log_.ignored("frame " + nameOf(frame) + ": at " + std::to_string(busSpeed) +
                     " bits per second, the chip is at " + std::to_string(own));
        return false;
    }
    if (!concernsChip(frame) || !hears(frame, now))
        return true;
    if (frame.data.empty())
        open(static_cast<std::uint8_t>(frame.id), now);
    else
        goOn(frame, now);
    return true;
}

// Whether the frame gets as far as the bootloader.
bool CanProtocol::hears(const CanFrame &frame, Nanoseconds now) {
    const auto vain = [&](const char *why) {
        log_.ignored("frame " + nameOf(frame) + ": " + why);
        return false;
    };
    if (!bootloader_.listening(now)) {
        log_.note("frame " + nameOf(frame) + " is lost: the bootloader does not run");
        return false;
    }
    if (now < bootloader_.busyUntil())
        return vain("the chip is at work");
    if (frame.id > lastOpcode)
        return vain("the identifier is the chip's own");
    if (!inStep_ && (frame.id != wire::sync || !frame.data.empty()))
        return vain("there was no opening frame");
    if (!frame.data.empty() && (bootloader_.idle() || frame.id != opcode_))
        return vain("its data belong to no open command");
    return true;
}

void CanProtocol::open(std::uint8_t opcode, Nanoseconds now) {
    bootloader_.drop("ended by another frame without data");
    opcode_ = opcode;
    if (opcode == wire::sync)
        bootloader_.answer(std::exchange(inStep_, true) ? wire::nack : wire::ack, now);
    else
        bootloader_.command(opcode, now);
    collect(opcode);
}

void CanProtocol::goOn(const CanFrame &frame, Nanoseconds now) {
    const std::size_t length = bootloader_.groupLength(frame.data);
    const std::size_t arrived = bootloader_.groupArrived() + frame.data.size();
    if (arrived > length)
        bootloader_.refuseGroup("a frame with more than its group needs", now);
    else if (arrived < length && frame.data.size() < frameSize)
        bootloader_.refuseGroup("a short frame inside a group", now);
    else
        for (const std::uint8_t byte : frame.data)
            bootloader_.feed(byte, now);
    collect(opcode_);
}

// Frames with what the chip answers to that opcode; at the speed from before a reset that it may have led to.
void CanProtocol::collect(std::uint8_t opcode) {
    const std::uint32_t id = wire::canFromChip + opcode;
    for (Output &output : bootloader_.takeOutput()) {
        if (output.reply && !output.checked)
            appendXor(output.bytes);
        for (std::size_t at = 0; at < output.bytes.size(); at += frameSize) {
            const auto first = output.bytes.begin() + static_cast<std::ptrdiff_t>(at);
            const auto count = static_cast<std::ptrdiff_t>(std::min(frameSize, output.bytes.size() - at));
            out_.push_back({{id, Bytes(first, first + count)}, output.at, speed_, 0});
        }
        out_.back().speedBehind = output.linkSpeed;
    }
}

} // namespace sim
