#pragma once

#include <cstdint>
#include <string>
#include <vector>

// An image file as the file library reads it, for whoever wants its ranges and bytes without a chip.
struct ImageRange {
    std::uint32_t first;
    std::vector<std::uint8_t> bytes; // never empty

    std::uint32_t last() const { return first + static_cast<std::uint32_t>(bytes.size() - 1); }
};

struct ImageRead {
    bool isRead = false;
    std::string refusal; // why the library refuses it
    std::vector<ImageRange> ranges;
};

// program: a program image, or else option bytes.
ImageRead readImage(const std::string &path, bool program = true);
