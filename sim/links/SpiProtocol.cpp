#include "sim/links/SpiProtocol.h"

#include <algorithm>
#include <cstdio>

#include "libs/zvbl/wire/Wire.h"
#include "sim/bootloader/Groups.h"

namespace sim {

namespace {

constexpr std::uint8_t released = 0xFF; // what is read when the chip drives nothing

// An answer as it travels.
Bytes framed(const Output &answer) {
    Bytes bytes = answer.bytes;
    if (answer.reply && !answer.checked)
        appendXor(bytes);
    bytes.insert(bytes.begin(), wire::spiStart);
    return bytes;
}

std::string hex(std::uint8_t byte) {
    char text[4];
    std::snprintf(text, sizeof text, "%02X", static_cast<unsigned>(byte));
    return text;
}

} // namespace

SpiProtocol::SpiProtocol(Bootloader &bootloader, Faults &faults, Log &log)
    : bootloader_(bootloader), mailbox_(bootloader), faults_(faults), log_(log), resets_(bootloader.resets()) {}

void SpiProtocol::select(Nanoseconds now) {
    present_ = mailbox_.there(now);
    working_ = mailbox_.working(now);
    kind_ = Kind::none;
    message_.clear();
}

std::uint8_t SpiProtocol::shift(std::uint8_t byte, Nanoseconds now) {
    if (kind_ == Kind::none)
        kind_ = byte == wire::spiIdle ? Kind::fetch : Kind::message;
    if (kind_ == Kind::message)
        message_.push_back(byte);
    if (!present_)
        return bootloader_.silent() ? wire::spiIdle : released;
    return kind_ == Kind::fetch ? fetch(now) : wire::spiIdle;
}

std::uint8_t SpiProtocol::fetch(Nanoseconds now) {
    Output *next = mailbox_.next();
    if (next == nullptr || next->at > now)
        return wire::spiIdle;
    if (!mailbox_.leaving) {
        mailbox_.leaving = pass(framed(*next), Direction::tx, faults_);
        next->at = now + mailbox_.leaving->late;
        sent_ = 0;
        if (next->at > now)
            return wire::spiIdle;
    }
    const Passage &passage = *mailbox_.leaving;
    const std::uint8_t byte = sent_ < passage.bytes.size() ? passage.bytes[sent_++] : wire::spiIdle;
    if (sent_ == passage.bytes.size()) {
        if (passage.hangup)
            hangup_ = passage.hangup;
        mailbox_.fetched(now);
    }
    return byte;
}

void SpiProtocol::deselect(Nanoseconds now) {
    if (kind_ != Kind::message)
        return;
    const Passage passage = pass(message_, Direction::rx, faults_);
    if (passage.hangup)
        hangup_ = passage.hangup;
    else if (present_ && !passage.bytes.empty())
        take(passage.bytes, now + passage.late);
}

void SpiProtocol::take(const Bytes &message, Nanoseconds now) {
    if (message[0] != wire::spiStart) {
        log_.ignored("a message that begins with " + hex(message[0]));
    } else if (working_) {
        log_.ignored("a message to a chip at work");
    } else {
        mailbox_.throwAway(now);
        // If not, it waited with its reset for somebody to fetch the answer.
        if (mailbox_.there(now))
            group(Bytes(message.begin() + 1, message.end()), now);
    }
}

void SpiProtocol::group(const Bytes &group, Nanoseconds now) {
    if (resets_ != bootloader_.resets()) {
        resets_ = bootloader_.resets();
        inStep_ = false;
    }
    const bool opening = group == Bytes{wire::sync};
    if (opening) {
        bootloader_.drop("ended by a new opening");
        mailbox_.answer(inStep_ ? wire::nack : wire::ack, now);
        inStep_ = true;
    } else if (inStep_) {
        mailbox_.group(group, now);
    } else {
        log_.ignored("a message in front of the first 7F");
    }
}

void SpiProtocol::losePower(Nanoseconds now) {
    mailbox_.losePower(now);
    hangup_.reset();
    kind_ = Kind::none;
}

} // namespace sim
