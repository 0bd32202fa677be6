// Two links at once, each on a thread and a chip of its own.

#include <thread>

#include "tests/integration/LibraryTest.h"

namespace {

constexpr int rounds = 8;
constexpr unsigned imageSize = 3 * 2048;

struct Line {
    explicit Line(const std::string &name) : chip(name) {}
    SimulatedChip chip;
    HANDLE link = nullptr;
    std::string id;
    Bytes last;

    // Erases, writes, compares and reads back, again and again, and resets the chip in between.
    void work(unsigned seed) {
        link = openLink(chip);
        for (int i = 0; i < rounds; ++i)
            step(seed + static_cast<unsigned>(2 * i));
        BYTE length = 0;
        BYTE bytes[16] = {};
        EXPECT_EQ(ZVBL_GET_ID(link, &length, bytes), done);
        id.assign(bytes, bytes + length);
    }
    void step(unsigned seed) {
        for (BYTE sector = 0; sector < 3; ++sector) {
            BYTE number[2] = {sector, 0};
            EXPECT_EQ(ZVBL_ERASE(link, 1, number, 2048), done);
        }
        last = program(imageSize, seed);
        EXPECT_EQ(ZVBL_DNLOAD(link, flashBase, last.data(), imageSize, 0), done);
        EXPECT_EQ(ZVBL_VERIFY(link, flashBase, last.data(), imageSize, 0), done);
        EXPECT_EQ(ZVBL_ResetMCU(link), done);
        waitForStart();
        EXPECT_EQ(ZVBL_Init_BL(link, 0, 0, 0), done);
    }
};

Bytes contentOf(HANDLE link) {
    Bytes bytes(imageSize);
    EXPECT_EQ(ZVBL_UPLOAD(link, flashBase, bytes.data(), imageSize), done);
    return bytes;
}

} // namespace

TEST(TwoLinksTest, DoNotDisturbEachOther) {
    Line one("ZV32F403A_1024K");
    Line two("ZV32F415_256K");
    std::thread first([&] { one.work(0); });
    std::thread second([&] { two.work(1); });
    first.join();
    second.join();
    EXPECT_NE(one.link, two.link);
    EXPECT_EQ(one.id, std::string("\x03\x47\x70\x05\x07", 5));
    EXPECT_EQ(two.id, std::string("\x02\x45\x70\x03\x05", 5));
    EXPECT_NE(one.last, two.last);
    EXPECT_EQ(contentOf(one.link), one.last);
    EXPECT_EQ(contentOf(two.link), two.last);
    Interface_Close(one.link);
    EXPECT_EQ(Interface_is_Open(two.link), 1);
    EXPECT_EQ(contentOf(two.link), two.last) << "closing one leaves the other";
    Interface_Close(two.link);
}

TEST(TwoLinksTest, ASilentChipDoesNotStopTheOther) {
    Line one("ZV32F403A_1024K");
    Line two("ZV32F413_256K");
    one.link = openLink(one.chip);
    EXPECT_EQ(ZVBL_GO(one.link, flashBase), done);
    EXPECT_EQ(SetTimeOut(one.link, 300), done);
    BYTE version = 0, reserve = 0, bid = 0;
    std::thread waiting([&] { EXPECT_EQ(ZVBL_GET_VER_ROPS(one.link, &version, &reserve, &bid), noAnswer); });
    std::thread working([&] { two.work(1); });
    waiting.join();
    working.join();
    EXPECT_EQ(contentOf(two.link), two.last);
    Interface_Close(one.link);
    Interface_Close(two.link);
}
