#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fuzz {

// Readers of image and map files beside those of the library, written so that they can be checked by eye against
// docs/image-files.md and docs/map-file.md: one character after the other, no thought of speed.

// What stands at each address.
using Cells = std::map<std::uint64_t, std::uint8_t>;

// Intel HEX, and Motorola S-records. Nothing: the file is refused.
std::optional<Cells> readHexPlainly(const std::string &text);
std::optional<Cells> readSRecordPlainly(const std::string &text);

struct PlainSector {
    std::uint64_t address;
    std::uint64_t size;
    bool operator==(const PlainSector &other) const { return address == other.address && size == other.size; }
};

// The sectors of a map file. Nothing: the file is refused.
std::optional<std::vector<PlainSector>> readMapPlainly(const std::string &text);

} // namespace fuzz
