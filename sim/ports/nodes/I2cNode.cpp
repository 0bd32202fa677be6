#include "sim/ports/nodes/I2cNode.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <regex>

#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include "libs/zvbl/wire/Wire.h"
#include "sim/links/I2cProtocol.h"
#include "sim/ports/Clock.h"
#include "sim/ports/nodes/NodePort.h"

namespace sim {

namespace {

constexpr Nanoseconds bitTime = second / 400000; // of a paced bus
constexpr unsigned long busFunctions =
    I2C_FUNC_I2C | I2C_FUNC_SMBUS_QUICK | I2C_FUNC_SMBUS_READ_BYTE | I2C_FUNC_SMBUS_WRITE_BYTE;
constexpr std::size_t longestMessage = 8192; // that i2c-dev takes

enum Setting { address };

class I2cNode : public NodePort {
public:
    I2cNode(const Machine &machine, std::string name)
        : NodePort(std::move(name)), m_pace(machine.pace),
          m_bootloader(machine.chip, machine.faults, machine.log, &i2cCommands()),
          m_chip(m_bootloader, machine.faults) {}

    bool addDevice(std::string &error) override;
    void unplug() override { testbed().remove(devicePath(), {nodePath()}); }
    void reset(Nanoseconds now) override { m_chip.reset(now); }
    void losePower(Nanoseconds now) override { m_chip.losePower(now); }

private:
    std::string devicePath() const { return "/devices/platform/zv32/" + name(); }
    std::string nodePath() const { return "/dev/" + name(); }
    DeviceAnswer serve(DeviceCall &call);
    DeviceAnswer ioctl(DeviceCall &call);
    DeviceAnswer selectTarget(DeviceCall &call);
    DeviceAnswer tellFunctions(const DeviceCall &call);
    DeviceAnswer transferAll(const DeviceCall &call);
    DeviceAnswer smbus(const DeviceCall &call);
    DeviceAnswer plain(const DeviceCall &call);
    DeviceAnswer transfer(unsigned target, bool read, std::uint8_t *bytes, std::size_t length);
    void spend(std::size_t bits) { m_busTime += m_pace ? bitTime * static_cast<Nanoseconds>(bits) : 0; }

    bool m_pace;
    Bootloader m_bootloader;
    I2cProtocol m_chip;
    Nanoseconds m_busTime = 0; // up to where the call in hand has come
};

bool I2cNode::addDevice(std::string &error) {
    const std::string number = name().substr(name().find('-') + 1);
    const std::string description = "P: " + devicePath() + "\nN: " + name() + "=00\nE: DEVNAME=" + nodePath() +
                                    "\nE: SUBSYSTEM=i2c-dev\nE: MAJOR=89\nE: MINOR=" + number +
                                    "\nA: name=zv32-sim\\n\n";
    return testbed().add(description, error) &&
           testbed().attach(
               nodePath(), [this](DeviceCall &call) { return serve(call); }, error);
}

// Every call takes the time that it takes on the bus, and the client gets its answer then.
DeviceAnswer I2cNode::serve(DeviceCall &call) {
    m_busTime = clockNow();
    const DeviceAnswer answer = call.kind == DeviceCall::Kind::ioctl ? ioctl(call) : plain(call);
    if (m_chip.hangup())
        hangUp(*m_chip.hangup());
    waitUntil(m_busTime);
    traffic();
    return answer;
}

DeviceAnswer I2cNode::ioctl(DeviceCall &call) {
    switch (call.request()) {
    case I2C_FUNCS: return tellFunctions(call);
    case I2C_SLAVE:
    case I2C_SLAVE_FORCE: return selectTarget(call);
    case I2C_RDWR: return transferAll(call);
    case I2C_SMBUS: return smbus(call);
    case I2C_TENBIT:
        return call.number() == 0 ? DeviceAnswer{} : DeviceAnswer::fail(EINVAL); // as on a bus that has none
    case I2C_PEC:
    case I2C_RETRIES:
    case I2C_TIMEOUT: return {};
    default: return DeviceAnswer::fail(ENOTTY);
    }
}

DeviceAnswer I2cNode::tellFunctions(const DeviceCall &call) {
    const ClientMemory functions = call.memory(sizeof busFunctions);
    if (!functions)
        return DeviceAnswer::fail(EFAULT);
    functions.set(busFunctions);
    return {};
}

DeviceAnswer I2cNode::selectTarget(DeviceCall &call) {
    constexpr unsigned long last = 0x7F;
    if (call.number() > last)
        return DeviceAnswer::fail(EINVAL);
    call.settings[address] = call.number();
    return {};
}

// One message: a start (or a repeated one), the address, and the bytes.
DeviceAnswer I2cNode::transfer(unsigned target, bool read, std::uint8_t *bytes, std::size_t length) {
    constexpr std::size_t bitsOfByte = 9; // with the acknowledgement
    spend(1 + bitsOfByte);
    if (target != wire::i2cAddress || !m_chip.acknowledges(read, m_busTime))
        return DeviceAnswer::fail(ENXIO);
    if (read) {
        const I2cProtocol::Read answer = m_chip.read(length, m_busTime);
        std::copy(answer.bytes.begin(), answer.bytes.end(), bytes);
        m_busTime = std::max(m_busTime, answer.at);
        spend(bitsOfByte * length);
    } else {
        spend(bitsOfByte * length);
        m_chip.write(Bytes(bytes, bytes + length), m_busTime);
    }
    return m_chip.hangup() ? DeviceAnswer::fail(ENODEV) : DeviceAnswer{};
}

DeviceAnswer I2cNode::transferAll(const DeviceCall &call) {
    const ClientMemory request = call.memory(sizeof(i2c_rdwr_ioctl_data));
    const auto asked = request ? request.get<i2c_rdwr_ioctl_data>() : i2c_rdwr_ioctl_data{};
    if (asked.nmsgs == 0 || asked.nmsgs > I2C_RDWR_IOCTL_MAX_MSGS)
        return DeviceAnswer::fail(EINVAL);
    const ClientMemory messages = request.behind(offsetof(i2c_rdwr_ioctl_data, msgs), asked.nmsgs * sizeof(i2c_msg));
    DeviceAnswer answer;
    for (std::size_t at = 0; at < messages.size() && answer.error == 0; at += sizeof(i2c_msg)) {
        const auto message = messages.get<i2c_msg>(at);
        if ((message.flags & ~I2C_M_RD) != 0 || message.len > longestMessage)
            return DeviceAnswer::fail(EINVAL);
        const ClientMemory buffer = messages.behind(at + offsetof(i2c_msg, buf), message.len);
        if (message.len != buffer.size())
            return DeviceAnswer::fail(EFAULT);
        answer = transfer(message.addr, (message.flags & I2C_M_RD) != 0, buffer.bytes(), message.len);
    }
    spend(1); // the stop
    answer.result = answer.error == 0 ? asked.nmsgs : -1;
    return answer;
}

// What bus scans use. A quick transfer has no bytes, a byte that is written stands in `command`.
DeviceAnswer I2cNode::smbus(const DeviceCall &call) {
    const ClientMemory request = call.memory(sizeof(i2c_smbus_ioctl_data));
    const auto asked = request ? request.get<i2c_smbus_ioctl_data>() : i2c_smbus_ioctl_data{};
    const bool read = asked.read_write == I2C_SMBUS_READ;
    const std::size_t length = asked.size == I2C_SMBUS_BYTE ? 1 : 0;
    if (asked.size != I2C_SMBUS_BYTE && asked.size != I2C_SMBUS_QUICK)
        return DeviceAnswer::fail(EOPNOTSUPP);
    std::uint8_t byte = asked.command;
    const auto target = static_cast<unsigned>(call.settings[address]);
    const DeviceAnswer answer = transfer(target, read, &byte, length);
    spend(1);
    if (read && length != 0 && answer.error == 0) {
        const ClientMemory data = request.behind(offsetof(i2c_smbus_ioctl_data, data), 1);
        if (!data)
            return DeviceAnswer::fail(EFAULT);
        data.set(byte);
    }
    return answer;
}

// read() and write() on the node: one message.
DeviceAnswer I2cNode::plain(const DeviceCall &call) {
    const ClientMemory buffer = call.buffer();
    const std::size_t length = std::min(buffer.size(), longestMessage);
    const bool read = call.kind == DeviceCall::Kind::read;
    DeviceAnswer answer = transfer(static_cast<unsigned>(call.settings[address]), read, buffer.bytes(), length);
    spend(1);
    answer.result = answer.error == 0 ? static_cast<long>(length) : -1;
    return answer;
}

} // namespace

std::unique_ptr<Port> makeI2cNode(const Machine &machine, const std::string &node, std::string &error) {
    if (!std::regex_match(node, std::regex("i2c-[0-9]{1,3}"))) {
        error = "\"" + node + "\" is no I2C bus: --i2c takes i2c-N";
        return nullptr;
    }
    return std::make_unique<Whole<I2cNode>>(machine, node);
}

} // namespace sim
