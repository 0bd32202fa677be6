#include "libs/zvbl/transport/SpiPort.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

#include <linux/spi/spidev.h>

#include "libs/zvbl/Text.h"

namespace zvbl {
namespace {

constexpr std::uint8_t bitsPerWord = 8;
constexpr std::size_t usualLimit = 4096;
constexpr std::size_t alignment = 128; // the driver may round the length of each part up to as much

// What one call may carry, for all spidev devices together.
std::size_t driverLimit() {
    std::size_t limit = 0;
    std::ifstream parameter("/sys/module/spidev/parameters/bufsiz");
    return parameter >> limit && limit > 0 ? limit : usualLimit;
}

std::uint64_t pointer(const std::uint8_t *bytes) {
    return reinterpret_cast<std::uintptr_t>(bytes);
}

spi_ioc_transfer part(const std::uint8_t *sent, std::uint8_t *heard, std::size_t count, std::uint32_t speed) {
    spi_ioc_transfer transfer{};
    transfer.tx_buf = pointer(sent);
    transfer.rx_buf = pointer(heard);
    transfer.len = static_cast<std::uint32_t>(count);
    transfer.speed_hz = speed;
    transfer.bits_per_word = bitsPerWord;
    return transfer;
}

} // namespace

Status SpiPort::open(const LinkSettings &settings) {
    if (const Status status = m_node.open(settings.portName); status != Status::ok)
        return status;
    if (const Status status = setUp(); status != Status::ok)
        return status;
    m_limit = driverLimit();
    m_trace.remark("open SPI mode 0");
    return Status::ok;
}

Status SpiPort::setUp() {
    std::uint8_t mode = 0;
    if (!m_node.control(SPI_IOC_RD_MODE, &mode))
        return m_node.refuse(errorText(errno));
    mode &= SPI_CS_HIGH; // how the board is wired; the rest may be what another program left
    std::uint8_t bits = bitsPerWord;
    if (!m_node.control(SPI_IOC_WR_MODE, &mode) || !m_node.control(SPI_IOC_WR_BITS_PER_WORD, &bits))
        return m_node.refuse("mode 0 with 8 bits: " + errorText(errno));
    return Status::ok;
}

Status SpiPort::setLine(ControlLine line, bool) {
    m_trace.remark(std::string("no line ") + (line == ControlLine::dtr ? "DTR" : "RTS") + ": an SPI bus");
    return Status::gone;
}

Status SpiPort::setSpeed(std::uint32_t speed) {
    if (!m_node.control(SPI_IOC_WR_MAX_SPEED_HZ, &speed)) {
        const bool refused = errno == EINVAL;
        m_trace.remark("the driver refuses " + std::to_string(speed) + " Hz: " + errorText(errno));
        return refused ? Status::badArgument : Status::gone;
    }
    m_speed = speed;
    m_trace.remark(std::to_string(speed) + " Hz");
    return Status::ok;
}

Status SpiPort::exchange(const Bytes &message, std::size_t count, Bytes &heard) {
    const std::size_t taken = (message.size() + alignment - 1) / alignment * alignment;
    const std::size_t room = m_limit > taken ? m_limit - taken : 1;
    const Bytes zeros(std::min(count, room));
    Bytes fetched(zeros.size());
    spi_ioc_transfer parts[2] = {part(message.data(), nullptr, message.size(), m_speed),
                                 part(zeros.data(), fetched.data(), zeros.size(), m_speed)};
    parts[0].cs_change = 1;
    const bool done =
        message.empty() ? m_node.control(SPI_IOC_MESSAGE(1), &parts[1]) : m_node.control(SPI_IOC_MESSAGE(2), parts);
    if (!done) {
        m_trace.remark("cannot send: " + errorText(errno));
        return Status::gone;
    }
    heard.insert(heard.end(), fetched.begin(), fetched.end());
    return Status::ok;
}

} // namespace zvbl
