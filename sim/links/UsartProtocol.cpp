#include "sim/links/UsartProtocol.h"

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"

namespace sim {

namespace {
constexpr Nanoseconds frameLimit = wire::frameLimitMs * millisecond;
}

UsartProtocol::UsartProtocol(Bootloader &bootloader) : bootloader_(bootloader), resets_(bootloader.resets()) {}

void UsartProtocol::followReset() {
    if (resets_ != bootloader_.resets()) {
        resets_ = bootloader_.resets();
        inStep_ = false;
        opcode_.reset();
    }
}

std::vector<TimedByte> UsartProtocol::takeOutput() {
    std::vector<TimedByte> bytes;
    for (const Output &output : bootloader_.takeOutput())
        for (const std::uint8_t byte : output.bytes)
            bytes.push_back({byte, output.at});
    return bytes;
}

void UsartProtocol::sent(Nanoseconds at) {
    last_ = std::max(last_, at);
}

void UsartProtocol::dropIfLate(Nanoseconds now) {
    if (inCommand() && now - last_ > frameLimit) {
        bootloader_.drop("dropped, its next byte came too late");
        opcode_.reset();
    }
}

void UsartProtocol::receive(std::uint8_t byte, Nanoseconds now) {
    followReset();
    now = std::max(now, bootloader_.busyUntil());
    if (!bootloader_.listening(now))
        return;
    if (!inStep_) {
        if (byte == wire::sync) {
            inStep_ = true;
            bootloader_.answer(wire::ack, now);
        }
        return;
    }
    dropIfLate(now);
    last_ = std::max(last_, now);
    if (bootloader_.idle())
        opening(byte, now);
    else
        bootloader_.feed(byte, now);
}

void UsartProtocol::opening(std::uint8_t byte, Nanoseconds now) {
    if (!opcode_) {
        if (byte == wire::sync)
            bootloader_.answer(wire::nack, now);
        else
            opcode_ = byte;
        return;
    }
    const std::uint8_t opcode = *opcode_;
    opcode_.reset();
    if ((opcode ^ byte) == 0xFF)
        bootloader_.command(opcode, now);
    else
        bootloader_.refuse("an opcode with a wrong complement", now);
}

} // namespace sim
