#pragma once

#include <cstddef>
#include <cstdint>

namespace zvbl {

// The checksum that FIRMWARE_CRC answers: CRC-32 of IEEE 802.3.
std::uint32_t crc32(const std::uint8_t *data, std::size_t length);

} // namespace zvbl
