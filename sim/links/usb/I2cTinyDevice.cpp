#include "sim/links/usb/I2cTinyDevice.h"

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"

namespace sim {

namespace {

// Vendor requests to the interface. A message has its flags in wValue, its address in wIndex.
constexpr std::uint8_t toAdapter = 0x41;
constexpr std::uint8_t fromAdapter = 0xC1;
enum Command : std::uint8_t {
    echoCommand = 0,
    functionsCommand = 1,
    setDelayCommand = 2, // half a clock period in microseconds, in wValue
    statusCommand = 3,
    messageCommand = 4, // in the middle of a transfer
    messageFirst = 5,   // after a start
    messageLast = 6,    // with a stop after it
    messageAlone = 7,   // both
};

enum Status : std::uint8_t { idle = 0, acknowledged = 1, notAcknowledged = 2 };

constexpr std::uint16_t readFlag = 1;              // I2C_M_RD
constexpr std::uint32_t busFunctions = 0x0EFF0009; // I2C_FUNC_I2C, and all of SMBus that is made of it
constexpr Nanoseconds usualBitTime = 20 * microsecond;
constexpr std::uint8_t released = 0xFF; // what is read when nobody drives the bus

UsbDescriptors adapterDescriptors() {
    // The pair is one that the kernel's driver takes.
    const Bytes device = {18, 1, 0x10, 0x01, 0xFF, 0, 0, 8, 0x03, 0x04, 0x31, 0xC6, 0x05, 0x02, 0, 1, 2, 1};
    const Bytes configuration = {
        9, 2, 18, 0, 1, 1, 0, 0x80, 50, 9, 4, 0, 0, 0, 0xFF, 0, 0, 0,
    };
    return {device, configuration, {"ZV32 I2C adapter", "I2C1"}};
}

} // namespace

I2cTinyDevice::I2cTinyDevice(Bootloader &bootloader, Faults &faults, bool pace)
    : m_descriptors(adapterDescriptors()), m_chip(bootloader, faults), m_pace(pace), m_bitTime(usualBitTime),
      m_status(idle) {}

struct I2cTinyDevice::Request {
    std::uint8_t type;
    std::uint8_t command;
    UsbAnswer (I2cTinyDevice::*answer)(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
};

const std::vector<I2cTinyDevice::Request> &I2cTinyDevice::requests() {
    static const std::vector<Request> table = {
        {fromAdapter, echoCommand, &I2cTinyDevice::echo},
        {fromAdapter, functionsCommand, &I2cTinyDevice::functions},
        {toAdapter, setDelayCommand, &I2cTinyDevice::setDelay},
        {fromAdapter, statusCommand, &I2cTinyDevice::status},
        {fromAdapter, messageCommand, &I2cTinyDevice::message},
        {toAdapter, messageCommand, &I2cTinyDevice::message},
        {fromAdapter, messageFirst, &I2cTinyDevice::message},
        {toAdapter, messageFirst, &I2cTinyDevice::message},
        {fromAdapter, messageLast, &I2cTinyDevice::message},
        {toAdapter, messageLast, &I2cTinyDevice::message},
        {fromAdapter, messageAlone, &I2cTinyDevice::message},
        {toAdapter, messageAlone, &I2cTinyDevice::message},
    };
    return table;
}

UsbAnswer I2cTinyDevice::control(const UsbSetup &setup, const Bytes &out, Nanoseconds now) {
    if (setup.standard())
        return m_standard.answer(setup, now);
    for (const Request &row : requests()) {
        if (row.type == setup.type && row.command == setup.request) {
            UsbAnswer answer = (this->*row.answer)(setup, out, now);
            answer.data.resize(setup.towardsHost() ? std::min<std::size_t>(answer.data.size(), setup.length) : 0);
            return answer;
        }
    }
    return UsbAnswer::stall(now);
}

UsbAnswer I2cTinyDevice::echo(const UsbSetup &setup, const Bytes &, Nanoseconds now) {
    return UsbAnswer::done(now, {static_cast<std::uint8_t>(setup.value), static_cast<std::uint8_t>(setup.value >> 8)});
}

UsbAnswer I2cTinyDevice::functions(const UsbSetup &, const Bytes &, Nanoseconds now) {
    Bytes lowestFirst;
    for (int shift = 0; shift < 32; shift += 8)
        lowestFirst.push_back(static_cast<std::uint8_t>(busFunctions >> shift));
    return UsbAnswer::done(now, lowestFirst);
}

UsbAnswer I2cTinyDevice::setDelay(const UsbSetup &setup, const Bytes &, Nanoseconds now) {
    m_bitTime = 2 * microsecond * setup.value;
    return UsbAnswer::done(now);
}

UsbAnswer I2cTinyDevice::status(const UsbSetup &, const Bytes &, Nanoseconds now) {
    return UsbAnswer::done(now, {m_status});
}

// The address and its bytes, nine bits each.
Nanoseconds I2cTinyDevice::busTime(std::size_t bytes) const {
    constexpr Nanoseconds bitsOfByte = 9;
    return m_pace ? m_bitTime * bitsOfByte * static_cast<Nanoseconds>(1 + bytes) : 0;
}

// What nobody acknowledges is a success to the adapter, which tells it in its status.
UsbAnswer I2cTinyDevice::message(const UsbSetup &setup, const Bytes &out, Nanoseconds now) {
    const bool read = (setup.value & readFlag) != 0;
    if (read != setup.towardsHost() && setup.length != 0)
        return UsbAnswer::stall(now);
    if (setup.index != wire::i2cAddress || !m_chip.acknowledges(read, now)) {
        m_status = notAcknowledged;
        return UsbAnswer::done(now + busTime(0), Bytes(read ? setup.length : 0, released));
    }
    m_status = acknowledged;
    return transfer(read, setup, out, now);
}

UsbAnswer I2cTinyDevice::transfer(bool read, const UsbSetup &setup, const Bytes &out, Nanoseconds now) {
    UsbAnswer answer = UsbAnswer::done(now + busTime(setup.length));
    if (read) {
        I2cProtocol::Read fetched = m_chip.read(setup.length, now + busTime(0));
        answer.at += std::max<Nanoseconds>(fetched.at - now - busTime(0), 0);
        answer.data = std::move(fetched.bytes);
    } else {
        m_chip.write(out, answer.at);
    }
    if (m_chip.hangup()) {
        m_plug.unplug(m_chip.hangup()->replugMs, now);
        return UsbAnswer::silent();
    }
    return answer;
}

void I2cTinyDevice::busReset(Nanoseconds) {
    m_standard.reset();
}

void I2cTinyDevice::followPlug(Nanoseconds now) {
    if (const std::optional<Nanoseconds> since = m_plug.pluggedInAgain(now))
        powerUp(*since);
}

UsbPresence I2cTinyDevice::presence(Nanoseconds now) {
    followPlug(now);
    return m_plug.presence();
}

std::optional<Nanoseconds> I2cTinyDevice::nextEvent(Nanoseconds now) {
    followPlug(now);
    return m_plug.back();
}

void I2cTinyDevice::pressReset(Nanoseconds now) {
    m_chip.reset(now);
}

void I2cTinyDevice::losePower(Nanoseconds now) {
    powerUp(now);
    m_plug.flicker();
}

// The board and the adapter have their power from the port.
void I2cTinyDevice::powerUp(Nanoseconds now) {
    m_standard.reset();
    m_status = idle;
    m_chip.losePower(now);
}

} // namespace sim
