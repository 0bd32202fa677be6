#include "sim/ports/nodes/SpiNode.h"

#include <cerrno>
#include <cstddef>
#include <regex>

#include <linux/spi/spidev.h>

#include "sim/links/SpiProtocol.h"
#include "sim/ports/Clock.h"
#include "sim/ports/nodes/NodePort.h"

namespace sim {

namespace {

constexpr std::uint32_t usualSpeed = 10000000; // bits per second, until a client says another one
constexpr std::size_t bufferSize = 4096;       // of spidev: all that one call may carry
constexpr std::uint8_t wordBits = 8;

class SpiNode : public NodePort {
public:
    SpiNode(const Machine &machine, std::string name)
        : NodePort(std::move(name)), m_pace(machine.pace), m_log(machine.log),
          m_bootloader(machine.chip, machine.faults, machine.log), m_chip(m_bootloader, machine.faults, machine.log) {}

    bool addDevice(std::string &error) override;
    void unplug() override { testbed().remove(devicePath(), {nodePath()}); }
    void reset(Nanoseconds now) override { m_chip.reset(now); }
    void losePower(Nanoseconds now) override;

private:
    std::string devicePath() const { return "/devices/platform/zv32/" + name(); }
    std::string nodePath() const { return "/dev/" + name(); }
    DeviceAnswer serve(DeviceCall &call);
    DeviceAnswer ioctl(const DeviceCall &call);
    template <typename Number>
    DeviceAnswer tell(const DeviceCall &call, std::uint32_t value);
    template <typename Number>
    DeviceAnswer demand(const DeviceCall &call, std::uint32_t only, const char *what);
    DeviceAnswer setBits(const DeviceCall &call);
    DeviceAnswer setSpeed(const DeviceCall &call);
    DeviceAnswer transferAll(const ClientMemory &transfers);
    DeviceAnswer transfer(const ClientMemory &transfers, std::size_t at, bool last);
    DeviceAnswer plain(const DeviceCall &call);
    bool wellFormed(const spi_ioc_transfer &transfer);
    void clock(const std::uint8_t *out, std::uint8_t *in, std::size_t length, std::uint32_t speed);
    void select(bool wanted);

    bool m_pace;
    Log &m_log;
    Bootloader m_bootloader;
    SpiProtocol m_chip;
    std::uint32_t m_speed = usualSpeed; // settings are the device's, not the open file's
    bool m_selected = false;
    Nanoseconds m_busTime = 0; // up to where the call in hand has come
};

bool SpiNode::addDevice(std::string &error) {
    const std::string description = "P: " + devicePath() + "\nN: " + name() + "=00\nE: DEVNAME=" + nodePath() +
                                    "\nE: SUBSYSTEM=spidev\nE: MAJOR=153\nE: MINOR=0\n";
    return testbed().add(description, error) &&
           testbed().attach(
               nodePath(), [this](DeviceCall &call) { return serve(call); }, error);
}

void SpiNode::losePower(Nanoseconds now) {
    m_chip.losePower(now);
    m_speed = usualSpeed;
    m_selected = false;
}

// Every call takes the time that it takes on the bus, and the client gets its answer then.
DeviceAnswer SpiNode::serve(DeviceCall &call) {
    m_busTime = clockNow();
    const DeviceAnswer answer = call.kind == DeviceCall::Kind::ioctl ? ioctl(call) : plain(call);
    if (m_chip.hangup())
        hangUp(*m_chip.hangup());
    waitUntil(m_busTime);
    traffic();
    return answer;
}

DeviceAnswer SpiNode::ioctl(const DeviceCall &call) {
    const unsigned long request = call.request();
    switch (request) {
    case SPI_IOC_RD_MODE:
    case SPI_IOC_RD_LSB_FIRST: return tell<std::uint8_t>(call, 0);
    case SPI_IOC_RD_MODE32: return tell<std::uint32_t>(call, 0);
    case SPI_IOC_RD_BITS_PER_WORD: return tell<std::uint8_t>(call, wordBits);
    case SPI_IOC_RD_MAX_SPEED_HZ: return tell<std::uint32_t>(call, m_speed);
    case SPI_IOC_WR_MODE: return demand<std::uint8_t>(call, 0, "mode");
    case SPI_IOC_WR_MODE32: return demand<std::uint32_t>(call, 0, "mode");
    case SPI_IOC_WR_LSB_FIRST: return demand<std::uint8_t>(call, 0, "lowest bit first");
    case SPI_IOC_WR_BITS_PER_WORD: return setBits(call);
    case SPI_IOC_WR_MAX_SPEED_HZ: return setSpeed(call);
    default: break;
    }
    // The size of the request is that of its transfers.
    const std::size_t size = _IOC_SIZE(request);
    if (request != _IOC(_IOC_WRITE, SPI_IOC_MAGIC, 0, size) || size % sizeof(spi_ioc_transfer) != 0)
        return DeviceAnswer::fail(ENOTTY);
    return size == 0 ? DeviceAnswer{} : transferAll(call.memory(size));
}

template <typename Number>
DeviceAnswer SpiNode::tell(const DeviceCall &call, std::uint32_t value) {
    const ClientMemory place = call.memory(sizeof(Number));
    if (!place)
        return DeviceAnswer::fail(EFAULT);
    place.set(static_cast<Number>(value));
    return {};
}

// A setting that has one value on this chip.
template <typename Number>
DeviceAnswer SpiNode::demand(const DeviceCall &call, std::uint32_t only, const char *what) {
    const ClientMemory place = call.memory(sizeof(Number));
    if (!place)
        return DeviceAnswer::fail(EFAULT);
    select(false);
    if (place.get<Number>() == only)
        return {};
    m_log.refused(std::string("SPI: ") + what + " " + std::to_string(place.get<Number>()));
    return DeviceAnswer::fail(EINVAL);
}

DeviceAnswer SpiNode::setBits(const DeviceCall &call) {
    const ClientMemory place = call.memory(1);
    const bool usual = place && place.get<std::uint8_t>() == 0; // 0 stands for 8
    return usual ? DeviceAnswer{} : demand<std::uint8_t>(call, wordBits, "bits per word");
}

DeviceAnswer SpiNode::setSpeed(const DeviceCall &call) {
    const ClientMemory place = call.memory(sizeof m_speed);
    if (!place)
        return DeviceAnswer::fail(EFAULT);
    const auto speed = place.get<std::uint32_t>();
    m_speed = speed != 0 ? speed : usualSpeed;
    return {};
}

bool SpiNode::wellFormed(const spi_ioc_transfer &transfer) {
    constexpr unsigned oneLine = 1;
    const bool good = (transfer.bits_per_word == 0 || transfer.bits_per_word == wordBits) &&
                      transfer.tx_nbits <= oneLine && transfer.rx_nbits <= oneLine;
    if (!good)
        m_log.refused("SPI: a transfer with other than 8 bits per word, or on more than one line");
    return good;
}

// Nothing is clocked before all of the call is found in order.
DeviceAnswer SpiNode::transferAll(const ClientMemory &transfers) {
    std::size_t out = 0;
    std::size_t in = 0;
    std::size_t total = 0;
    for (std::size_t at = 0; at < transfers.size(); at += sizeof(spi_ioc_transfer)) {
        const auto one = transfers.get<spi_ioc_transfer>(at);
        out += one.tx_buf != 0 ? std::size_t{one.len} : 0;
        in += one.rx_buf != 0 ? std::size_t{one.len} : 0;
        total += one.len;
        if (!wellFormed(one))
            return DeviceAnswer::fail(EINVAL);
    }
    if (out > bufferSize || in > bufferSize || total > 2 * bufferSize)
        return DeviceAnswer::fail(EMSGSIZE);
    for (std::size_t at = 0; at < transfers.size(); at += sizeof(spi_ioc_transfer)) {
        const DeviceAnswer answer = transfer(transfers, at, at + sizeof(spi_ioc_transfer) == transfers.size());
        if (answer.error != 0)
            return answer;
    }
    return {static_cast<long>(total), 0};
}

// The chip stays selected between the transfers of a call, and not after the last; cs_change tells of an
// exception in both cases.
DeviceAnswer SpiNode::transfer(const ClientMemory &transfers, std::size_t at, bool last) {
    const auto asked = transfers.get<spi_ioc_transfer>(at);
    const ClientMemory out = transfers.behind(at + offsetof(spi_ioc_transfer, tx_buf), asked.len);
    const ClientMemory in =
        asked.rx_buf == asked.tx_buf ? out : transfers.behind(at + offsetof(spi_ioc_transfer, rx_buf), asked.len);
    select(true);
    clock(out.bytes(), in.bytes(), asked.len, asked.speed_hz != 0 ? asked.speed_hz : m_speed);
    m_busTime += asked.delay_usecs * microsecond;
    select(last == (asked.cs_change != 0));
    return m_chip.hangup() ? DeviceAnswer::fail(ENODEV) : DeviceAnswer{};
}

// Without a buffer zeros go out, and what comes in is dropped.
void SpiNode::clock(const std::uint8_t *out, std::uint8_t *in, std::size_t length, std::uint32_t speed) {
    const Nanoseconds begin = m_busTime;
    for (std::size_t i = 0; i < length; ++i) {
        if (m_pace)
            m_busTime = begin + static_cast<Nanoseconds>(i + 1) * wordBits * second / speed;
        const std::uint8_t byte = m_chip.shift(out != nullptr ? out[i] : std::uint8_t{0}, m_busTime);
        if (in != nullptr)
            in[i] = byte;
    }
}

void SpiNode::select(bool wanted) {
    if (wanted && !m_selected)
        m_chip.select(m_busTime);
    else if (!wanted && m_selected)
        m_chip.deselect(m_busTime);
    m_selected = wanted;
}

// read() and write() on the node: one message, half of it.
DeviceAnswer SpiNode::plain(const DeviceCall &call) {
    const ClientMemory buffer = call.buffer();
    if (buffer.size() > bufferSize)
        return DeviceAnswer::fail(EMSGSIZE);
    const bool read = call.kind == DeviceCall::Kind::read;
    select(true);
    clock(read ? nullptr : buffer.bytes(), read ? buffer.bytes() : nullptr, buffer.size(), m_speed);
    select(false);
    return m_chip.hangup() ? DeviceAnswer::fail(ENODEV) : DeviceAnswer{static_cast<long>(buffer.size()), 0};
}

} // namespace

std::unique_ptr<Port> makeSpiNode(const Machine &machine, const std::string &node, std::string &error) {
    if (!std::regex_match(node, std::regex("spidev[0-9]{1,3}\\.[0-9]{1,3}"))) {
        error = "\"" + node + "\" is no SPI device: --spi takes spidevB.C";
        return nullptr;
    }
    return std::make_unique<Whole<SpiNode>>(machine, node);
}

} // namespace sim
