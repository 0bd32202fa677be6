#include "libs/zvbl/transport/I2cPort.h"

#include <cerrno>
#include <cstring>

#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include "libs/zvbl/Text.h"

namespace zvbl {
namespace {

enum class Meaning { notTaken, unknown, refused };

// What the drivers say when a transfer fails. Most answer ENXIO when nobody acknowledges the address, as
// the kernel's list of fault codes has it, but that list is young: EREMOTEIO is an older way to say so, and
// EIO and ETIMEDOUT can mean anything from a missing acknowledge to an unplugged adapter.
Meaning meaningOf(int error) {
    switch (error) {
    case ENXIO:
    case EREMOTEIO: // also a byte after the address: a message that was not taken whole
    case EAGAIN:    // lost to another master of the bus
        return Meaning::notTaken;
    case ENODEV:
    case ESHUTDOWN:
    case EBADF:
    case ENOTTY:
    case EINVAL:
    case EOPNOTSUPP: // an adapter that can't do messages of this length
    case EACCES:
    case EPERM:
    case ENOMEM: return Meaning::refused;
    default: // EIO, ETIMEDOUT, EBUSY, EPROTO, EINTR and what else there is
        return Meaning::unknown;
    }
}

} // namespace

Status I2cPort::open(const LinkSettings &settings) {
    if (const Status status = m_node.open(settings.portName); status != Status::ok)
        return status;
    unsigned long functions = 0;
    if (!m_node.control(I2C_FUNCS, &functions))
        return m_node.refuse(errorText(errno));
    if (!(functions & I2C_FUNC_I2C))
        return m_node.refuse("the adapter speaks SMBus only");
    m_trace.remark("open I2C");
    return Status::ok;
}

Status I2cPort::setLine(ControlLine line, bool) {
    m_trace.remark(std::string("no line ") + (line == ControlLine::dtr ? "DTR" : "RTS") + ": an I2C bus");
    return Status::gone;
}

Status I2cPort::write(std::uint8_t address, const Bytes &bytes) {
    Bytes copy = bytes; // the kernel's record has no const
    return transfer(address, 0, copy.data(), copy.size());
}

Status I2cPort::read(std::uint8_t address, Bytes &bytes) {
    return transfer(address, I2C_M_RD, bytes.data(), bytes.size());
}

Status I2cPort::transfer(std::uint8_t address, std::uint16_t flags, std::uint8_t *bytes, std::size_t count) {
    if (m_gone)
        return Status::gone;
    i2c_msg message{address, flags, static_cast<std::uint16_t>(count), bytes};
    i2c_rdwr_ioctl_data transfer{&message, 1};
    if (!m_node.control(I2C_RDWR, &transfer))
        return judge(errno);
    m_told = 0;
    return Status::ok;
}

Status I2cPort::judge(int error) {
    const Meaning meaning = meaningOf(error);
    if (error != m_told)
        m_trace.remark(std::string(meaning == Meaning::refused ? "cannot send: " : "not acknowledged: ") +
                       errorText(error));
    m_told = error;
    if (!m_node.isThere() || error == ENODEV || error == ESHUTDOWN) {
        m_trace.remark("the device is gone");
        m_gone = true;
    }
    if (m_gone || meaning == Meaning::refused)
        return Status::gone;
    return meaning == Meaning::notTaken ? Status::refused : Status::noAnswer;
}

} // namespace zvbl
