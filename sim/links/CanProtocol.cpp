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
    : m_bootloader(bootloader), m_log(log), m_resets(bootloader.resets()), m_speed(wire::canStartSpeed) {}

void CanProtocol::followReset() {
    if (m_resets != m_bootloader.resets()) {
        m_resets = m_bootloader.resets();
        m_synchronised = false;
        m_speed = wire::canStartSpeed;
        m_change.reset();
    }
}

unsigned CanProtocol::speed(Nanoseconds now) {
    followReset();
    if (m_change && now >= m_change->from) {
        m_speed = m_change->speed;
        m_change.reset();
    }
    return m_speed;
}

void CanProtocol::sent(const TimedFrame &frame, Nanoseconds at) {
    if (frame.speedAfter != 0)
        m_change = SpeedChange{frame.speedAfter, at};
}

std::vector<TimedFrame> CanProtocol::takeOutput() {
    return std::exchange(m_out, {});
}

bool CanProtocol::receive(const CanFrame &frame, unsigned busSpeed, Nanoseconds now) {
    const unsigned own = speed(now);
    if (busSpeed != 0 && busSpeed != own) {
        m_log.ignored("frame " + nameOf(frame) + ": at " + std::to_string(busSpeed) +
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
        m_log.ignored("frame " + nameOf(frame) + ": " + why);
        return false;
    };
    if (!m_bootloader.listening(now)) {
        m_log.note("frame " + nameOf(frame) + " is lost: the bootloader does not run");
        return false;
    }
    if (now < m_bootloader.busyUntil())
        return vain("the chip is at work");
    if (frame.id > lastOpcode)
        return vain("the identifier is the chip's own");
    if (!m_synchronised && (frame.id != wire::sync || !frame.data.empty()))
        return vain("there was no opening frame");
    if (!frame.data.empty() && (m_bootloader.idle() || frame.id != m_opcode))
        return vain("its data belong to no open command");
    return true;
}

void CanProtocol::open(std::uint8_t opcode, Nanoseconds now) {
    m_bootloader.drop("ended by another frame without data");
    m_opcode = opcode;
    if (opcode == wire::sync)
        m_bootloader.answer(std::exchange(m_synchronised, true) ? wire::nack : wire::ack, now);
    else
        m_bootloader.command(opcode, now);
    collect(opcode);
}

void CanProtocol::goOn(const CanFrame &frame, Nanoseconds now) {
    const std::size_t length = m_bootloader.groupLength(frame.data);
    const std::size_t arrived = m_bootloader.groupArrived() + frame.data.size();
    if (arrived > length)
        m_bootloader.refuseGroup("a frame with more than its group needs", now);
    else if (arrived < length && frame.data.size() < frameSize)
        m_bootloader.refuseGroup("a short frame inside a group", now);
    else
        for (const std::uint8_t byte : frame.data)
            m_bootloader.feed(byte, now);
    collect(m_opcode);
}

// Frames with what the chip answers to that opcode; at the speed from before a reset that it may have led to.
void CanProtocol::collect(std::uint8_t opcode) {
    const std::uint32_t id = wire::canFromChip + opcode;
    for (Output &output : m_bootloader.takeOutput()) {
        if (output.reply && !output.checked)
            appendXor(output.bytes);
        for (std::size_t at = 0; at < output.bytes.size(); at += frameSize) {
            const auto first = output.bytes.begin() + static_cast<std::ptrdiff_t>(at);
            const auto count = static_cast<std::ptrdiff_t>(std::min(frameSize, output.bytes.size() - at));
            m_out.push_back({{id, Bytes(first, first + count)}, output.at, m_speed, 0});
        }
        m_out.back().speedAfter = output.linkSpeed;
    }
}

} // namespace sim
