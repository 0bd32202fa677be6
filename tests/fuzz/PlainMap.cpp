#include <limits>
#include <set>
#include <sstream>

#include "tests/fuzz/PlainReaders.h"

namespace fuzz {

namespace {

using Section = std::map<std::string, std::string>;
using Sections = std::map<std::string, Section>;

constexpr std::uint64_t mostBytes = 256 * 1024 * 1024;
constexpr std::uint64_t mostSectors = 32767;

std::string withoutBlanks(std::string text) {
    const std::string blanks = " \t\r";
    while (!text.empty() && blanks.find(text.back()) != std::string::npos)
        text.pop_back();
    while (!text.empty() && blanks.find(text.front()) != std::string::npos)
        text.erase(0, 1);
    return text;
}

// A semicolon begins a comment, unless it stands in quotes; quotes around the whole are taken off.
std::string value(const std::string &text) {
    std::size_t end = 0;
    for (bool quoted = false; end < text.size() && (quoted || text[end] != ';'); ++end)
        if (text[end] == '"')
            quoted = !quoted;
    std::string plain = withoutBlanks(text.substr(0, end));
    if (plain.size() > 1 && plain.front() == '"' && plain.back() == '"')
        plain = plain.substr(1, plain.size() - 2);
    return plain;
}

bool readSections(const std::string &text, Sections &sections) {
    std::istringstream in(text.rfind("\xEF\xBB\xBF", 0) == 0 ? text.substr(3) : text);
    Section *section = nullptr;
    for (std::string line; std::getline(in, line);) {
        line = withoutBlanks(line);
        if (line.find('\0') != std::string::npos)
            return false;
        if (line.empty() || line[0] == ';' || line[0] == '#')
            continue;
        if (line[0] == '[') {
            const std::string head = value(line);
            const std::string name = withoutBlanks(head.substr(1, head.size() - 2));
            if (head.back() != ']' || sections.count(name) > 0)
                return false;
            section = &sections[name];
            continue;
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos || !section)
            return false;
        const std::string key = withoutBlanks(line.substr(0, equals));
        if (key.empty() || section->count(key) > 0)
            return false;
        (*section)[key] = value(line.substr(equals + 1));
    }
    return true;
}

// The number of a key, or that for a key that is not there. False: it is none, or too large.
bool number(const Section &section, const std::string &key, unsigned base, std::uint64_t highest,
            std::uint64_t &value) {
    const auto place = section.find(key);
    if (place == section.end())
        return true;
    std::string text = place->second;
    const std::string digits = base == 10 ? "0123456789" : "0123456789abcdef";
    if (base == 16 && text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X'))
        text.erase(0, 2);
    value = 0;
    for (const char c : text) {
        const std::size_t digit = digits.find(static_cast<char>(c >= 'A' && c <= 'F' ? c - 'A' + 'a' : c));
        if (digit == std::string::npos)
            return false;
        value = value * base + digit;
        if (value > highest)
            return false;
    }
    return !text.empty();
}

bool isGroupName(const std::string &name) {
    return name.rfind("Sector", 0) == 0 && name.size() > 6 && name.size() <= 11 &&
           name.find_first_not_of("0123456789", 6) == std::string::npos;
}

} // namespace

std::optional<std::vector<PlainSector>> readMapPlainly(const std::string &text) {
    Sections sections;
    if (text.size() > 1024 * 1024 || !readSections(text, sections))
        return std::nullopt;
    std::vector<PlainSector> sectors;
    std::size_t groups = 0;
    std::uint64_t next = 0x08000000;
    std::uint64_t bytes = 0;
    for (; sections.count("Sector" + std::to_string(groups)) > 0; ++groups) {
        const Section &section = sections["Sector" + std::to_string(groups)];
        std::uint64_t size = 0;
        std::uint64_t count = 1;
        std::uint64_t address = next;
        if (!number(section, "Size", 16, mostBytes, size) || !number(section, "Count", 10, mostSectors, count) ||
            !number(section, "Address", 16, 0xFFFFFFFF, address) || size < 256 || count == 0)
            return std::nullopt;
        bytes += size * count;
        if ((groups > 0 && address < next) || address + size * count > 0x100000000 ||
            sectors.size() + count > mostSectors || bytes > mostBytes)
            return std::nullopt;
        for (std::uint64_t i = 0; i < count; ++i)
            sectors.push_back({address + i * size, size});
        next = address + size * count;
    }
    std::size_t named = 0;
    for (const auto &section : sections)
        named += isGroupName(section.first);
    return groups > 0 && named == groups ? std::optional(sectors) : std::nullopt;
}

} // namespace fuzz
