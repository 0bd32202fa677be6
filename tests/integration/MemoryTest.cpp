// Stretches of any length at any address, what the chip tells of itself, and the reset.

#include <algorithm>

#include "tests/integration/LibraryTest.h"

class MemoryTest : public LibraryTest {};

TEST_F(MemoryTest, OddStretchesOfFlashTouchNothingBesides) {
    connect("ZV32F403A_1024K");
    constexpr unsigned room = 32;
    unsigned at = flashBase;
    for (unsigned front = 0; front < 4; ++front) {
        for (unsigned length = 1; length <= 9; ++length, at += room) {
            const Bytes bytes = program(length, front);
            Bytes expected(room, 0xFF);
            std::copy(bytes.begin(), bytes.end(), expected.begin() + front);
            EXPECT_EQ(write(at + front, bytes), done) << front << " " << length;
            EXPECT_EQ(read(at, room), expected) << front << " " << length;
            EXPECT_EQ(read(at + front, length), bytes);
        }
    }
}

TEST_F(MemoryTest, WhatMeetsInOneWord) {
    connect("ZV32F403A_1024K");
    const Bytes whole = program(11);
    EXPECT_EQ(write(flashBase + 2, Bytes(whole.begin(), whole.begin() + 5)), done);
    EXPECT_EQ(write(flashBase + 7, Bytes(whole.begin() + 5, whole.end())), done);
    EXPECT_EQ(read(flashBase + 2, 11), whole);
    EXPECT_EQ(write(flashBase + 6, {0x11}), refused) << "that cell is taken";
    EXPECT_EQ(read(flashBase + 2, 11), whole);
}

TEST_F(MemoryTest, PacketsOfEverySize) {
    connect("ZV32F403A_1024K");
    unsigned at = flashBase;
    for (const BYTE size : {BYTE(0), BYTE(1), BYTE(7), BYTE(128), BYTE(255)}) {
        EXPECT_EQ(SetPaketSize(link, size), done);
        Bytes bytes = program(1001, size);
        EXPECT_EQ(write(at + 3, bytes), done) << int(size);
        EXPECT_EQ(read(at + 3, bytes.size()), bytes);
        EXPECT_EQ(read(at + 1004, 4), Bytes(4, 0xFF));
        EXPECT_EQ(ZVBL_VERIFY(link, at + 3, bytes.data(), 1001, 0), done);
        bytes.back() ^= 1;
        EXPECT_EQ(ZVBL_VERIFY(link, at + 3, bytes.data(), 1001, 0), dataDiffer);
        at += 2048;
    }
}

TEST_F(MemoryTest, RamIsWrittenByteByByte) {
    connect("ZV32F403A_1024K");
    EXPECT_EQ(write(ramBase, Bytes(16, 0xAA)), done);
    EXPECT_EQ(write(ramBase + 5, {1, 2, 3}), done);
    EXPECT_EQ(read(ramBase + 4, 5), (Bytes{0xAA, 1, 2, 3, 0xAA}));
}

TEST_F(MemoryTest, TheFlashSizeRegister) {
    const std::map<std::string, int> chips = {
        {"ZV32F403A_1024K", 1024}, {"ZV32F403_2_256K", 256}, {"ZV32F415_128K", 128}, {"ZV32F437_4032K", 4032}};
    for (const auto &[name, kilobytes] : chips) {
        Interface_Close(link);
        connect(name);
        int answer = 0;
        EXPECT_EQ(TARGET_GetFlashSize(link, 0x1FFFF7E0, &answer), done);
        EXPECT_EQ(answer, kilobytes) << name;
        EXPECT_EQ(TARGET_GetFlashSize(link, 0x1FFFF7E0, nullptr), badArgument);
    }
    int answer = 77;
    EXPECT_EQ(ZVBL_ACCESS_PROTECT(link), done);
    EXPECT_EQ(initAgain(), done);
    EXPECT_EQ(TARGET_GetFlashSize(link, 0x1FFFF7E0, &answer), commandRefused);
    EXPECT_EQ(answer, 77);
}

TEST_F(MemoryTest, TheUniqueIdentifierIsTheChipsOwnAndCannotBeWritten) {
    connect("ZV32F403A_1024K");
    const Bytes id = read(0x1FFFF7E8, 12);
    EXPECT_NE(id, Bytes(12, 0xFF));
    EXPECT_EQ(write(0x1FFFF7E8, Bytes(12, 0)), refused);
    EXPECT_EQ(read(0x1FFFF7E8, 12), id);
    Interface_Close(link);
    connect("ZV32F407_512K");
    EXPECT_NE(read(0x1FFFF7E8, 12), id);
}

TEST_F(MemoryTest, ResetByCommand) {
    connect("ZV32F403A_1024K");
    EXPECT_EQ(write(flashBase, {1, 2, 3, 4}), done);
    EXPECT_EQ(ZVBL_EnableBank3(link, 0x90, 1 << 20, 0), done);
    EXPECT_EQ(ZVBL_ResetMCU(link), done);
    EXPECT_EQ(initAgain(), done);
    EXPECT_EQ(ZVBL_BLOCK_ERASE(link, 0xFFFB, spimBase), refused) << "SPIM is off";
    EXPECT_EQ(read(flashBase, 4), (Bytes{1, 2, 3, 4}));
}

TEST_F(MemoryTest, AProgramThatRunsIsSilentUntilTheReset) {
    connect("ZV32F403A_1024K");
    EXPECT_EQ(write(flashBase, program(64)), done);
    EXPECT_EQ(ZVBL_GO(link, flashBase), done);
    EXPECT_EQ(SetTimeOut(link, 100), done);
    BYTE length = 0;
    // The program has the USB port: there the device is gone.
    EXPECT_EQ(ZVBL_GET_ID(link, &length, nullptr), chip->place().type == 1 ? gone : noAnswer);
    chip->pressReset();
    EXPECT_EQ(SetTimeOut(link, 1000), done);
    EXPECT_EQ(initAgain(), done);
    EXPECT_EQ(ZVBL_GET_ID(link, &length, nullptr), done);
    EXPECT_EQ(length, 5);
}
