#include "usersystemdata/OptionLayout.h"

#include <iterator>

#include "device/Families.h"

namespace {

// item, first byte, bytes, first index of the item. A byte that no row names is a gap.
// clang-format off
constexpr LayoutRow layoutA[] = {
    {OptionItem::fap, 0, 1, 0},
    {OptionItem::ssb, 1, 1, 0},
    {OptionItem::data, 2, 2, 0},
    {OptionItem::epp, 4, 4, 0},
    {OptionItem::eopb0, 8, 1, 0},
    {OptionItem::res1, 9, 1, 0},
    {OptionItem::data, 10, 6, 2},
    {OptionItem::bank3Key, 16, 8, 0},
};

constexpr LayoutRow layoutBC[] = {
    {OptionItem::fap, 0, 1, 0},
    {OptionItem::ssb, 1, 1, 0},
    {OptionItem::data, 2, 2, 0},
    {OptionItem::epp, 4, 4, 0},
    {OptionItem::data, 8, toTheEnd, 2},
};

constexpr LayoutRow layoutD[] = {
    {OptionItem::fap, 0, 1, 0},
    {OptionItem::ssb, 1, 1, 0},
    {OptionItem::data, 2, 2, 0},
    {OptionItem::epp, 4, 4, 0},
    {OptionItem::bank3Key, 26, 4, 0},
    {OptionItem::data, 38, toTheEnd, 2},
};

constexpr LayoutRow layoutE[] = {
    {OptionItem::fap, 0, 1, 0},
    {OptionItem::ssb, 1, 1, 0},
    {OptionItem::data, 2, 2, 0},
    {OptionItem::epp, 4, 4, 0},
    {OptionItem::eopb0, 8, 1, 0},
    {OptionItem::res1, 9, 1, 0},
    {OptionItem::epp, 10, 16, 4},
    {OptionItem::bank3Key, 26, 8, 0},
    {OptionItem::data, 38, toTheEnd, 2},
};

constexpr LayoutRow layoutF[] = {
    {OptionItem::fap, 0, 1, 0},
    {OptionItem::ssb, 1, 1, 0},
    {OptionItem::ssb1, 2, 1, 0},
    {OptionItem::data, 3, 1, 0},
    {OptionItem::epp, 4, 4, 0},
    {OptionItem::data, 8, toTheEnd, 1},
};

// In the order of OptionForm.
constexpr OptionLayout layouts[] = {
    {std::begin(layoutA), std::end(layoutA)},   {std::begin(layoutBC), std::end(layoutBC)},
    {std::begin(layoutBC), std::end(layoutBC)}, {std::begin(layoutD), std::end(layoutD)},
    {std::begin(layoutE), std::end(layoutE)},   {std::begin(layoutF), std::end(layoutF)},
};
// clang-format on

enum class When { always, bidAbove4601, sectors4096 };

struct LengthRow {
    OptionForm form;
    When when;
    OptionLengths lengths;
};

using Form = OptionForm;
using U = OptionByteCounts;

// The first row that holds wins.
constexpr LengthRow lengthRows[] = {
    {Form::a, When::always, {U::OTP2_LENGTH_ZV32, U::OTP2_DATA_LENGTH_ZV32, U::OTP2_EPP_LENGTH_ZV32}},
    {Form::b, When::bidAbove4601, {U::OTP2_LENGTH_ZV32F415_B, U::OTP2_DATA_LENGTH_ZV32F415_B, U::OTP2_EPP_LENGTH_ZV32}},
    {Form::b, When::always, {U::OTP2_LENGTH_ZV32F415_A, U::OTP2_DATA_LENGTH_ZV32F415_A, U::OTP2_EPP_LENGTH_ZV32}},
    {Form::c, When::always, {U::OTP2_LENGTH_ZV32F421, U::OTP2_DATA_LENGTH_ZV32F421, U::OTP2_EPP_LENGTH_ZV32}},
    {Form::d, When::always, {U::OTP2_LENGTH_ZV32F405_402, U::OTP2_DATA_LENGTH_ZV32F405_402, U::OTP2_EPP_LENGTH_ZV32}},
    {Form::e,
     When::sectors4096,
     {U::OTP2_LENGTH_ZV32F435F437_2, U::OTP2_DATA_LENGTH_ZV32F435F437_2, U::OTP2_EPP_LENGTH_ZV32F435F437}},
    {Form::e,
     When::always,
     {U::OTP2_LENGTH_ZV32F435F437_1, U::OTP2_DATA_LENGTH_ZV32F435F437_1, U::OTP2_EPP_LENGTH_ZV32F435F437}},
    {Form::f, When::always, {U::OTP2_LENGTH_ZV32F422_426, U::OTP2_DATA_LENGTH_ZV32F422_426, U::OTP2_EPP_LENGTH_ZV32}},
};

bool holds(When when, int bidVersion, int sectorSize) {
    return when == When::always || (when == When::bidAbove4601 && bidVersion > 0x4601) ||
           (when == When::sectors4096 && sectorSize == 4096);
}

} // namespace

OptionLayout optionLayout(int family) {
    return layouts[static_cast<int>(familyOf(family).optionForm)];
}

OptionLengths optionLengths(int family, int bidVersion, int sectorSize) {
    const OptionForm form = familyOf(family).optionForm;
    for (const LengthRow &row : lengthRows)
        if (row.form == form && holds(row.when, bidVersion, sectorSize))
            return row.lengths;
    return lengthRows[0].lengths;
}
