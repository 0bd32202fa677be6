#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "line/job/Table.h"
#include "usersystemdata/OptionNames.h"

struct Family;

// A chip as its map file tells it, without an external flash.
class Chip {
public:
    struct Sector {
        std::uint32_t address;
        std::uint32_t size; // bytes
        std::uint64_t end() const { return std::uint64_t(address) + size; }
    };

    // Throws Refusal for a name that has no map file, or one that can't be used; the place is that of the name.
    Chip(const std::string &name, const Place &place);

    // In the order of their numbers, from 0.
    const std::vector<Sector> &sectors() const { return m_sectors; }
    // Whether all of the bytes, from first to the one before end, are flash.
    bool holds(std::uint64_t first, std::uint64_t end) const;
    // "08000000-080FFFFF"
    std::string range() const;

    const Family &family() const;
    // All that it may have: of some chips the bootloader tells how many there are.
    std::vector<NamedOptionByte> optionBytes() const;

private:
    int m_series = 0; // a MCUSERIALS value; 0 where the map file is for several families
    std::vector<Sector> m_sectors;
};

// "08000000-0803B88B"
std::string rangeText(std::uint64_t first, std::uint64_t end);
