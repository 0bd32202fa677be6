#include "libs/zvbl/framing/I2cFraming.h"

#include <algorithm>

#include "libs/zvbl/Polling.h"
#include "libs/zvbl/framing/Groups.h"

namespace zvbl {
namespace {

// The addresses that are left for targets; those below and above have meanings of their own.
constexpr unsigned firstAddress = 0x08;
constexpr unsigned lastAddress = 0x77;

constexpr unsigned long usualRate = 400000;
constexpr std::uint8_t dutyCycle16to9 = 16; // the first number of "16:9"; all else is 2:1

constexpr int rounds = 3; // of GET: a refusal that ends an old command, an odd answer, and the right one

// The count of ERASE_EXT travels alone here, with a check byte of its own.
Command splitCount(const Command &command) {
    Command split = command;
    Bytes &count = split.groups.front().bytes;
    split.groups.insert(split.groups.begin() + 1, Group{Bytes(count.begin() + 2, count.end())});
    split.groups.front().bytes.resize(2);
    return split;
}

bool hasCount(const Command &command) {
    return command.opcode == wire::opEraseExt && command.groups.front().bytes.size() > 2;
}

} // namespace

// Linux has no call by which a program sets the rate of a bus: the device tree or the adapter's driver
// does. So rate and duty cycle are taken, told in the trace, and change nothing.
Status I2cFraming::start(const StartSettings &settings, Duration timeout) {
    const unsigned address = settings.address ? settings.address : wire::i2cAddress;
    if (address < firstAddress || address > lastAddress)
        return Status::badArgument;
    const unsigned long rate = settings.rate ? settings.rate : usualRate;
    m_trace.remark("asked for " + std::to_string(rate) + " Hz, " +
                   (settings.dutyCycle == dutyCycle16to9 ? "16:9" : "2:1") + "; the bus runs as its driver set it");
    m_address = static_cast<std::uint8_t>(address);
    m_timeout = timeout;
    const Status status = probe();
    m_inStep = status == Status::ok;
    if (m_inStep || status == Status::gone)
        return status;
    return m_acknowledged ? Status::noAnswer : Status::noStart;
}

Status I2cFraming::transfer(const Command &command, Bytes &reply, Duration timeout) {
    return MessageFraming::transfer(hasCount(command) ? splitCount(command) : command, reply, timeout);
}

Status I2cFraming::getInStep() {
    const Status status = probe();
    return status == Status::ok || status == Status::gone ? status : Status::outOfStep;
}

// GET changes nothing, so it is sent until it is answered as GET is.
Status I2cFraming::probe() {
    Command get{wire::opGet};
    get.reply = {true, 0, Reply::End::ack};
    m_probeEnd = Clock::now() + m_timeout;
    m_acknowledged = false;
    Status status = Status::noAnswer;
    for (int round = 0; round < rounds; ++round) {
        Bytes reply;
        status = carry(get, reply);
        if (status == Status::ok || status == Status::gone || Clock::now() >= m_probeEnd)
            break;
    }
    m_probeEnd = TimePoint::max();
    return status;
}

// A chip that starts does not acknowledge its address, nor does one that still works. Where it is not sure
// that an opcode was not taken, only GET is sent again.
Status I2cFraming::sendOpcode(std::uint8_t opcode) {
    const Bytes bytes = encodeOpcode(opcode);
    m_trace.sent(bytes.data(), bytes.size());
    const bool harmless = m_probeEnd != TimePoint::max();
    Polling polling(waitEnd());
    for (;;) {
        const Status status = m_port.write(m_address, bytes);
        if (status == Status::ok)
            m_acknowledged = true;
        if (status == Status::ok || status == Status::gone || (status == Status::noAnswer && !harmless))
            return status;
        if (!polling.again()) {
            m_trace.remark("no answer in time");
            return Status::noAnswer;
        }
    }
}

// A group is not sent twice: a chip that was reset meanwhile could take it for an opcode.
Status I2cFraming::sendGroup(std::uint8_t, const Bytes &bytes) {
    m_trace.sent(bytes.data(), bytes.size());
    const Status status = m_port.write(m_address, bytes);
    return status == Status::refused ? Status::noAnswer : status;
}

Status I2cFraming::takeAnswer(std::uint8_t, std::uint8_t &answer) {
    Bytes bytes(1);
    bool busy = false;
    Polling polling(waitEnd());
    for (;;) {
        const Status status = m_port.read(m_address, bytes);
        if (status == Status::gone)
            return status;
        if (status == Status::ok && bytes[0] != wire::busy)
            break;
        if (status == Status::ok && !busy) {
            m_trace.remark("busy");
            busy = true;
        }
        if (!polling.again()) {
            m_trace.remark("no answer in time");
            return Status::noAnswer;
        }
    }
    m_trace.received(bytes.data(), bytes.size());
    answer = bytes[0];
    return Status::ok;
}

Status I2cFraming::takeReply(const Command &command, Bytes &reply) {
    const Reply &expected = command.reply;
    std::uint8_t count = 0;
    if (expected.counted) {
        if (const Status status = takeCount(command.opcode, count); status != Status::ok)
            return status;
    }
    const std::size_t checks = expected.end == Reply::End::sum ? 1 : 0;
    reply.resize(expected.counted ? count + 2U : expected.size + checks);
    if (const Status status = receive(reply); status != Status::ok)
        return status;
    if ((expected.counted && reply.front() != count) || (checks && sumOf(reply) != 0)) {
        m_trace.remark("wrong checksum");
        return Status::noAnswer;
    }
    if (expected.counted)
        reply.erase(reply.begin());
    reply.resize(reply.size() - checks);
    return Status::ok;
}

// What a read does not fetch is lost. So the count is read alone, and the command, which has no groups, is
// sent again.
Status I2cFraming::takeCount(std::uint8_t opcode, std::uint8_t &count) {
    Bytes bytes(1);
    Status status = receive(bytes);
    count = bytes[0];
    if (status == Status::ok)
        status = sendOpcode(opcode);
    return status == Status::ok ? expectAck(opcode, Status::refusedCommand) : status;
}

Status I2cFraming::receive(Bytes &bytes) {
    const Status status = m_port.read(m_address, bytes);
    if (status == Status::ok)
        m_trace.received(bytes.data(), bytes.size());
    return status == Status::refused ? Status::noAnswer : status;
}

TimePoint I2cFraming::waitEnd() const {
    return std::min<TimePoint>(Clock::now() + m_timeout, m_probeEnd);
}

} // namespace zvbl
