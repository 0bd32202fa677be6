#pragma once

#include <cstddef>
#include <cstdint>

namespace sim {

// CRC-32 of IEEE 802.3. To go on over several pieces, hand in the result of the piece before.
std::uint32_t crc32(const std::uint8_t *data, std::size_t length, std::uint32_t before = 0);

} // namespace sim
