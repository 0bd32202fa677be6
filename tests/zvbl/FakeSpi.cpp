#include "tests/zvbl/FakeSpi.h"

#include <algorithm>
#include <cerrno>

#include <linux/spi/spidev.h>

#include "tests/zvbl/Pty.h"

namespace {

// The driver's limit, and how it rounds the length of each part of a call.
constexpr std::size_t bufferSize = 4096;
constexpr std::size_t rounded(std::size_t length) {
    return (length + 127) / 128 * 128;
}

bool areZeros(const zvbl::Bytes &bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte == 0; });
}

} // namespace

void FakeSpi::play(Exchanges script, std::uint8_t idle) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_script = std::move(script);
    m_at = 0;
    m_ready.clear();
    m_idle = idle;
    m_count = 0;
    m_complaint.clear();
}

std::string FakeSpi::finish() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_at < m_script.size())
        complain("never came: " + m_script[m_at].message);
    if (!areZeros(m_ready))
        complain("not fetched: " + hex(m_ready));
    return m_complaint;
}

int FakeSpi::count() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_count;
}

void FakeSpi::complain(const std::string &what) {
    if (m_complaint.empty())
        m_complaint = "message " + std::to_string(m_at) + ": " + what;
}

long FakeSpi::answer(unsigned long request, UMockdevIoctlData *argument, int &error) {
    if (_IOC_TYPE(request) == SPI_IOC_MAGIC && _IOC_NR(request) == 0)
        return transfer(argument, _IOC_SIZE(request) / sizeof(spi_ioc_transfer), error);
    if (request == SPI_IOC_RD_MODE) {
        const auto now = static_cast<std::uint8_t>(mode);
        Pointed(argument, 0, 1).set(&now, 1);
        return 0;
    }
    error = settingsFail.empty() ? ENOTTY : errorNamed(settingsFail);
    if (!settingsFail.empty())
        return -1;
    if (request == SPI_IOC_WR_MODE)
        mode = *Pointed(argument, 0, 1).as<std::uint8_t>();
    else if (request == SPI_IOC_WR_BITS_PER_WORD)
        bits = *Pointed(argument, 0, 1).as<std::uint8_t>();
    else if (request == SPI_IOC_WR_MAX_SPEED_HZ)
        speed = *Pointed(argument, 0, 4).as<std::uint32_t>();
    else
        return -1;
    return 0;
}

long FakeSpi::transfer(UMockdevIoctlData *argument, std::size_t parts, int &error) {
    const int number = m_count++;
    if (failAt >= 0 && number >= failAt) {
        error = errorNamed(failure);
        return -1;
    }
    const Pointed record(argument, 0, parts * sizeof(spi_ioc_transfer));
    const auto *part = record.as<spi_ioc_transfer>();
    std::size_t total = 0;
    for (std::size_t i = 0; i < parts; ++i, ++part) {
        const std::size_t at = i * sizeof(spi_ioc_transfer);
        const bool isMessage = i + 1 < parts;
        total += rounded(part->len);
        if (part->speed_hz != speed || part->bits_per_word != 8 || bool(part->cs_change) != isMessage)
            complain("speed, bits or select of part " + std::to_string(i));
        const Pointed sent(record.data(), at + offsetof(spi_ioc_transfer, tx_buf), part->len);
        const zvbl::Bytes bytes(sent.as<std::uint8_t>(), sent.as<std::uint8_t>() + part->len);
        if (isMessage) {
            takeMessage(bytes);
            continue;
        }
        if (bytes.empty() || !areZeros(bytes))
            complain("fetching with " + hex(bytes));
        const zvbl::Bytes fetched = fetch(part->len);
        Pointed(record.data(), at + offsetof(spi_ioc_transfer, rx_buf), part->len).set(fetched.data(), fetched.size());
    }
    error = EMSGSIZE;
    return parts <= 2 && total <= bufferSize ? static_cast<long>(total) : -1;
}

void FakeSpi::takeMessage(const zvbl::Bytes &message) {
    if (m_at >= m_script.size()) {
        complain("after the end " + hex(message));
        return;
    }
    if (message != hex(m_script[m_at].message))
        complain(hex(message) + " for " + m_script[m_at].message);
    m_ready = hex(m_script[m_at].fetched);
    ++m_at;
}

zvbl::Bytes FakeSpi::fetch(std::size_t count) {
    const auto end = m_ready.begin() + static_cast<std::ptrdiff_t>(std::min(count, m_ready.size()));
    zvbl::Bytes bytes(m_ready.begin(), end);
    m_ready.erase(m_ready.begin(), end);
    bytes.resize(count, m_idle);
    return bytes;
}
