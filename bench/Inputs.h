#pragma once

#include <cstddef>
#include <string>

namespace bench {

constexpr std::size_t ImageSize = 16 * 1024 * 1024;
constexpr std::size_t ScatteredRuns = 64000;
constexpr std::size_t ScatteredRunSize = 32;

// ImageSize bytes of no pattern.
void writeBinary(const std::string &path);

// ScatteredRuns runs that do not touch, in no order, as HEX.
void writeScattered(const std::string &path);

// The bytes of writeBinary as HEX of 16 bytes a record, the records in no order.
void writeShuffled(const std::string &path);

} // namespace bench
