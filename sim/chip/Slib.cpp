#include "sim/chip/Slib.h"

namespace sim {

namespace {
constexpr std::uint32_t blankPassword = 0xFFFFFFFF;
}

Outcome Slib::enable(const Area &wanted, unsigned sectors) {
    if (area_.enabled)
        return Outcome::refuse("an sLib area is enabled already");
    if (wanted.password == 0 || wanted.password == blankPassword)
        return Outcome::refuse("not a password");
    const bool dataInside =
        wanted.dataStart == none || (wanted.start <= wanted.dataStart && wanted.dataStart <= wanted.end);
    if (wanted.start > wanted.end || wanted.end >= sectors || !dataInside)
        return Outcome::refuse("not a range of flash sectors");
    area_ = wanted;
    area_.enabled = true;
    ++changes_;
    return {};
}

Outcome Slib::checkPassword(std::uint32_t password) const {
    if (!area_.enabled)
        return Outcome::refuse("no sLib area is enabled");
    return area_.password == password ? Outcome{} : Outcome::refuse("wrong password");
}

void Slib::clear() {
    area_ = Area{};
    ++changes_;
}

bool Slib::covers(unsigned sector) const {
    return area_.enabled && area_.start <= sector && sector <= area_.end;
}

bool Slib::hides(unsigned sector) const {
    return covers(sector) && (area_.dataStart == none || sector < area_.dataStart);
}

} // namespace sim
