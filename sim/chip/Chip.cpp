#include "sim/chip/Chip.h"

#include <algorithm>
#include <utility>

#include "libs/zvbl/wire/Wire.h"
#include "sim/chip/Crc32.h"

namespace sim {

namespace {

constexpr std::uint8_t blank = 0xFF;

// A serial number of its own for every kind of chip, the same in every run.
Bytes uniqueIdOf(const ChipFacts &chip, unsigned number) {
    constexpr std::size_t length = 12;
    Bytes id;
    std::uint32_t word = number;
    while (id.size() < length) {
        word = crc32(reinterpret_cast<const std::uint8_t *>(chip.name.data()), chip.name.size(), word);
        for (unsigned shift = 0; shift < 32; shift += 8)
            id.push_back(static_cast<std::uint8_t>(word >> shift));
    }
    return id;
}

Bytes blockIdentifierOf(const ChipFacts &chip) {
    constexpr std::uint8_t ofChipsWithoutBid = 0x41;
    Bytes bytes(8, blank);
    bytes[6] = chip.bid != 0 ? chip.bid : ofChipsWithoutBid;
    return bytes;
}

} // namespace

Chip::Chip(const ChipFacts &facts, std::size_t spimSize, FlashTime flashTime, Faults &faults, unsigned number)
    : m_facts(facts), m_flashTime(flashTime), m_flash(facts.flashKb * 1024, CellKind::flash, 1, faults),
      m_options(facts, faults), m_otp(facts, faults), m_spim(facts.spim ? spimSize : 0, faults),
      m_protection(facts, m_options), m_ram(facts.ramKb * 1024) {
    layOutMemory(number);
}

void Chip::layOutMemory(unsigned number) {
    const auto cells = [](const Cells &of) {
        return [&of](std::size_t offset, std::size_t length) { return of.read(offset, length); };
    };
    m_regions.push_back({wire::flashBase, m_flash.size(), wire::writeGranularity,
                         [this](std::size_t offset, std::size_t length) { return readFlash(offset, length); },
                         [this](std::size_t offset, const Bytes &bytes) { return writeFlash(offset, bytes); }});
    m_regions.push_back({wire::spimBase, m_spim.cells().size(), wire::writeGranularity, cells(m_spim.cells()),
                         [this](std::size_t offset, const Bytes &bytes) { return writeSpim(offset, bytes); }});
    m_regions.push_back({layoutOf(m_facts).address, m_options.cells().size(), 1, cells(m_options.cells()), {}});
    m_regions.push_back({m_facts.otpAddress, m_otp.data().size(), 1, cells(m_otp.data()),
                         [this](std::size_t offset, const Bytes &bytes) { return m_otp.writeData(offset, bytes); }});
    m_regions.push_back({Otp::lockAddress, m_otp.locks().size(), 1, cells(m_otp.locks()),
                         [this](std::size_t offset, const Bytes &bytes) { return m_otp.writeLocks(offset, bytes); }});
    m_regions.push_back({wire::ramBase, m_ram.size(), 1,
                         [this](std::size_t offset, std::size_t length) {
                             const auto first = m_ram.begin() + static_cast<std::ptrdiff_t>(offset);
                             return Bytes(first, first + static_cast<std::ptrdiff_t>(length));
                         },
                         [this](std::size_t offset, const Bytes &bytes) {
                             std::copy(bytes.begin(), bytes.end(), m_ram.begin() + static_cast<std::ptrdiff_t>(offset));
                             return Outcome{};
                         }});
    addIdentification(number);
}

void Chip::addIdentification(unsigned number) {
    const auto fixed = [this](std::uint32_t base, const Bytes &content) {
        m_regions.push_back({base,
                             content.size(),
                             1,
                             [content](std::size_t offset, std::size_t length) {
                                 const auto first = content.begin() + static_cast<std::ptrdiff_t>(offset);
                                 return Bytes(first, first + static_cast<std::ptrdiff_t>(length));
                             },
                             {}});
    };
    fixed(wire::flashSizeRegister,
          {static_cast<std::uint8_t>(m_facts.flashKb), static_cast<std::uint8_t>(m_facts.flashKb >> 8)});
    fixed(wire::uniqueId, uniqueIdOf(m_facts, number));
    fixed(wire::blockIdentifier, blockIdentifierOf(m_facts));
}

void Chip::reset() {
    m_protection.latch();
    m_spim.reset();
    ++m_resets;
}

void Chip::losePower() {
    std::fill(m_ram.begin(), m_ram.end(), std::uint8_t{0});
    reset();
}

const Chip::Region *Chip::regionAt(std::uint32_t address, std::size_t length) const {
    for (const Region &region : m_regions) {
        const std::size_t size = region.base == wire::spimBase ? m_spim.enabledSize() : region.size;
        if (address >= region.base && length <= size && address - region.base <= size - length)
            return &region;
    }
    return nullptr;
}

Outcome Chip::checkRead(std::uint32_t address, std::size_t length) const {
    return regionAt(address, length) != nullptr ? Outcome{} : Outcome::refuse("not inside a memory of this chip");
}

Outcome Chip::checkWrite(std::uint32_t address, std::size_t length) const {
    const Region *region = regionAt(address, length);
    if (region == nullptr)
        return Outcome::refuse("not inside a memory of this chip");
    if (!region->write)
        return Outcome::refuse("this memory cannot be written");
    return address % region->granularity == 0 ? Outcome{} : Outcome::refuse("address is not a multiple of 4");
}

Outcome Chip::read(std::uint32_t address, std::size_t length, Bytes &bytes) const {
    const Outcome outcome = checkRead(address, length);
    if (outcome.done()) {
        const Region *region = regionAt(address, length);
        bytes = region->read(address - region->base, length);
    }
    return outcome;
}

Outcome Chip::write(std::uint32_t address, const Bytes &bytes) {
    const Outcome outcome = checkWrite(address, bytes.size());
    if (!outcome.done())
        return outcome;
    const Region *region = regionAt(address, bytes.size());
    if (bytes.size() % region->granularity != 0)
        return Outcome::refuse("length is not a multiple of 4");
    return region->write(address - region->base, bytes);
}

Outcome Chip::checkGo(std::uint32_t address) const {
    const Region *region = regionAt(address, 1);
    const bool runnable = region != nullptr && (region->base == wire::flashBase || region->base == wire::spimBase ||
                                                region->base == wire::ramBase);
    return runnable ? Outcome{} : Outcome::refuse("no code can run there");
}

bool Chip::goResets(std::uint32_t address) const {
    constexpr std::uint32_t word = 4;
    return m_facts.goToEndResets && address == wire::flashBase + m_flash.size() - word;
}

Bytes Chip::readFlash(std::size_t offset, std::size_t length) const {
    Bytes bytes = m_flash.read(offset, length);
    for (std::size_t i = 0, part = 0; i < length; i += part) {
        const std::size_t at = offset + i;
        part = std::min(m_facts.sectorSize - at % m_facts.sectorSize, length - i);
        if (m_slib.hides(static_cast<unsigned>(at / m_facts.sectorSize)))
            std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(i), part, blank);
    }
    return bytes;
}

Outcome Chip::writeFlash(std::size_t offset, const Bytes &bytes) {
    const std::size_t last = (offset + bytes.size() - 1) / m_facts.sectorSize;
    for (std::size_t sector = offset / m_facts.sectorSize; sector <= last; ++sector) {
        const auto number = static_cast<unsigned>(sector);
        if (m_protection.sectorProtected(number) || m_slib.covers(number))
            return Outcome::refuse("sector " + std::to_string(number) + " is protected");
    }
    if (!m_flash.canProgram(offset, bytes))
        return Outcome::refuseNotErased("cell not erased");
    spendProgramming(bytes.size());
    return m_flash.program(offset, bytes) ? Outcome{} : Outcome::powerLost();
}

Outcome Chip::writeSpim(std::size_t offset, const Bytes &bytes) {
    if (m_protection.spimProtected())
        return Outcome::refuse("SPIM is protected");
    if (!m_spim.cells().canProgram(offset, bytes))
        return Outcome::refuseNotErased("cell not erased");
    spendProgramming(bytes.size());
    return m_spim.cells().program(offset, bytes) ? Outcome{} : Outcome::powerLost();
}

void Chip::spendProgramming(std::size_t bytes) {
    constexpr Nanoseconds page = 256;
    m_time += m_flashTime.program256 * static_cast<Nanoseconds>(bytes) / page;
}

Nanoseconds Chip::takeTime() {
    return std::exchange(m_time, 0);
}

std::vector<Chip::Section> Chip::sections() {
    return {{"flash", &m_flash},
            {"option bytes", &m_options.cells()},
            {"OTP data", &m_otp.data()},
            {"OTP locks", &m_otp.locks()},
            {"SPIM", &m_spim.cells()}};
}

std::uint64_t Chip::changes() {
    std::uint64_t sum = m_slib.changes();
    for (const Section &section : sections())
        sum += section.cells->changes();
    return sum;
}

} // namespace sim
