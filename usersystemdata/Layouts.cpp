#include "usersystemdata/Layouts.h"

#include <iterator>

#include "foundation/ShareParameter.h"

namespace {

// item, first byte, bytes, first index of the item. A byte that no row names is a gap.
// clang-format off
constexpr LayoutRow layoutA[] = {
    {OptionItem::Fap, 0, 1, 0},
    {OptionItem::Ssb, 1, 1, 0},
    {OptionItem::Data, 2, 2, 0},
    {OptionItem::Epp, 4, 4, 0},
    {OptionItem::Eopb0, 8, 1, 0},
    {OptionItem::Res1, 9, 1, 0},
    {OptionItem::Data, 10, 6, 2},
    {OptionItem::Bank3Key, 16, 8, 0},
};
// clang-format on

// clang-format off
constexpr LayoutRow layoutBC[] = {
    {OptionItem::Fap, 0, 1, 0},
    {OptionItem::Ssb, 1, 1, 0},
    {OptionItem::Data, 2, 2, 0},
    {OptionItem::Epp, 4, 4, 0},
    {OptionItem::Data, 8, toTheEnd, 2},
};
// clang-format on

// clang-format off
constexpr LayoutRow layoutD[] = {
    {OptionItem::Fap, 0, 1, 0},
    {OptionItem::Ssb, 1, 1, 0},
    {OptionItem::Data, 2, 2, 0},
    {OptionItem::Epp, 4, 4, 0},
    {OptionItem::Bank3Key, 26, 4, 0},
    {OptionItem::Data, 38, toTheEnd, 2},
};
// clang-format on

// clang-format off
constexpr LayoutRow layoutE[] = {
    {OptionItem::Fap, 0, 1, 0},
    {OptionItem::Ssb, 1, 1, 0},
    {OptionItem::Data, 2, 2, 0},
    {OptionItem::Epp, 4, 4, 0},
    {OptionItem::Eopb0, 8, 1, 0},
    {OptionItem::Res1, 9, 1, 0},
    {OptionItem::Epp, 10, 16, 4},
    {OptionItem::Bank3Key, 26, 8, 0},
    {OptionItem::Data, 38, toTheEnd, 2},
};
// clang-format on

// clang-format off
constexpr LayoutRow layoutF[] = {
    {OptionItem::Fap, 0, 1, 0},
    {OptionItem::Ssb, 1, 1, 0},
    {OptionItem::Ssb1, 2, 1, 0},
    {OptionItem::Data, 3, 1, 0},
    {OptionItem::Epp, 4, 4, 0},
    {OptionItem::Data, 8, toTheEnd, 1},
};
// clang-format on

enum Layout { A, B, C, D, E, F };

// In the order of Layout.
// clang-format off
constexpr OptionLayout layouts[] = {
    {std::begin(layoutA), std::end(layoutA)},   {std::begin(layoutBC), std::end(layoutBC)},
    {std::begin(layoutBC), std::end(layoutBC)}, {std::begin(layoutD), std::end(layoutD)},
    {std::begin(layoutE), std::end(layoutE)},   {std::begin(layoutF), std::end(layoutF)},
};
// clang-format on

struct FamilyRow {
    int family;
    Layout layout;
};

// A family that is not here has layout A.
// clang-format off
constexpr FamilyRow families[] = {
    {ZV32F403_1, A}, {ZV32F403_2, A}, {ZV32F413, A},  {ZV32F403A, A}, {ZV32F407, A}, {ZV32A403A, A},
    {ZV32F415, B},   {ZV32WB415, B},  {ZV32F421, C},  {ZV32F425, C},  {ZV32L021, C}, {ZV32F423, C},
    {ZV32M412, C},   {ZV32M416, C},   {ZV32G412, C},  {ZV32A423, C},  {ZV32F405, D}, {ZV32F402, D},
    {ZV32F455, D},   {ZV32F456, D},   {ZV32F457, D},  {ZV32F490, D},  {ZV32F435, E}, {ZV32F437, E},
    {ZV32F422, F},   {ZV32F426, F},
};
// clang-format on

enum class When { Always, BidAbove4601, Sectors4096 };

struct LengthRow {
    Layout layout;
    When when;
    OptionLengths lengths;
};

using U = CUserSystemData;

// The first row that holds wins.
constexpr LengthRow lengthRows[] = {
    {A, When::Always, {U::OTP2_LENGTH_ZV32, U::OTP2_DATA_LENGTH_ZV32, U::OTP2_EPP_LENGTH_ZV32}},
    {B, When::BidAbove4601, {U::OTP2_LENGTH_ZV32F415_B, U::OTP2_DATA_LENGTH_ZV32F415_B, U::OTP2_EPP_LENGTH_ZV32}},
    {B, When::Always, {U::OTP2_LENGTH_ZV32F415_A, U::OTP2_DATA_LENGTH_ZV32F415_A, U::OTP2_EPP_LENGTH_ZV32}},
    {C, When::Always, {U::OTP2_LENGTH_ZV32F421, U::OTP2_DATA_LENGTH_ZV32F421, U::OTP2_EPP_LENGTH_ZV32}},
    {D, When::Always, {U::OTP2_LENGTH_ZV32F405_402, U::OTP2_DATA_LENGTH_ZV32F405_402, U::OTP2_EPP_LENGTH_ZV32}},
    {E,
     When::Sectors4096,
     {U::OTP2_LENGTH_ZV32F435F437_2, U::OTP2_DATA_LENGTH_ZV32F435F437_2, U::OTP2_EPP_LENGTH_ZV32F435F437}},
    {E,
     When::Always,
     {U::OTP2_LENGTH_ZV32F435F437_1, U::OTP2_DATA_LENGTH_ZV32F435F437_1, U::OTP2_EPP_LENGTH_ZV32F435F437}},
    {F, When::Always, {U::OTP2_LENGTH_ZV32F422_426, U::OTP2_DATA_LENGTH_ZV32F422_426, U::OTP2_EPP_LENGTH_ZV32}},
};

constexpr BYTE CUserSystemData::*bank3Keys[] = {
    &CUserSystemData::BANK3KEY0, &CUserSystemData::BANK3KEY1, &CUserSystemData::BANK3KEY2, &CUserSystemData::BANK3KEY3,
    &CUserSystemData::BANK3KEY4, &CUserSystemData::BANK3KEY5, &CUserSystemData::BANK3KEY6, &CUserSystemData::BANK3KEY7,
};

Layout layoutOf(int family) {
    for (const FamilyRow &row : families)
        if (row.family == family)
            return row.layout;
    return A;
}

bool holds(When when, int bidVersion, int sectorSize) {
    return when == When::Always || (when == When::BidAbove4601 && bidVersion > 0x4601) ||
           (when == When::Sectors4096 && sectorSize == 4096);
}

} // namespace

OptionLayout optionLayout(int family) {
    return layouts[layoutOf(family)];
}

OptionLengths optionLengths(int family, int bidVersion, int sectorSize) {
    const Layout layout = layoutOf(family);
    for (const LengthRow &row : lengthRows)
        if (row.layout == layout && holds(row.when, bidVersion, sectorSize))
            return row.lengths;
    return lengthRows[0].lengths;
}

BYTE &optionByte(CUserSystemData &data, OptionItem item, int index) {
    switch (item) {
    case OptionItem::Fap: return data.FAP;
    case OptionItem::Ssb: return data.SSB;
    case OptionItem::Ssb1: return data.SSB1;
    case OptionItem::Data: return data.DATA[index];
    case OptionItem::Epp: return data.EPP[index];
    case OptionItem::Eopb0: return data.EOPB0;
    case OptionItem::Res1: return data.RES1;
    case OptionItem::Bank3Key: break;
    }
    return data.*bank3Keys[index];
}
