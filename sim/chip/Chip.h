#pragma once

#include <functional>

#include "sim/chip/ChipTable.h"
#include "sim/chip/OptionBytes.h"
#include "sim/chip/Otp.h"
#include "sim/chip/Protection.h"
#include "sim/chip/Slib.h"
#include "sim/chip/Spim.h"
#include "sim/chip/Time.h"

namespace sim {

// How long erasing and programming take; 0 for no time at all.
struct FlashTime {
    Nanoseconds eraseSector = 0;
    Nanoseconds program256 = 0; // 256 bytes
};

enum class Bank { one, two, three, oneAndTwo };

// The chip behind its bootloader: memory, protection, reset. Every request is checked whole before
// anything is touched. Addresses are the target's; nothing here knows how the request came.
class Chip {
public:
    // `spimSize` in bytes: the SPI flash on the board; a chip without SPIM has none. Chips of one kind with
    // another `number` have another unique identifier.
    Chip(const ChipFacts &facts, std::size_t spimSize, FlashTime flashTime, Faults &faults, unsigned number = 0);
    Chip(const Chip &) = delete;
    Chip &operator=(const Chip &) = delete;

    const ChipFacts &facts() const { return m_facts; }

    // Protection as the option bytes now tell it; SPIM off, remap 0.
    void reset();
    void losePower();
    unsigned resets() const { return m_resets; }

    AccessLevel access() const { return m_protection.access(); }

    // Memory. The checks tell what READ and WRITE themselves would say of an address.
    Outcome checkRead(std::uint32_t address, std::size_t length) const;
    Outcome checkWrite(std::uint32_t address, std::size_t length) const;
    Outcome read(std::uint32_t address, std::size_t length, Bytes &bytes) const;
    Outcome write(std::uint32_t address, const Bytes &bytes);
    Outcome checkGo(std::uint32_t address) const;
    bool goResets(std::uint32_t address) const;

    // Erasing. Sector numbers from 32768 up are SPIM sectors.
    Outcome eraseSectors(const std::vector<unsigned> &sectors);
    Outcome eraseSectorAt(std::uint32_t address); // the one that the address lies in
    Outcome eraseBank(Bank bank);
    Outcome eraseBlock(std::uint32_t address);

    // CRC-32 of what READ answers for whole sectors from the one that starts at the address.
    Outcome checkCrc(std::uint32_t address, unsigned sectors) const;
    std::uint32_t crc(std::uint32_t address, unsigned sectors) const;
    std::uint32_t sectorSize(std::uint32_t address) const; // in main flash and SPIM

    // Option bytes and what they protect. New protection holds from the next reset on.
    Bytes userData() const { return m_options.compact(); }
    Outcome writeUserData(const Bytes &compact);
    Outcome checkAccess(AccessLevel level) const;
    Outcome protectAccess(AccessLevel level);
    Outcome unprotectAccess(); // erases the flash
    Outcome protectBits(const Bytes &bits);
    Outcome unprotectBits();

    const Slib::Area &slib() const { return m_slib.area(); }
    Outcome enableSlib(const Slib::Area &wanted);
    Outcome disableSlib(std::uint32_t password);

    Spim &spim() { return m_spim; }

    // The time that flash work has taken since this was last asked.
    Nanoseconds takeTime();

    // What survives without power, for saving and loading.
    struct Section {
        const char *name;
        Cells *cells;
    };
    std::vector<Section> sections();
    void restoreSlib(const Slib::Area &area) { m_slib.restore(area); }
    std::uint64_t changes();

private:
    struct Region {
        std::uint32_t base;
        std::size_t size;
        unsigned granularity; // of a write
        std::function<Bytes(std::size_t offset, std::size_t length)> read;
        std::function<Outcome(std::size_t offset, const Bytes &bytes)> write; // empty: cannot be written
    };
    struct Span { // sectors to erase
        bool spim;
        unsigned first;
        unsigned count;
    };

    void layOutMemory(unsigned number);
    void addIdentification(unsigned number);
    const Region *regionAt(std::uint32_t address, std::size_t length) const;
    Bytes readFlash(std::size_t offset, std::size_t length) const;
    Outcome writeFlash(std::size_t offset, const Bytes &bytes);
    Outcome writeSpim(std::size_t offset, const Bytes &bytes);
    Outcome programOptions(const Bytes &compact);
    void spendProgramming(std::size_t bytes);

    unsigned flashSectors() const { return m_facts.flashKb * 1024 / m_facts.sectorSize; }
    unsigned spimSectors() const;
    Outcome spanOf(unsigned sector, Span &span) const;
    Outcome spansOf(Bank bank, std::vector<Span> &spans) const;
    Outcome checkErase(const Span &span, bool oneByOne) const;
    Outcome erase(const std::vector<Span> &spans, bool oneByOne);
    bool eraseSpan(const Span &span); // false when the power went

    const ChipFacts &m_facts;
    FlashTime m_flashTime;
    Cells m_flash;
    OptionBytes m_options;
    Otp m_otp;
    Spim m_spim;
    Slib m_slib;
    Protection m_protection;
    Bytes m_ram;
    std::vector<Region> m_regions;
    unsigned m_resets = 0;
    Nanoseconds m_time = 0;
};

} // namespace sim
