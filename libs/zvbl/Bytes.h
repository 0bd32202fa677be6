#pragma once

#include <cstdint>
#include <vector>

namespace zvbl {

using Bytes = std::vector<std::uint8_t>;

} // namespace zvbl
