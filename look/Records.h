#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "device/ImageSuffixes.h"

// The records of a text image line by line, read plainly to tell of them. What an image is, the file library says.

// What is wrong with one line, empty for nothing. Columns count from 1.
struct LineFault {
    std::size_t column = 0;
    std::string reason;
};
LineFault faultOf(std::string_view line, ImageFormat format);

// Data that a record holds.
struct DataRecord {
    std::size_t line; // from 1
    std::uint64_t address;
    std::vector<std::uint8_t> bytes;
};
// All of them, up to the first line that is none.
std::vector<DataRecord> dataRecordsOf(std::string_view text, ImageFormat format);

// Two records that give one address different bytes.
struct Contradiction {
    std::uint64_t address;
    std::size_t line;
    std::size_t otherLine;
};
// Of each record the first one, at most so many.
std::vector<Contradiction> contradictionsOf(std::vector<DataRecord> records, std::size_t most);

// The lines without their ends, and without a byte order mark at the start.
std::vector<std::string_view> linesOf(std::string_view text);
