#include "sim/chip/Spim.h"

namespace sim {

namespace {
constexpr std::uint8_t firstType = 0x90;
constexpr std::uint8_t secondType = 0x91;
} // namespace

Outcome Spim::enable(std::uint8_t type, std::uint32_t size, std::uint32_t encryptedFrom) {
    if (type != firstType && type != secondType)
        return Outcome::refuse("not a SPIM type");
    if (size > cells_.size() || cells_.size() == 0)
        return Outcome::refuse("the board's SPIM has " + std::to_string(cells_.size()) + " bytes");
    enabledSize_ = size == 0 ? cells_.size() : size;
    encryptedFrom_ = encryptedFrom;
    return {};
}

Outcome Spim::remap(std::uint8_t pins) {
    if (pins > 1)
        return Outcome::refuse("no such remap");
    remap_ = pins;
    return {};
}

void Spim::reset() {
    enabledSize_ = 0;
    encryptedFrom_ = 0;
    remap_ = 0;
}

} // namespace sim
