#include "libs/files/MapFile.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "libs/files/Image.h"
#include "libs/files/IniFile.h"
#include "libs/files/InputFile.h"

namespace files {

namespace {

constexpr std::size_t maxFileSize = 1024 * 1024;
constexpr std::size_t maxName = sizeof(MAPPING::Name) - 1;
constexpr std::uint64_t maxSectors = std::numeric_limits<short>::max();
constexpr std::uint64_t minSectorSize = 256; // one packet
constexpr std::uint64_t maxPacketSize = 256;
constexpr int decimal = 10;
constexpr int hexadecimal = 16;

Status readText(const char *path, std::string &text) {
    InputFile file;
    const Status opened = file.open(path);
    if (opened != Status::ok)
        return opened;
    if (file.size() > maxFileSize)
        return Status::badFormat;
    // A byte more than it has: one that grows meanwhile is no whole file.
    text.resize(static_cast<std::size_t>(file.size()) + 1);
    std::size_t got = 0;
    const Status read = file.read(&text[0], text.size(), got);
    if (read != Status::ok)
        return read;
    text.resize(got);
    return got <= file.size() ? Status::ok : Status::badFormat;
}

// Reads numbers out of one section and remembers whether each of those that the table stands on was one.
class Numbers {
public:
    explicit Numbers(const IniSection &section) : m_section(section) {}

    // A key that the table stands on.
    std::uint64_t get(const char *key, int base, std::uint64_t highest, std::uint64_t missing) {
        std::uint64_t value = missing;
        m_valid &= take(key, base, highest, value);
        return value;
    }

    // A key beside the table: one that is no such number counts as missing.
    std::uint64_t getOr(const char *key, int base, std::uint64_t highest, std::uint64_t missing) const {
        std::uint64_t value = missing;
        return take(key, base, highest, value) ? value : missing;
    }
    bool flag(const char *key) const { return getOr(key, decimal, 1, 1) != 0; }
    bool valid() const { return m_valid; }

private:
    // False if the key is there and no number up to the highest.
    bool take(const char *key, int base, std::uint64_t highest, std::uint64_t &value) const {
        const auto place = m_section.find(key);
        if (place == m_section.end())
            return true;
        const char *text = place->second.c_str();
        char *end = nullptr;
        errno = 0;
        value = std::strtoull(text, &end, base);
        // strtoull would take a sign and leading blanks.
        return std::isxdigit(static_cast<unsigned char>(*text)) && *end == '\0' && errno == 0 && value <= highest;
    }

    const IniSection &m_section;
    bool m_valid = true;
};

void readProduct(const IniSection &section, MapFile &map) {
    const auto name = section.find("Name");
    if (name != section.end() && name->second.size() <= maxName)
        map.name = name->second;
    const auto serial = section.find("Serial");
    if (serial != section.end())
        map.serial = serial->second;
    const Numbers numbers(section);
    map.packetSize = static_cast<short>(numbers.getOr("PacketSize", decimal, maxPacketSize, 0));
    map.sectorsPerSector = static_cast<BYTE>(numbers.getOr("SectorsPerSector", decimal, 255, 0));
    map.alternate = static_cast<BYTE>(numbers.getOr("Alternate", decimal, 255, 0));
}

// `next` is the end of the group before.
Status readGroup(const IniSection &section, std::uint64_t next, SectorGroup &group) {
    Numbers numbers(section);
    group.size = numbers.get("Size", hexadecimal, maxImageSize, 0);
    group.count = numbers.get("Count", decimal, maxSectors, 1);
    group.address = numbers.get("Address", hexadecimal, addressSpace - 1, next);
    group.alias = numbers.getOr("Alias", hexadecimal, addressSpace - 1, group.address);
    group.type = static_cast<BYTE>(numbers.getOr("Type", decimal, 255, 0));
    group.operation = numbers.flag("Operation");
    group.erase = numbers.flag("Erase");
    group.upload = numbers.flag("Upload");
    group.protect = numbers.flag("Protect");
    return numbers.valid() && group.size >= minSectorSize && group.count > 0 ? Status::ok : Status::badFormat;
}

// The number after "Sector", or -1 if the section is no group.
long groupNumber(const std::string &name) {
    const std::string prefix = "Sector";
    const std::string digits = name.substr(std::min(name.size(), prefix.size()));
    if (name.compare(0, prefix.size(), prefix) != 0 || digits.empty() || digits.size() > 5 ||
        digits.find_first_not_of("0123456789") != std::string::npos)
        return -1;
    return std::stol(digits);
}

Status readGroups(const IniSections &sections, MapFile &map) {
    std::uint64_t next = flashBase;
    std::uint64_t sectors = 0;
    std::uint64_t bytes = 0;
    for (;;) {
        const auto section = sections.find("Sector" + std::to_string(map.groups.size()));
        if (section == sections.end())
            break;
        SectorGroup group;
        const Status read = readGroup(section->second, next, group);
        if (read != Status::ok)
            return read;
        const std::uint64_t total = group.size * group.count;
        sectors += group.count;
        bytes += total;
        const bool descends = !map.groups.empty() && group.address < next;
        if (descends || group.address + total > addressSpace || sectors > maxSectors || bytes > maxImageSize)
            return Status::badAddressRange;
        next = group.address + total;
        map.groups.push_back(group);
    }
    // A group that the walk did not come to stands after a hole in the numbering.
    long groups = 0;
    for (const auto &section : sections)
        groups += groupNumber(section.first) >= 0;
    map.sectorCount = static_cast<short>(sectors);
    const bool whole = !map.groups.empty() && groups == static_cast<long>(map.groups.size());
    return whole ? Status::ok : Status::badFormat;
}

void fillSector(MAPPINGSECTOR &sector, const SectorGroup &group, std::uint64_t inGroup, std::uint64_t index) {
    std::memset(&sector, 0, sizeof sector);
    std::snprintf(sector.Name, sizeof sector.Name, "Sector%04lu", static_cast<unsigned long>(index));
    sector.dwStartAddress = group.address + inGroup * group.size;
    sector.dwAliasedAddress = group.alias + inGroup * group.size;
    sector.dwSectorIndex = index;
    sector.dwSectorSize = group.size;
    sector.bSectorType = group.type;
    sector.UseForOperation = group.operation;
    sector.UseForErase = group.erase;
    sector.UseForUpload = group.upload;
    sector.UseForEraseProgramProtect = group.protect;
}

} // namespace

Status MapFile::read(const char *path) {
    std::string text;
    const Status loaded = readText(path, text);
    if (loaded != Status::ok)
        return loaded;
    IniSections sections;
    const Status parsed = parseIni(text, sections);
    if (parsed != Status::ok)
        return parsed;
    readProduct(sections["Product"], *this);
    return readGroups(sections, *this);
}

void MapFile::fill(MAPPING &mapping) const {
    mapping.nAlternate = alternate;
    std::memset(mapping.Name, 0, sizeof mapping.Name);
    std::memcpy(mapping.Name, name.data(), name.size());
    std::uint64_t index = 0;
    for (const SectorGroup &group : groups)
        for (std::uint64_t i = 0; i < group.count; ++i, ++index)
            fillSector(mapping.pSectors[index], group, i, index);
    mapping.NbSectors = index;
}

} // namespace files
