#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "device/FilesInc.h"
#include "libs/files/Status.h"

namespace files {

// More than any chip of the family has, external flash included; keeps a hostile file from filling
// the memory.
constexpr std::size_t maxImageSize = 256 * 1024 * 1024;

constexpr std::uint64_t addressSpace = std::uint64_t(1) << 32;
constexpr std::uint64_t flashBase = 0x08000000; // where an image without addresses starts
constexpr std::uint64_t spimBase = 0x08400000;  // external flash, after the main flash
constexpr std::uint32_t spimSectorSize = 4096;

// A block of bytes at an address. Elements of one file share the block that they lie in.
struct Element {
    std::uint32_t address;
    std::uint32_t length; // bytes, never 0
    std::shared_ptr<BYTE> bytes;

    std::uint64_t end() const { return std::uint64_t(address) + length; }
    bool isBlank() const; // 0xFF throughout
};

// What a HANDLE of the C interface stands for: a list of elements in the order in which they were
// read or inserted.
class Image {
public:
    Image() = default;

    // Read from a file without addresses: the place of each byte counts, so blank elements may be
    // left out at the end only.
    bool flat = false;
    std::string name;
    std::vector<Element> elements;

    // Copies an element in: before the one at `index` (at most the count) or over it.
    Status insert(std::size_t index, const IMAGEELEMENT &source);
    Status replace(std::size_t index, const IMAGEELEMENT &source);

    // Fills the image with blank elements: the sectors of the map, then those of an external flash.
    Status makeSectors(const MAPPING &mapping, std::uint64_t spimBytes);

    // The elements by rising address; badAddressRange when two overlap.
    Status sorted(std::vector<const Element *> &byAddress) const;

private:
    Status check(const IMAGEELEMENT &source, std::size_t replaced) const;

    std::size_t m_inserted = 0; // bytes taken in by insert() and replace()
};

} // namespace files
