// Erasing and checksums: the work that goes by sectors.

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"
#include "sim/chip/Chip.h"
#include "sim/chip/Crc32.h"

namespace sim {

namespace {

// Bank 2 begins here; on a flash above one of the larger limits, at that limit.
constexpr unsigned bankTwoKb = 512;
constexpr unsigned largerLimitsKb[] = {2048, 1024};

unsigned bankOneKb(const ChipFacts &chip) {
    for (const unsigned limit : largerLimitsKb)
        if (chip.flashKb > limit)
            return limit;
    return std::min(chip.flashKb, bankTwoKb);
}

} // namespace

unsigned Chip::spimSectors() const {
    return m_spim.enabledSize() / wire::spimSectorSize;
}

Outcome Chip::spanOf(unsigned sector, Span &span) const {
    const bool inSpim = sector >= wire::firstSpimSector;
    span = {inSpim, inSpim ? sector - wire::firstSpimSector : sector, 1};
    if (span.first >= (inSpim ? spimSectors() : flashSectors()))
        return Outcome::refuse("there is no sector " + std::to_string(sector));
    return {};
}

Outcome Chip::spansOf(Bank bank, std::vector<Span> &spans) const {
    const unsigned bankOne = bankOneKb(m_facts) * 1024 / m_facts.sectorSize;
    const bool hasBankTwo = bankOne < flashSectors();
    if ((bank == Bank::two && !hasBankTwo) || (bank == Bank::three && spimSectors() == 0))
        return Outcome::refuse("there is no such bank");
    if (bank == Bank::one || bank == Bank::oneAndTwo)
        spans.push_back({false, 0, bankOne});
    if ((bank == Bank::two || bank == Bank::oneAndTwo) && hasBankTwo)
        spans.push_back({false, bankOne, flashSectors() - bankOne});
    if (bank == Bank::three)
        spans.push_back({true, 0, spimSectors()});
    return {};
}

Outcome Chip::checkErase(const Span &span, bool oneByOne) const {
    if (span.spim)
        return m_protection.spimProtected() ? Outcome::refuse("SPIM is protected") : Outcome{};
    for (unsigned sector = span.first; sector < span.first + span.count; ++sector) {
        if (m_protection.sectorProtected(sector))
            return Outcome::refuse("sector " + std::to_string(sector) + " is protected");
        if (oneByOne && m_slib.covers(sector))
            return Outcome::refuse("sector " + std::to_string(sector) + " lies in the sLib area");
    }
    return {};
}

bool Chip::eraseSpan(const Span &span) {
    const std::size_t size = span.spim ? wire::spimSectorSize : m_facts.sectorSize;
    m_time += m_flashTime.eraseSector * span.count;
    return (span.spim ? m_spim.cells() : m_flash).erase(span.first * size, span.count * size, size);
}

Outcome Chip::erase(const std::vector<Span> &spans, bool oneByOne) {
    for (const Span &span : spans) {
        Outcome outcome = checkErase(span, oneByOne);
        if (!outcome.done())
            return outcome;
    }
    for (const Span &span : spans)
        if (!eraseSpan(span))
            return Outcome::powerLost();
    return {};
}

Outcome Chip::eraseSectors(const std::vector<unsigned> &sectors) {
    std::vector<Span> spans;
    for (const unsigned sector : sectors) {
        Span span{};
        Outcome outcome = spanOf(sector, span);
        if (!outcome.done())
            return outcome;
        spans.push_back(span);
    }
    return erase(spans, true);
}

Outcome Chip::eraseSectorAt(std::uint32_t address) {
    const Region *region = regionAt(address, 1);
    if (region == nullptr || (region->base != wire::flashBase && region->base != wire::spimBase))
        return Outcome::refuse("there is no sector");
    const bool spim = region->base == wire::spimBase;
    const std::uint32_t number = (address - region->base) / (spim ? wire::spimSectorSize : m_facts.sectorSize);
    return eraseSectors({spim ? wire::firstSpimSector + number : number});
}

Outcome Chip::eraseBank(Bank bank) {
    std::vector<Span> spans;
    Outcome outcome = spansOf(bank, spans);
    return outcome.done() ? erase(spans, false) : outcome;
}

Outcome Chip::eraseBlock(std::uint32_t address) {
    const Region *region = regionAt(address, wire::blockSize);
    const bool spim = address >= wire::spimBase;
    const std::uint32_t base = spim ? wire::spimBase : wire::flashBase;
    if (region == nullptr || region->base != base || (address - base) % wire::blockSize != 0)
        return Outcome::refuse("no block starts there");
    const unsigned size = spim ? wire::spimSectorSize : m_facts.sectorSize;
    return erase({{spim, (address - base) / size, wire::blockSize / size}}, true);
}

Outcome Chip::checkCrc(std::uint32_t address, unsigned sectors) const {
    const bool spim = address >= wire::spimBase;
    const std::uint32_t base = spim ? wire::spimBase : wire::flashBase;
    const std::uint32_t size = spim ? wire::spimSectorSize : m_facts.sectorSize;
    const Region *region = regionAt(address, std::size_t{sectors} * size);
    if (sectors == 0 || region == nullptr || region->base != base)
        return Outcome::refuse("not a run of sectors");
    return (address - base) % size == 0 ? Outcome{} : Outcome::refuse("no sector starts there");
}

std::uint32_t Chip::crc(std::uint32_t address, unsigned sectors) const {
    Bytes bytes;
    const Outcome outcome = read(address, std::size_t{sectors} * sectorSize(address), bytes);
    return outcome.done() ? crc32(bytes.data(), bytes.size()) : 0;
}

std::uint32_t Chip::sectorSize(std::uint32_t address) const {
    return address >= wire::spimBase ? wire::spimSectorSize : m_facts.sectorSize;
}

} // namespace sim
