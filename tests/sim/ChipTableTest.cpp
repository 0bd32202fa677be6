// The chips themselves: what hangs together in every row.

#include <set>

#include "tests/sim/Vectors.h"

namespace sim {

static void PrintTo(const ChipFacts &chip, std::ostream *out) {
    *out << chip.name;
}

namespace {

class EveryChip : public ::testing::TestWithParam<ChipFacts> {
protected:
    const ChipFacts &chip() const { return GetParam(); }
};

// The flash size is told by five bits of the PID.
TEST_P(EveryChip, pidTellsTheFlashSize) {
    constexpr unsigned sizes[] = {16,  24,   32,   48,   64,   72,   96,  128, 192,  256,  384, 512,
                                  768, 1024, 1536, 2048, 4096, 5120, 192, 960, 1984, 4032, 448};
    const unsigned index = chip().pid >> 6 & 0x1F;
    ASSERT_LT(index, std::size(sizes));
    EXPECT_EQ(sizes[index], chip().flashKb);
}

TEST_P(EveryChip, nameEndsInTheFlashSize) {
    const std::string name(chip().name);
    const std::string end = "_" + std::to_string(chip().flashKb) + "K";
    ASSERT_GT(name.size(), end.size());
    EXPECT_EQ(name.substr(name.size() - end.size()), end);
}

TEST_P(EveryChip, optionBytesHoldWhatTheLayoutPlacesThere) {
    const OptionLayout &layout = layoutOf(chip());
    EXPECT_EQ(layout.eppBytes.size(), chip().layout == 'E' ? 20U : 4U);
    EXPECT_LT(layout.eppBytes.back(), chip().userDataLength);
    const bool wide = chip().layout == 'E';
    EXPECT_EQ(layout.address, wide ? 0x1FFFC000U : 0x1FFFF800U);
    EXPECT_EQ(layout.accessByte, 0U);
    EXPECT_EQ(Bytes(layout.eppBytes.begin(), layout.eppBytes.begin() + 4), (Bytes{4, 5, 6, 7}));
    if (wide)
        EXPECT_EQ(Bytes(layout.eppBytes.begin() + 4, layout.eppBytes.end()),
                  (Bytes{10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25}));
    EXPECT_EQ(layout.wideBits, wide);
    EXPECT_NE(layout.resetsAfterWrite, wide);
}

TEST_P(EveryChip, everySectorHasAProtectionBit) {
    Rig rig(std::string(chip().name));
    const unsigned sectors = chip().flashKb * 1024 / chip().sectorSize;
    for (unsigned sector = 0; sector < sectors; ++sector)
        ASSERT_TRUE(rig.chip.eraseSectors({sector}).done()) << sector;
    EXPECT_FALSE(rig.chip.eraseSectors({sectors}).done());
    // All bits clear: nothing can be erased any more.
    Bytes options = rig.chip.userData();
    for (const std::size_t place : layoutOf(chip()).eppBytes)
        options[place] = 0;
    ASSERT_TRUE(rig.chip.writeUserData(options).done());
    rig.chip.reset();
    for (unsigned sector = 0; sector < sectors; ++sector)
        ASSERT_FALSE(rig.chip.eraseSectors({sector}).done()) << sector;
}

INSTANTIATE_TEST_SUITE_P(Table, EveryChip, ::testing::ValuesIn(chipTable()),
                         [](const auto &chip) { return std::string(chip.param.name); });

TEST(ChipTable, namesAndIdentifiersAreUnlike) {
    std::set<std::string_view> names;
    std::set<std::pair<unsigned, std::uint32_t>> identifiers;
    for (const ChipFacts &chip : chipTable()) {
        EXPECT_TRUE(names.insert(chip.name).second) << chip.name;
        EXPECT_TRUE(identifiers.insert({chip.series, chip.pid}).second) << chip.name;
        EXPECT_EQ(findChip(chip.name), &chip);
    }
    EXPECT_EQ(findChip("ZV32"), nullptr);
    EXPECT_EQ(findChip(""), nullptr);
}

// Sizes of one family differ in memory, not in what they can do.
TEST(ChipTable, familiesAreAlike) {
    const auto family = [](const ChipFacts &chip) { return chip.name.substr(0, chip.name.rfind('_')); };
    for (const ChipFacts &one : chipTable()) {
        for (const ChipFacts &other : chipTable()) {
            ASSERT_EQ(family(one) == family(other), one.series == other.series) << one.name << " " << other.name;
            if (one.series == other.series) {
                EXPECT_EQ(one.layout, other.layout) << one.name;
                EXPECT_EQ(one.spim, other.spim) << one.name;
                EXPECT_EQ(one.levels, other.levels) << one.name;
                EXPECT_EQ(one.goToEndResets, other.goToEndResets) << one.name;
                EXPECT_EQ(one.otpAddress, other.otpAddress) << one.name;
                EXPECT_EQ(one.otpLength, other.otpLength) << one.name;
            }
        }
    }
}

// The short identifier does not carry the series: clients take it for series 2.
TEST_P(EveryChip, shortIdentifiersAreOfSeriesTwo) {
    EXPECT_TRUE(chip().idLength == 5 || (chip().idLength == 2 && chip().series == 2 && chip().pid <= 0xFFFF));
}

TEST(ChipTable, uniqueIdIsTwelveBytesAndNotBlank) {
    Rig one("ZV32F403A_1024K");
    Rig other("ZV32F407_512K");
    Bytes first;
    Bytes second;
    ASSERT_TRUE(one.chip.read(0x1FFFF7E8, 12, first).done());
    ASSERT_TRUE(other.chip.read(0x1FFFF7E8, 12, second).done());
    EXPECT_NE(first, second);
    EXPECT_NE(first, Bytes(12, 0xFF));
    EXPECT_EQ(first, Bytes({0x59, 0xA1, 0xBE, 0xD7, 0xA3, 0x3C, 0x9C, 0x89, 0xDB, 0xBF, 0x1B, 0xF2}));
    EXPECT_FALSE(one.chip.read(0x1FFFF7E8, 13, first).done());
}

} // namespace
} // namespace sim
