#include "device/Families.h"

#include "foundation/McuSerials.h"

namespace {

constexpr unsigned int usual = 0x1FFFF800;
constexpr unsigned int low = 0x1FFFC000;

constexpr OtpArea none = {0, 0, 0, 0};
constexpr OtpArea large = {0x1FFFE400, 4096, 0x1FFFF500, 128};
constexpr OtpArea small = {0x1FFFF000, 1024, 0x1FFFF500, 128};

using Form = OptionForm;
using Set = SwitchSet;

constexpr Family otherFamily = {0, usual, 0, 0, Form::a, Set::plain, none, 0};

// clang-format off
constexpr Family families[] = {
    // series    options block  bit  form     switches    OTP    traits
    {ZV32F403_1, usual, 0,       0, Form::a, Set::plain, none,  restartsBeforeVerify | firstFirmwareCrc},
    {ZV32F403_2, usual, 0,       0, Form::a, Set::plain, none,
        restartsBeforeVerify | firstFirmwareCrc | takesAnySpimSector},
    {ZV32F413,   usual, 0,       0, Form::a, Set::plain, none,  blankKeysOpenBank3 | takesAnySpimSector},
    {ZV32F415,   usual, 0,       2, Form::b, Set::plain, none,  0},
    {ZV32F403A,  usual, 0,       0, Form::a, Set::plain, none,  takesAnySpimSector},
    {ZV32F407,   usual, 0,       0, Form::a, Set::plain, none,  takesAnySpimSector},
    {ZV32F421,   usual, 0,       4, Form::c, Set::f421,  none,  0},
    {ZV32F435,   low,   0x10000, 0, Form::e, Set::f435,  none,  wideGroups | resetsForOptions},
    {ZV32F437,   low,   0x10000, 0, Form::e, Set::f435,  none,  wideGroups | resetsForOptions},
    {ZV32F425,   usual, 0,       4, Form::c, Set::f425,  none,  confirmsHighProtection},
    {ZV32L021,   usual, 0,       4, Form::c, Set::l021,  none,  confirmsHighProtection},
    {ZV32WB415,  usual, 0,       2, Form::b, Set::plain, none,  0},
    {ZV32F423,   usual, 0,       0, Form::c, Set::f425,  none,  confirmsHighProtection},
    {ZV32F405,   usual, 0,       0, Form::d, Set::l021,  none,  confirmsHighProtection},
    {ZV32F402,   usual, 0,       0, Form::d, Set::l021,  none,  confirmsHighProtection},
    {ZV32F455,   usual, 0,       0, Form::d, Set::l021,  large, confirmsHighProtection},
    {ZV32F456,   usual, 0,       0, Form::d, Set::l021,  large, confirmsHighProtection},
    {ZV32F457,   usual, 0,       0, Form::d, Set::l021,  large, confirmsHighProtection},
    {ZV32A403A,  usual, 0,       0, Form::a, Set::plain, none,  0},
    {ZV32M412,   usual, 0,       0, Form::c, Set::f425,  small, confirmsHighProtection},
    {ZV32M416,   usual, 0,       0, Form::c, Set::f425,  small, confirmsHighProtection},
    {ZV32G412,   usual, 0,       0, Form::c, Set::f425,  small, confirmsHighProtection},
    {ZV32A423,   usual, 0,       0, Form::c, Set::f425,  none,  confirmsHighProtection},
    {ZV32F490,   usual, 0,       0, Form::d, Set::l021,  none,  confirmsHighProtection},
    {ZV32F422,   usual, 0,       0, Form::f, Set::f422,  small, confirmsHighProtection},
    {ZV32F426,   usual, 0,       0, Form::f, Set::f422,  small, confirmsHighProtection},
};
// clang-format on

} // namespace

std::vector<int> knownSeries() {
    std::vector<int> series;
    for (const Family &row : families)
        series.push_back(row.series);
    return series;
}

const Family &familyOf(int series) {
    for (const Family &row : families)
        if (row.series == series)
            return row;
    return otherFamily;
}
