// How a failure becomes a status byte, row by row, and what the arguments have to be.

#include <functional>
#include <thread>

#include "tests/zvbl/LinkFixture.h"

namespace {

using Milliseconds = std::chrono::milliseconds;

class StatusTest : public LinkFixture {};

// Every call that needs an open link.
const std::function<int(HANDLE)> calls[] = {
    [](HANDLE h) { return Interface_Close(h); },
    [](HANDLE h) { return ZVBL_SetDtr(h, 1); },
    [](HANDLE h) { return ZVBL_SetRts(h, 0); },
    [](HANDLE h) { return ZVBL_Init_BL(h, 0, 0, 0); },
    [](HANDLE h) { return ZVBL_SetSpeed(h, 2); },
    [](HANDLE h) {
        BYTE b;
        Commands c;
        return ZVBL_GET(h, &b, &c);
    },
    [](HANDLE h) {
        BYTE b;
        return ZVBL_GET_VER_ROPS(h, &b, &b, &b);
    },
    [](HANDLE h) {
        BYTE b;
        return ZVBL_GET_ID(h, &b, nullptr);
    },
    [](HANDLE h) { return ZVBL_GO(h, 0x08000000); },
    [](HANDLE h) { return ZVBL_ResetMCU(h); },
    [](HANDLE h) {
        BYTE b;
        return ZVBL_UPLOAD(h, 0x08000000, &b, 1);
    },
    [](HANDLE h) {
        BYTE b = 0;
        return ZVBL_DNLOAD(h, 0x08000000, &b, 1, 0);
    },
    [](HANDLE h) {
        BYTE b = 0xFF;
        return ZVBL_DNLOAD(h, 0x08000000, &b, 1, 1);
    },
    [](HANDLE h) {
        BYTE b = 0;
        return ZVBL_VERIFY(h, 0x08000000, &b, 1, 0);
    },
    [](HANDLE h) {
        BYTE b[2] = {};
        return ZVBL_ERASE(h, 1, b, 2048);
    },
    [](HANDLE h) { return ZVBL_ERASE(h, 0xFFFE, nullptr, 0); },
    [](HANDLE h) { return ZVBL_BLOCK_ERASE(h, 0xFFFB, 0x08000000); },
    [](HANDLE h) {
        BYTE b[4];
        return ZVBL_GetFirmwareCRC(h, 0x08000000, 1, b);
    },
    [](HANDLE h) { return ZVBL_SPIMREMAP(h, 1); },
    [](HANDLE h) { return ZVBL_EnableBank3(h, 0x90, 1024, 0); },
    [](HANDLE h) {
        int k;
        return TARGET_GetFlashSize(h, 0x1FFFF7E0, &k);
    },
    [](HANDLE h) {
        BYTE b;
        return TARGET_GetUserSystemData(h, 0x1FFFF800, &b, 1);
    },
    [](HANDLE h) {
        BYTE b = 0;
        return TARGET_SetUserSystemData(h, 0x1FFFF800, &b, 1);
    },
    [](HANDLE h) { return ZVBL_ACCESS_PROTECT(h); },
    [](HANDLE h) { return ZVBL_ACCESS_PROTECT_LEVEL(h, 1); },
    [](HANDLE h) { return ZVBL_ACCESS_PERM_UNPROTECT(h); },
    [](HANDLE h) {
        BYTE b = 0;
        return ZVBL_ERASEPROGRAM_PROTECT(h, 1, &b);
    },
    [](HANDLE h) { return ZVBL_ERASEPROGRAM_PERM_UNPROTECT(h); },
    [](HANDLE h) { return ZVBL_EnableSlib(h, 1, 0, 0, 0); },
    [](HANDLE h) { return ZVBL_DisableSlib(h, 1); },
    [](HANDLE h) {
        BYTE b;
        return ZVBL_GetSlibStatus(h, &b);
    },
    [](HANDLE h) {
        BYTE b;
        unsigned short s;
        return ZVBL_GetSlibStatus_Ex(h, &b, &s, &s, &s);
    },
    [](HANDLE h) { return ZVBL_ZV32ISP_TOOL(h); },
};

TEST_F(StatusTest, AClosedLinkIs1) {
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(Interface_is_Open(link), 0);
    for (const auto &call : calls)
        EXPECT_EQ(call(link), 1) << &call - calls;
    EXPECT_EQ(SetTimeOut(link, 100), 0);
    EXPECT_EQ(SetPaketSize(link, 8), 0);
}

TEST_F(StatusTest, AWordThatIsNoLinkIs1) {
    int something = 0;
    for (HANDLE word : {HANDLE(nullptr), HANDLE(1), HANDLE(&something), HANDLE(~0UL)}) {
        for (const auto &call : calls)
            EXPECT_EQ(call(word), 1) << &call - calls;
        EXPECT_EQ(Interface_Open(word), 1);
        EXPECT_EQ(Interface_is_Open(word), 0);
        EXPECT_EQ(SetTimeOut(word, 100), 1);
        EXPECT_EQ(SetPaketSize(word, 8), 1);
    }
    HANDLE word = &something;
    EXPECT_EQ(SetCOMSettings(&word, 0, "ttyS0", 115200, 8, 2, 1.0F), 0x21);
}

TEST_F(StatusTest, NullAndOutOfRangeArgumentsAre0x21AndSendNothing) {
    BYTE byte = 0;
    BYTE many[4] = {};
    Commands commands;
    unsigned short number = 0;
    signed char count = 9;
    unsigned short ids[255];
    TDeviceInfo info;
    const Script silence;
    ASSERT_EQ(play(silence,
                   [&] {
                       EXPECT_EQ(SetCOMSettings(nullptr, 0, "ttyS0", 115200, 8, 2, 1.0F), 0x21);
                       EXPECT_EQ(ZVBL_SetDtr(link, 2), 0x21);
                       EXPECT_EQ(ZVBL_SetRts(link, 2), 0x21);
                       EXPECT_EQ(ZVBL_GET(link, nullptr, &commands), 0x21);
                       EXPECT_EQ(ZVBL_GET(link, &byte, nullptr), 0x21);
                       EXPECT_EQ(ZVBL_GET_VER_ROPS(link, nullptr, &byte, &byte), 0x21);
                       EXPECT_EQ(ZVBL_GET_VER_ROPS(link, &byte, nullptr, &byte), 0x21);
                       EXPECT_EQ(ZVBL_GET_VER_ROPS(link, &byte, &byte, nullptr), 0x21);
                       EXPECT_EQ(ZVBL_GET_ID(link, nullptr, &byte), 0x21);
                       EXPECT_EQ(ZVBL_UPLOAD(link, 0x08000000, nullptr, 4), 0x21);
                       EXPECT_EQ(ZVBL_UPLOAD(link, 0xFFFFFFFD, many, 4), 0x21);
                       EXPECT_EQ(ZVBL_DNLOAD(link, 0x08000000, nullptr, 4, 0), 0x21);
                       EXPECT_EQ(ZVBL_DNLOAD(link, 0xFFFFFFFD, many, 4, 0), 0x21);
                       EXPECT_EQ(ZVBL_VERIFY(link, 0x08000000, nullptr, 4, 0), 0x21);
                       EXPECT_EQ(ZVBL_VERIFY(link, 0xFFFFFFFD, many, 4, 0), 0x21);
                       EXPECT_EQ(ZVBL_ERASE(link, 1, nullptr, 2048), 0x21);
                       EXPECT_EQ(ZVBL_ERASE(link, 2, many, 2048), 0x21);
                       EXPECT_EQ(ZVBL_ERASE(link, 0xFFFF, nullptr, 0), 0x21);
                       EXPECT_EQ(ZVBL_BLOCK_ERASE(link, 0xFFFE, 0x08000000), 0x21);
                       EXPECT_EQ(ZVBL_GetFirmwareCRC(link, 0x08000000, 0, many), 0x21);
                       EXPECT_EQ(ZVBL_GetFirmwareCRC(link, 0x08000000, 1, nullptr), 0x21);
                       EXPECT_EQ(TARGET_GetFlashSize(link, 0x1FFFF7E0, nullptr), 0x21);
                       EXPECT_EQ(TARGET_GetUserSystemData(link, 0x1FFFF800, nullptr, 16), 0x21);
                       EXPECT_EQ(TARGET_GetUserSystemData(link, 0x1FFFF800, many, 0), 0x21);
                       EXPECT_EQ(TARGET_GetUserSystemData(link, 0x1FFFF800, many, 2049), 0x21);
                       EXPECT_EQ(TARGET_SetUserSystemData(link, 0x1FFFF800, nullptr, 16), 0x21);
                       EXPECT_EQ(TARGET_SetUserSystemData(link, 0x1FFFF800, many, 0), 0x21);
                       EXPECT_EQ(TARGET_SetUserSystemData(link, 0x1FFFF800, many, 2049), 0x21);
                       EXPECT_EQ(ZVBL_ACCESS_PROTECT_LEVEL(link, 0), 0x21);
                       EXPECT_EQ(ZVBL_ACCESS_PROTECT_LEVEL(link, 3), 0x21);
                       EXPECT_EQ(ZVBL_ERASEPROGRAM_PROTECT(link, 0, many), 0x21);
                       EXPECT_EQ(ZVBL_ERASEPROGRAM_PROTECT(link, 1, nullptr), 0x21);
                       EXPECT_EQ(ZVBL_GetSlibStatus(link, nullptr), 0x21);
                       EXPECT_EQ(ZVBL_GetSlibStatus_Ex(link, nullptr, &number, &number, &number), 0x21);
                       EXPECT_EQ(ZVBL_GetSlibStatus_Ex(link, &byte, nullptr, &number, &number), 0x21);
                       EXPECT_EQ(ZVBL_GetSlibStatus_Ex(link, &byte, &number, nullptr, &number), 0x21);
                       EXPECT_EQ(ZVBL_GetSlibStatus_Ex(link, &byte, &number, &number, nullptr), 0x21);
                       EXPECT_EQ(ZVBL_GetZVDeviceList(nullptr, ids, ids, &info), 0x21);
                       EXPECT_EQ(ZVBL_GetZVDeviceList(&count, nullptr, ids, &info), 0x21);
                       EXPECT_EQ(ZVBL_GetZVDeviceList(&count, ids, nullptr, &info), 0x21);
                       EXPECT_EQ(ZVBL_GetZVDeviceList(&count, ids, ids, nullptr), 0x21);
                       return 0;
                   }),
              0);
}

TEST_F(StatusTest, LinksThatThisLibraryDoesNotHave) {
    for (BYTE type : {1, 2, 3, 4, 200}) {
        TARGET_SetComIntType(type);
        HANDLE other = nullptr;
        EXPECT_EQ(SetCOMSettings(&other, 0, pty.path().c_str(), 115200, 8, 2, 1.0F), 0);
        EXPECT_EQ(Interface_Open(other), 3) << int(type);
        EXPECT_EQ(Interface_is_Open(other), 0);
    }
    TARGET_SetComIntType(1); // a word is the number of a device there
    EXPECT_EQ(Interface_Open(nullptr), 3);
    EXPECT_EQ(Interface_Open(HANDLE(2)), 3);
    EXPECT_EQ(ZVBL_ResetMCU(HANDLE(2)), 1);
}

TEST_F(StatusTest, NoAnswerToTheOpeningByteIs0x11InTheLinksTimeout) {
    hurry(500, 5, 50);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(play({{"7F", ""}}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0x11);
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(took, Milliseconds(50));
    EXPECT_LT(took, Milliseconds(400));
}

TEST_F(StatusTest, AWrongByteToTheOpeningByteIs5) {
    hurry(500, 5, 50);
    EXPECT_EQ(play({{"7F", "55"}}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 5);
}

TEST_F(StatusTest, NoAnswerInTimeIs5) {
    hurry(500, 5, 30);
    EXPECT_EQ(play({{"D4 2B", ""}}, [&] { return ZVBL_ResetMCU(link); }), 5);
}

TEST_F(StatusTest, AWrongByteWhereAnAnswerBelongsIs5) {
    EXPECT_EQ(play({{"D4 2B", "78"}}, [&] { return ZVBL_ResetMCU(link); }), 5);
}

TEST_F(StatusTest, NackAfterAnOpcodeIs0x13) {
    EXPECT_EQ(play({{"92 6D", "1F"}}, [&] { return ZVBL_ACCESS_PERM_UNPROTECT(link); }), 0x13);
}

TEST_F(StatusTest, NackAfterAGroupIs0x14) {
    EXPECT_EQ(play({{"21 DE", "79"}, {"08 00 00 00 08", "1F"}}, [&] { return ZVBL_GO(link, 0x08000000); }), 0x14);
}

TEST_F(StatusTest, NackInPlaceOfTheSecondAnswerIs0x14) {
    EXPECT_EQ(play({{"73 8C", "79 1F"}}, [&] { return ZVBL_ERASEPROGRAM_PERM_UNPROTECT(link); }), 0x14);
}

// A difference is read twice: the reply has no checksum.
TEST_F(StatusTest, ADifferenceIs19FromVerify) {
    const Script read = {{"11 EE", "79"}, {"08 00 00 00 08", "79"}, {"01 FE", "79 01 03"}};
    BYTE data[] = {1, 2};
    Script twice = read;
    twice.insert(twice.end(), read.begin(), read.end());
    EXPECT_EQ(play(twice, [&] { return ZVBL_VERIFY(link, 0x08000000, data, 2, 0); }), 19);

    Script onlyTheLine = read;
    onlyTheLine.insert(onlyTheLine.end(), {{"11 EE", "79"}, {"08 00 00 00 08", "79"}, {"01 FE", "79 01 02"}});
    EXPECT_EQ(play(onlyTheLine, [&] { return ZVBL_VERIFY(link, 0x08000000, data, 2, 0); }), 0);
}

TEST_F(StatusTest, NackAfterTheOpcodeIs0x14FromVerifyAnd0x13FromUpload) {
    const Script refusals = {{"11 EE", "1F"}, {"7F", "1F"}, {"11 EE", "1F"}, {"7F", "1F"}, {"11 EE", "1F"}};
    BYTE data[] = {1, 2};
    EXPECT_EQ(play(refusals, [&] { return ZVBL_VERIFY(link, 0x08000000, data, 2, 0); }), 0x14);
    Script again = {{"7F", "1F"}};
    again.insert(again.end(), refusals.begin(), refusals.end());
    EXPECT_EQ(play(again, [&] { return ZVBL_UPLOAD(link, 0x08000000, data, 2); }), 0x13);
}

// As long as a link waits that was never told anything.
TEST_F(StatusTest, ATimeLimitOf0IsThatOfTheLibrary) {
    EXPECT_EQ(SetTimeOut(link, 20), 0);
    EXPECT_EQ(SetTimeOut(link, 0), 0);
    EXPECT_EQ(play({{"D4 2B", "79", 200}}, [&] { return ZVBL_ResetMCU(link); }), 0);
}

TEST_F(StatusTest, ADeviceThatGoesAwayIs4AtOnce) {
    std::thread hand([&] {
        pty.read(2000);
        pty.unplug();
    });
    const auto begin = std::chrono::steady_clock::now();
    BYTE byte = 0;
    EXPECT_EQ(ZVBL_UPLOAD(link, 0x08000000, &byte, 1), 4);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, Milliseconds(1000));
    hand.join();
    for (const auto &call : calls) {
        const auto row = &call - calls;
        const bool needsTheDevice = row != 0 && row != 4 && row != 12; // close, speed, nothing to send
        EXPECT_EQ(needsTheDevice ? call(link) : 4, 4) << row;
    }
    EXPECT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(Interface_Open(link), 3);
}

} // namespace
