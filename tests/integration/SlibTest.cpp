// The sLib area by effect: sectors 10 to 13, of which 12 and 13 hold data.

#include "tests/integration/LibraryTest.h"

namespace {
constexpr unsigned sectorSize = 2048;
constexpr unsigned password = 0x12345678;
constexpr unsigned short none = 0xFFFF;
constexpr unsigned at(unsigned sector) {
    return flashBase + sector * sectorSize;
}

struct Area {
    BYTE enabled = 0x77;
    unsigned short start = 0x7777, dataStart = 0x7777, end = 0x7777;
    bool operator==(const Area &other) const {
        return enabled == other.enabled && start == other.start && dataStart == other.dataStart && end == other.end;
    }
};

std::ostream &operator<<(std::ostream &out, const Area &area) {
    return out << int(area.enabled) << " " << area.start << " " << area.dataStart << " " << area.end;
}

const Area noArea = {0, none, none, none};
const Area wholeArea = {1, 10, 12, 13};

} // namespace

class SlibTest : public LibraryTest {
protected:
    SlibTest() {
        connect("ZV32F403A_1024K");
        EXPECT_EQ(write(at(9), image), done); // sectors 9 to 13 and half of 14
    }
    Area area() {
        Area found;
        EXPECT_EQ(ZVBL_GetSlibStatus_Ex(link, &found.enabled, &found.start, &found.dataStart, &found.end), done);
        BYTE enabled = 0x77;
        EXPECT_EQ(ZVBL_GetSlibStatus(link, &enabled), done);
        EXPECT_EQ(enabled, found.enabled);
        return found;
    }
    void enable(unsigned short dataStart = 12) {
        EXPECT_EQ(ZVBL_EnableSlib(link, password, 10, dataStart, 13), done);
        EXPECT_EQ(initAgain(), done);
    }
    // What was written into the sectors.
    Bytes written(unsigned first, unsigned count) const {
        const auto begin = image.begin() + (first - 9) * sectorSize;
        return Bytes(begin, begin + count * sectorSize);
    }
    void expectHidden(unsigned first, unsigned count) {
        EXPECT_EQ(read(at(first), count * sectorSize), Bytes(count * sectorSize, 0xFF));
    }

    const Bytes image = program(5 * sectorSize + sectorSize / 2);
};

TEST_F(SlibTest, TheStatusTellsTheArea) {
    EXPECT_EQ(area(), noArea);
    enable();
    EXPECT_EQ(area(), wholeArea);
    EXPECT_EQ(ZVBL_ResetMCU(link), done);
    EXPECT_EQ(initAgain(), done);
    EXPECT_EQ(area(), wholeArea) << "it lasts";
    EXPECT_EQ(ZVBL_GetSlibStatus(link, nullptr), badArgument);
    EXPECT_EQ(ZVBL_GetSlibStatus_Ex(link, nullptr, nullptr, nullptr, nullptr), badArgument);
}

TEST_F(SlibTest, TheCodePartReadsBlankTheDataPartReads) {
    enable();
    expectHidden(10, 2);
    EXPECT_EQ(read(at(9), sectorSize), written(9, 1));
    EXPECT_EQ(read(at(12), 2 * sectorSize), written(12, 2));
}

TEST_F(SlibTest, WithoutADataPartEverythingIsHidden) {
    enable(none);
    EXPECT_EQ(area(), (Area{1, 10, none, 13}));
    expectHidden(10, 4);
    EXPECT_EQ(read(at(14), 8), (Bytes{image.begin() + 5 * sectorSize, image.begin() + 5 * sectorSize + 8}));
}

TEST_F(SlibTest, ItsSectorsCannotBeWrittenOrErased) {
    EXPECT_EQ(erase(11), done);
    EXPECT_EQ(erase(13), done);
    enable();
    for (const unsigned sector : {11u, 13u})
        EXPECT_EQ(write(at(sector), {1, 2, 3, 4}), refused) << "blank cells of " << sector;
    for (const unsigned sector : {10u, 11u, 12u, 13u})
        EXPECT_EQ(erase(sector), refused) << sector;
    EXPECT_EQ(read(at(12), sectorSize), written(12, 1));
    EXPECT_EQ(read(at(13), 4), Bytes(4, 0xFF));
    EXPECT_EQ(write(at(14) + sectorSize / 2, {1, 2, 3, 4}), done) << "a neighbour";
    EXPECT_EQ(erase(9), done);
    EXPECT_EQ(erase(14), done);
}

TEST_F(SlibTest, AWrongPasswordChangesNothing) {
    enable();
    for (const unsigned wrong : {password + 1, 0u, 0xFFFFFFFFu, 0x78563412u}) {
        EXPECT_EQ(ZVBL_DisableSlib(link, wrong), refused);
        EXPECT_EQ(area(), wholeArea);
        EXPECT_EQ(read(at(12), 2 * sectorSize), written(12, 2));
        expectHidden(10, 1);
    }
}

TEST_F(SlibTest, TheRightPasswordErasesTheArea) {
    enable();
    EXPECT_EQ(ZVBL_DisableSlib(link, password), done);
    EXPECT_EQ(initAgain(), done);
    EXPECT_EQ(area(), noArea);
    expectHidden(10, 4);
    EXPECT_EQ(read(at(9), sectorSize), written(9, 1));
    EXPECT_EQ(read(at(14), sectorSize / 2), Bytes(image.begin() + 5 * sectorSize, image.end()));
    EXPECT_EQ(write(at(10), written(10, 4)), done) << "it is free again, and erased indeed";
    EXPECT_EQ(ZVBL_DisableSlib(link, password), refused) << "there is none";
}

TEST_F(SlibTest, AreasThatCannotBe) {
    const struct {
        const char *what;
        unsigned password;
        unsigned short start, dataStart, end;
    } rows[] = {
        {"no password", 0, 10, 12, 13},
        {"a blank password", 0xFFFFFFFF, 10, 12, 13},
        {"end before start", password, 13, 13, 10},
        {"data before start", password, 10, 9, 13},
        {"data after end", password, 10, 14, 13},
        {"end after the flash", password, 10, 12, 512},
        {"start after the flash", password, 512, none, 512},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(ZVBL_EnableSlib(link, row.password, row.start, row.dataStart, row.end), refused) << row.what;
        EXPECT_EQ(area(), noArea) << row.what;
    }
    enable();
    EXPECT_EQ(ZVBL_EnableSlib(link, password, 20, 21, 22), refused) << "there is one";
    EXPECT_EQ(area(), wholeArea);
}
