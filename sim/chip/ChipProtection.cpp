// What changes the option bytes, and the sLib area.

#include "sim/chip/Chip.h"

namespace sim {

Outcome Chip::programOptions(const Bytes &compact) {
    constexpr std::size_t bytesPerItem = 2;
    m_time += m_flashTime.eraseSector;
    spendProgramming(compact.size() * bytesPerItem);
    return m_options.write(compact) ? Outcome{} : Outcome::powerLost();
}

Outcome Chip::writeUserData(const Bytes &compact) {
    if (compact.size() != m_facts.userDataLength)
        return Outcome::refuse("the user system data has " + std::to_string(m_facts.userDataLength) + " bytes");
    return programOptions(compact);
}

Outcome Chip::checkAccess(AccessLevel level) const {
    const bool lowers = m_protection.access() == AccessLevel::high && level != AccessLevel::high;
    return lowers ? Outcome::refuse("the high protection level stays") : Outcome{};
}

Outcome Chip::protectAccess(AccessLevel level) {
    Outcome outcome = checkAccess(level);
    return outcome.done() ? programOptions(m_protection.withAccess(level)) : outcome;
}

Outcome Chip::unprotectAccess() {
    // The flash goes first: a power cut in between must not open a chip that still holds its content.
    if (!eraseSpan({false, 0, flashSectors()}))
        return Outcome::powerLost();
    m_slib.clear();
    return programOptions(m_options.factory());
}

Outcome Chip::protectBits(const Bytes &bits) {
    for (const unsigned bit : bits)
        if (bit >= m_protection.bits())
            return Outcome::refuse("there is no protection bit " + std::to_string(bit));
    return programOptions(m_protection.withBitsProtected(bits));
}

Outcome Chip::unprotectBits() {
    return programOptions(m_protection.withBitsOpen());
}

Outcome Chip::enableSlib(const Slib::Area &wanted) {
    return m_slib.enable(wanted, flashSectors());
}

Outcome Chip::disableSlib(std::uint32_t password) {
    Outcome outcome = m_slib.checkPassword(password);
    if (!outcome.done())
        return outcome;
    const Slib::Area &area = m_slib.area();
    outcome = erase({{false, area.start, area.end - area.start + 1U}}, false);
    if (outcome.done())
        m_slib.clear();
    return outcome;
}

} // namespace sim
