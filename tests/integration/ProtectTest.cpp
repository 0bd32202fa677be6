// Which sectors a protection bit covers, by effect.

#include "tests/integration/LibraryTest.h"

namespace {

struct Row {
    std::string chip;
    BYTE bit;
    unsigned first, last; // sectors
    unsigned sectorSize, sectors;
};

std::ostream &operator<<(std::ostream &out, const Row &row) {
    return out << row.chip << " bit " << int(row.bit);
}

} // namespace

class ProtectTest : public LibraryTest, public testing::WithParamInterface<Row> {
protected:
    BYTE protect(Bytes bits) {
        const BYTE status = ZVBL_ERASEPROGRAM_PROTECT(link, static_cast<BYTE>(bits.size()), bits.data());
        EXPECT_EQ(initAgain(), done);
        return status;
    }
    void expectOpen(unsigned sector, unsigned size, bool open) {
        const BYTE status = open ? done : refused;
        EXPECT_EQ(write(flashBase + sector * size, {1, 2, 3, 4}), status) << sector;
        EXPECT_EQ(read(flashBase + sector * size, 4), open ? (Bytes{1, 2, 3, 4}) : Bytes(4, 0xFF)) << sector;
        EXPECT_EQ(erase(sector), status) << sector;
    }
};

TEST_P(ProtectTest, CoversItsSectorsAndNoNeighbour) {
    const Row &row = GetParam();
    connect(row.chip);
    EXPECT_EQ(protect({row.bit}), done);
    expectOpen(row.first, row.sectorSize, false);
    expectOpen(row.last, row.sectorSize, false);
    if (row.first > 0)
        expectOpen(row.first - 1, row.sectorSize, true);
    if (row.last + 1 < row.sectors)
        expectOpen(row.last + 1, row.sectorSize, true);
    EXPECT_EQ(ZVBL_ERASE(link, 0xFFFE, nullptr, 0), row.first * row.sectorSize < 512 * 1024 ? refused : done)
        << "bank 1";
    EXPECT_EQ(ZVBL_ERASEPROGRAM_PERM_UNPROTECT(link), done);
    EXPECT_EQ(initAgain(), done);
    expectOpen(row.first, row.sectorSize, true);
    expectOpen(row.last, row.sectorSize, true);
}

INSTANTIATE_TEST_SUITE_P(
    Chips, ProtectTest,
    testing::Values(Row{"ZV32F413_256K", 0, 0, 1, 2048, 128}, Row{"ZV32F413_256K", 30, 60, 61, 2048, 128},
                    Row{"ZV32F413_256K", 31, 62, 127, 2048, 128}, Row{"ZV32F403A_1024K", 31, 62, 511, 2048, 512},
                    Row{"ZV32F421_64K", 1, 4, 7, 1024, 64}, Row{"ZV32F437_4032K", 0, 0, 0, 4096, 1008},
                    Row{"ZV32F437_4032K", 31, 31, 31, 4096, 1008}, Row{"ZV32F437_4032K", 32, 32, 63, 4096, 1008}));

TEST_F(ProtectTest, BitsAddUp) {
    connect("ZV32F413_256K");
    EXPECT_EQ(protect({2, 5}), done);
    EXPECT_EQ(protect({7}), done);
    const std::map<unsigned, bool> open = {{3, true},  {4, false},  {5, false},  {6, true}, {10, false},
                                           {12, true}, {14, false}, {15, false}, {16, true}};
    for (const auto &[sector, isOpen] : open)
        expectOpen(sector, 2048, isOpen);
}

TEST_F(ProtectTest, ABitThatTheChipDoesNotHaveProtectsNothing) {
    connect("ZV32F413_256K");
    Bytes bits = {0, 32};
    EXPECT_EQ(ZVBL_ERASEPROGRAM_PROTECT(link, 2, bits.data()), refused);
    EXPECT_EQ(ZVBL_ERASEPROGRAM_PROTECT(link, 0, bits.data()), badArgument);
    EXPECT_EQ(ZVBL_ERASEPROGRAM_PROTECT(link, 1, nullptr), badArgument);
    EXPECT_EQ(ZVBL_ResetMCU(link), done);
    EXPECT_EQ(initAgain(), done);
    expectOpen(0, 2048, true);
}
