#include "line/plan/Chip.h"

#include <cinttypes>
#include <cstdio>

#include "device/Families.h"
#include "device/MapDirectory.h"
#include "libs/files/Image.h"
#include "libs/files/MapFile.h"

namespace {

constexpr int newestBootloader = 0xFFFF; // has the longest form

bool isName(const std::string &text) {
    return text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-") == text.npos;
}

// Two hexadecimal digits.
int seriesOf(const std::string &text) {
    const bool isOne = text.size() == 2 && text.find_first_not_of("0123456789ABCDEF") == text.npos;
    return isOne ? std::stoi(text, nullptr, 16) : 0;
}

} // namespace

std::string rangeText(std::uint64_t first, std::uint64_t end) {
    char text[40];
    std::snprintf(text, sizeof text, "%08" PRIX64 "-%08" PRIX64, first, end - 1);
    return text;
}

Chip::Chip(const std::string &name, const Place &place) {
    files::MapFile map;
    const std::string directory = mapDirectory();
    const files::Status read =
        isName(name) ? map.read((directory + name + ".ZVmap").c_str()) : files::Status::unableToOpenFile;
    if (read == files::Status::unableToOpenFile)
        place.refuse("no map file of such a chip in " + directory);
    if (read != files::Status::ok)
        place.refuse("its map file in " + directory + " is not right, which zv32-check-map explains");
    m_series = seriesOf(map.serial);
    for (const files::SectorGroup &group : map.groups)
        for (std::uint64_t i = 0; i < group.count && group.address < files::spimBase; ++i)
            m_sectors.push_back(
                {static_cast<std::uint32_t>(group.address + i * group.size), static_cast<std::uint32_t>(group.size)});
    if (m_sectors.empty())
        place.refuse("its map file in " + directory + " has no flash");
}

bool Chip::holds(std::uint64_t first, std::uint64_t end) const {
    for (const Sector &sector : m_sectors)
        if (first >= sector.address && first < sector.end())
            first = sector.end();
    return first >= end;
}

const Family &Chip::family() const {
    return familyOf(m_series);
}

std::vector<NamedOptionByte> Chip::optionBytes() const {
    const int sectorSize = static_cast<int>(m_sectors.front().size);
    return namedOptionBytes(m_series, optionLengths(m_series, newestBootloader, sectorSize).compact);
}

std::string Chip::range() const {
    return rangeText(m_sectors.front().address, m_sectors.back().end());
}
