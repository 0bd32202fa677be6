// What changes the option bytes, and the sLib area.

#include "sim/chip/Chip.h"

namespace sim {

Outcome Chip::programOptions(const Bytes &compact) {
    constexpr std::size_t bytesPerItem = 2;
    time_ += flashTime_.eraseSector;
    spendProgramming(compact.size() * bytesPerItem);
    return options_.write(compact) ? Outcome{} : Outcome::powerLost();
}

Outcome Chip::writeUserData(const Bytes &compact) {
    if (compact.size() != facts_.userDataLength)
        return Outcome::refuse("the user system data has " + std::to_string(facts_.userDataLength) + " bytes");
    return programOptions(compact);
}

Outcome Chip::checkAccess(AccessLevel level) const {
    const bool lowers = protection_.access() == AccessLevel::high && level != AccessLevel::high;
    return lowers ? Outcome::refuse("the high protection level stays") : Outcome{};
}

Outcome Chip::protectAccess(AccessLevel level) {
    Outcome outcome = checkAccess(level);
    return outcome.done() ? programOptions(protection_.withAccess(level)) : outcome;
}

Outcome Chip::unprotectAccess() {
    // The flash goes first: a power cut in between must not open a chip that still holds its content.
    eraseSpan({false, 0, flashSectors()});
    slib_.clear();
    return programOptions(options_.factory());
}

Outcome Chip::protectBits(const Bytes &bits) {
    for (const unsigned bit : bits)
        if (bit >= protection_.bits())
            return Outcome::refuse("there is no protection bit " + std::to_string(bit));
    return programOptions(protection_.withBitsProtected(bits));
}

Outcome Chip::unprotectBits() {
    return programOptions(protection_.withBitsOpen());
}

Outcome Chip::enableSlib(const Slib::Area &wanted) {
    return slib_.enable(wanted, flashSectors());
}

Outcome Chip::disableSlib(std::uint32_t password) {
    Outcome outcome = slib_.checkPassword(password);
    if (!outcome.done())
        return outcome;
    const Slib::Area &area = slib_.area();
    outcome = erase({{false, area.start, area.end - area.start + 1U}}, false);
    if (outcome.done())
        slib_.clear();
    return outcome;
}

} // namespace sim
