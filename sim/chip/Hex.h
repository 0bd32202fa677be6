#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace sim {

// A number as upper-case hexadecimal digits, at least so many.
inline std::string hex(std::uint32_t value, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, static_cast<unsigned>(value));
    return text;
}

} // namespace sim
