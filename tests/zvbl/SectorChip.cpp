#include "tests/zvbl/SectorChip.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr int patienceMs = 10;
constexpr std::size_t sectorSize = 2048;
constexpr std::uint8_t ack = 0x79;
constexpr std::uint8_t nack = 0x1F;
constexpr std::uint8_t openingByte = 0x7F;

std::size_t number(const zvbl::Bytes &bytes, std::size_t count) {
    std::size_t value = 0;
    for (std::size_t i = 0; i < count; ++i)
        value = value << 8 | bytes[i];
    return value;
}

std::uint32_t bitwiseCrc(const std::uint8_t *data, std::size_t count, std::uint32_t polynomial, std::uint32_t start) {
    std::uint32_t crc = start;
    for (std::size_t i = 0; i < count; ++i) {
        crc ^= data[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? polynomial : 0);
    }
    return crc ^ 0xFFFFFFFF;
}

zvbl::Bytes checked(const std::vector<std::uint32_t> &values) {
    zvbl::Bytes bytes{ack};
    std::uint8_t sum = 0;
    for (const std::uint32_t value : values) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            bytes.push_back(static_cast<std::uint8_t>(value >> shift));
            sum = static_cast<std::uint8_t>(sum ^ bytes.back());
        }
    }
    bytes.push_back(sum);
    return bytes;
}

} // namespace

SectorChip::SectorChip(Pty &pty, zvbl::Bytes memory, Crc crc)
    : m_pty(pty), m_memory(std::move(memory)), m_crc(crc), m_thread([this] { serve(); }) {}

SectorChip::~SectorChip() {
    m_stop = true;
    m_thread.join();
}

void SectorChip::serve() {
    while (!m_stop) {
        const zvbl::Bytes opcode = take(1);
        if (opcode.empty())
            continue;
        if (opcode[0] == openingByte)
            answer({nack});
        else if (take(1).size() == 1)
            serveOne(opcode[0]);
    }
}

void SectorChip::serveOne(std::uint8_t opcode) {
    if (opcode == 0x00)
        serveList();
    else if (opcode == 0x11)
        serveRead();
    else if (opcode == 0x44)
        serveErase();
    else if (opcode == 0xAC && m_crc != Crc::refused)
        serveCrc();
    else
        answer({nack});
}

void SectorChip::serveList() {
    const int list = ++lists;
    if (m_crc == Crc::listedOnce && list > 1) {
        answer({nack});
        return;
    }
    const bool hides = m_crc == Crc::notListed || m_crc == Crc::listedOnce || (m_crc == Crc::hiddenOnce && list == 1);
    zvbl::Bytes commands = hex(hides ? "79 01 21 11 79" : "79 02 21 11 AC 79");
    if (m_crc == Crc::listsDiffer)
        commands = {ack, 2, 0x21, 0x11, static_cast<std::uint8_t>(0xF0 + list), ack};
    answer(commands);
}

std::size_t SectorChip::toldSize() const {
    switch (m_crc) {
    case Crc::oddSize: return 2000;
    case Crc::tinySize: return 1;
    case Crc::hugeSize: return 128 * 1024;
    case Crc::sizeLost: return sizeQuestions < 3 ? 2000 : sectorSize;
    default: return sectorSize;
    }
}

void SectorChip::serveRead() {
    answer({ack});
    const zvbl::Bytes address = take(5);
    answer({ack});
    const zvbl::Bytes count = take(2);
    if (count.size() < 2)
        return;
    const std::size_t from = number(address, 4) - base;
    zvbl::Bytes reply{ack};
    for (std::size_t i = 0; i <= count[0]; ++i)
        reply.push_back(m_memory.at(from + i));
    const int read = ++reads;
    if (damageAll || damagedReads.count(read) > 0)
        reply[2] ^= static_cast<std::uint8_t>(read % 255 + 1);
    answer(reply);
    m_dead = m_dead || read == lastRead;
}

void SectorChip::serveCrc() {
    answer({ack});
    const zvbl::Bytes address = take(5);
    answer({ack});
    const zvbl::Bytes count = take(3);
    if (count.size() < 3)
        return;
    const std::size_t sectors = number(count, 2);
    if (sectors == 0) {
        ++sizeQuestions;
        answer(m_crc == Crc::sizeNotTold ? zvbl::Bytes{nack} : checked({static_cast<std::uint32_t>(toldSize())}));
        return;
    }
    if ((sectors & 0x8000) != 0) {
        serveCrcOfEach(number(address, 4) - base, sectors & 0x7FFF);
        return;
    }
    ++questions;
    m_dead = m_dead || m_crc == Crc::deadly;
    if (m_crc == Crc::refusedCount)
        answer({nack});
    else if (m_crc != Crc::dropped && (m_crc != Crc::droppedLater || questions == 1))
        answer(checked({checksum(number(address, 4) - base, sectors * sectorSize)}));
}

void SectorChip::serveCrcOfEach(std::size_t from, std::size_t sectors) {
    ++questionsOfEach;
    m_dead = m_crc == Crc::deadlyOfEach;
    if (m_dead || m_crc == Crc::silentOfEach)
        return;
    const bool known = m_crc != Crc::notOfEach && (m_crc != Crc::fewOfEach || sectors <= 2);
    if (!known || from + sectors * sectorSize > m_memory.size()) {
        answer({nack});
        return;
    }
    std::vector<std::uint32_t> values;
    for (std::size_t i = 0; i < sectors; ++i)
        values.push_back(checksum(from + i * sectorSize, sectorSize));
    answer(checked(values));
}

void SectorChip::serveErase() {
    answer({ack});
    const std::size_t sector = number(take(5), 4);
    std::fill_n(m_memory.begin() + static_cast<std::ptrdiff_t>(sector * sectorSize), sectorSize, std::uint8_t{0xFF});
    answer({ack});
}

std::uint32_t SectorChip::checksum(std::size_t from, std::size_t count) const {
    const std::uint8_t *const data = m_memory.data() + from;
    switch (m_crc) {
    case Crc::otherPolynomial: return bitwiseCrc(data, count, 0x82F63B78, 0xFFFFFFFF);
    case Crc::otherStart: return bitwiseCrc(data, count, 0xEDB88320, 0);
    case Crc::alwaysTheSame: return 0x12345678;
    case Crc::spoiltOnce: return bitwiseCrc(data, count, 0xEDB88320, 0xFFFFFFFF) ^ (questions == 1 ? 0x01000100 : 0);
    default: return bitwiseCrc(data, count, 0xEDB88320, 0xFFFFFFFF);
    }
}

// What the host sends next; less, when the test is over or the host has given up.
zvbl::Bytes SectorChip::take(std::size_t count) {
    constexpr int longestPause = 20;
    for (int pauses = 0; m_heard.size() < count && !m_stop && pauses < longestPause;) {
        const zvbl::Bytes more = m_pty.read(patienceMs);
        m_heard.insert(m_heard.end(), more.begin(), more.end());
        pauses = more.empty() ? pauses + 1 : 0;
    }
    const auto end = m_heard.begin() + static_cast<std::ptrdiff_t>(std::min(count, m_heard.size()));
    const zvbl::Bytes taken(m_heard.begin(), end);
    m_heard.erase(m_heard.begin(), end);
    return taken;
}

void SectorChip::answer(const zvbl::Bytes &bytes) {
    if (!m_dead)
        m_pty.write(bytes);
}
