#include "sim/chip/Slib.h"

namespace sim {

namespace {
constexpr std::uint32_t blankPassword = 0xFFFFFFFF;
}

Outcome Slib::enable(const Area &wanted, unsigned sectors) {
    if (m_area.enabled)
        return Outcome::refuse("an sLib area is enabled already");
    if (wanted.password == 0 || wanted.password == blankPassword)
        return Outcome::refuse("not a password");
    const bool dataInside =
        wanted.dataStart == none || (wanted.start <= wanted.dataStart && wanted.dataStart <= wanted.end);
    if (wanted.start > wanted.end || wanted.end >= sectors || !dataInside)
        return Outcome::refuse("not a range of flash sectors");
    m_area = wanted;
    m_area.enabled = true;
    ++m_changes;
    return {};
}

Outcome Slib::checkPassword(std::uint32_t password) const {
    if (!m_area.enabled)
        return Outcome::refuse("no sLib area is enabled");
    return m_area.password == password ? Outcome{} : Outcome::refuse("wrong password");
}

void Slib::clear() {
    m_area = Area{};
    ++m_changes;
}

bool Slib::covers(unsigned sector) const {
    return m_area.enabled && m_area.start <= sector && sector <= m_area.end;
}

bool Slib::hides(unsigned sector) const {
    return covers(sector) && (m_area.dataStart == none || sector < m_area.dataStart);
}

} // namespace sim
