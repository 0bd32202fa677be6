// The messages of every command on SPI, typed from docs/wire-protocol.md.

#include <cstring>
#include <functional>

#include "tests/zvbl/Calls.h"
#include "tests/zvbl/FakeSpi.h"
#include "tests/zvbl/NodeFixture.h"
#include "tests/zvbl/Pty.h"

namespace {

class SpiVectorsTest : public NodeFixture<FakeSpi, 4> {
protected:
    template <class Call>
    int play(const Exchanges &script, Call call) {
        fake.play(script);
        const int status = call();
        EXPECT_EQ(fake.finish(), "");
        return status;
    }
};

struct Vector {
    const char *name;
    Exchanges script;
    std::function<int(HANDLE)> call;
};

const Vector vectors[] = {
    {"init of a chip that was reset",
     {{"5A 7F", "5A 79"}, {"5A 7F", "5A 1F"}},
     [](HANDLE h) { return ZVBL_Init_BL(h, 0, 150000, 0); }},
    {"init of a chip in its command state", {{"5A 7F", "5A 1F"}}, calls::start},
    {"tool exchange", {{"5A 5A A5", "5A 79"}, {"5A 00 02 00 01 03", "5A 79"}}, calls::exchangeToolVersion},
    {"go", {{"5A 21 DE", "5A 79"}, {"5A 08 00 00 00 08", "5A 79"}}, calls::runFlash},
    {"reset", {{"5A D4 2B", "5A 79"}}, calls::reset},
    {"erase of a sector, its count in the group",
     {{"5A 44 BB", "5A 79"}, {"5A 00 00 01 02 03", "00 00 00 00 00 00 00 00 00 00 00 5A 79"}},
     calls::eraseSector258},
    {"erase of bank 1", {{"5A 44 BB", "5A 79"}, {"5A FF FE 01", "00 5A 79"}}, calls::eraseBank1},
    {"erase of a block",
     {{"5A 44 BB", "5A 79"}, {"5A FF FB 04", "5A 79"}, {"5A 08 03 00 00 0B", "00 00 00 5A 79"}},
     calls::eraseBlock},
    {"access protection on", {{"5A 82 7D", "5A 79 00 00 00 5A 79"}}, calls::protectAccess},
    {"access protection at a level",
     {{"5A 84 7B", "5A 79"}, {"5A 01 FE", "5A 79 5A 79"}},
     calls::protectAccessAtLevel1},
    {"access protection off", {{"5A 92 6D", "00 5A 79 00 00 00 00 5A 79"}}, calls::unprotectAccess},
    {"sector protection on", {{"5A 63 9C", "5A 79"}, {"5A 02 00 03 1F 1E", "5A 79"}}, calls::protectSectors0And3And31},
    {"sector protection off", {{"5A 73 8C", "5A 79 5A 79"}}, calls::unprotectSectors},
    {"sLib on", {{"5A D1 2E", "5A 79"}, {"5A 12 34 56 78 00 04 FF FF 00 07 0B", "5A 79"}}, calls::enableSlib},
    {"sLib off", {{"5A D2 2D", "5A 79"}, {"5A 12 34 56 78 08", "5A 79"}}, calls::disableSlib},
    {"remap", {{"5A B7 48", "5A 79"}, {"5A 01 FE", "5A 79"}}, calls::remapTo1},
    {"Bank 3 on", {{"5A B3 4C", "5A 79"}, {"5A 91 00 40 00 00 00 01 00 00 D0", "5A 79"}}, calls::enableBank3},
    {"user system data set",
     {{"5A E2 1D", "5A 79"}, {"5A 1F FF F8 00 18", "5A 79"}, {"5A 00 02 A5 FF 01 59", "5A 79 00 00 5A 79"}},
     calls::writeUserData},
    {"download to RAM",
     {{"5A 31 CE", "5A 79"}, {"5A 20 00 10 00 30", "5A 79"}, {"5A 02 AA BB CC DF", "5A 79"}},
     calls::writeRam},
    {"verify, the XOR of the reply after it",
     {{"5A 11 EE", "5A 79"}, {"5A 08 00 00 04 0C", "5A 79"}, {"5A 02 FD", "5A 79 5A 01 02 04 07"}},
     [](HANDLE h) {
         BYTE data[] = {1, 2, 4};
         return ZVBL_VERIFY(h, 0x08000004, data, 3, 0);
     }},
    {"speed, which is told at the start", {}, calls::setSpeedThatNoneHas},
};

TEST_F(SpiVectorsTest, CommandsWithoutAResult) {
    for (const Vector &vector : vectors) {
        SCOPED_TRACE(vector.name);
        EXPECT_EQ(play(vector.script, [&] { return vector.call(link); }), 0);
    }
}

// Answers come when they come, and a fetch may end anywhere within them.
TEST_F(SpiVectorsTest, EveryAnswerMayBeLate) {
    zvbl::Timing patient;
    patient.quiet = std::chrono::seconds(1); // for the first opening byte, on a busy machine too
    zvbl::setTiming(patient);
    ASSERT_EQ(Interface_Open(link), 0);
    for (const Vector &vector : vectors) {
        for (int zeros = 1; zeros <= 9; ++zeros) {
            SCOPED_TRACE(std::string(vector.name) + " after " + std::to_string(zeros));
            Exchanges script = vector.script;
            for (Exchange &exchange : script)
                for (int i = 0; i < zeros; ++i)
                    exchange.fetched.insert(0, "00 ");
            EXPECT_EQ(play(script, [&] { return vector.call(link); }), 0);
        }
    }
}

TEST_F(SpiVectorsTest, Get) {
    for (const char *reply : {"5A 79 5A 0B 31 00 01 02 11 21 31 44 63 73 82 92 7C 5A 79",
                              "00 5A 79 00 00 00 5A 0B 31 00 01 02 11 21 31 44 63 73 82 92 7C 00 00 5A 79"}) {
        Commands commands;
        BYTE version = 0;
        EXPECT_EQ(play({{"5A 00 FF", reply}}, [&] { return ZVBL_GET(link, &version, &commands); }), 0);
        EXPECT_EQ(version, 0x31);
        const BOOL expected[24] = {1, 1, 1, 0, 1, 1, 1, 0, 1, 1, 0, 1, 1, 0, 1};
        EXPECT_EQ(std::memcmp(&commands, expected, sizeof commands), 0);
    }
}

TEST_F(SpiVectorsTest, VersionAndIdentifier) {
    BYTE version = 0, reserve = 0, bid = 0, length = 0, id[5] = {};
    EXPECT_EQ(play({{"5A 01 FE", "5A 79 5A 21 FF 12 CC 5A 79"}},
                   [&] { return ZVBL_GET_VER_ROPS(link, &version, &reserve, &bid); }),
              0);
    EXPECT_EQ(fake.count(), 2); // the last ACK is one of its own
    EXPECT_EQ(version, 0x21);
    EXPECT_EQ(bid, 0x12);
    EXPECT_EQ(
        play({{"5A 02 FD", "5A 79 5A 04 03 47 70 05 07 32 5A 79"}}, [&] { return ZVBL_GET_ID(link, &length, id); }), 0);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(hex(zvbl::Bytes(id, id + 5)), "03 47 70 05 07");
}

TEST_F(SpiVectorsTest, FirmwareCrcAndSlibStatus) {
    BYTE crc[4] = {}, enabled = 9;
    unsigned short start = 0, data = 0, end = 0;
    EXPECT_EQ(play({{"5A AC 53", "5A 79"},
                    {"5A 08 00 08 00 00", "5A 79"},
                    {"5A 01 02 03", "00 00 00 00 5A 79 5A DE AD BE EF 22"}},
                   [&] { return ZVBL_GetFirmwareCRC(link, 0x08000800, 0x102, crc); }),
              0);
    EXPECT_EQ(hex(zvbl::Bytes(crc, crc + 4)), "DE AD BE EF");
    EXPECT_EQ(play({{"5A D3 2C", "5A 79 5A 01 00 04 00 06 01 07 05"}},
                   [&] { return ZVBL_GetSlibStatus_Ex(link, &enabled, &start, &data, &end); }),
              0);
    EXPECT_EQ(enabled, 1);
    EXPECT_EQ(end, 0x107);
}

TEST_F(SpiVectorsTest, UserSystemDataRead) {
    BYTE data[4] = {};
    EXPECT_EQ(play({{"5A E1 1E", "5A 79"}, {"5A 1F FF F8 00 18", "5A 79"}, {"5A 00 03 03", "5A 79 5A A5 01 02 03 A5"}},
                   [&] { return TARGET_GetUserSystemData(link, 0x1FFFF800, data, 4); }),
              0);
    EXPECT_EQ(hex(zvbl::Bytes(data, data + 4)), "A5 01 02 03");
}

// A message and the first look at its answer are one call; so is the reply of a chip that is quick.
TEST_F(SpiVectorsTest, APacketIsThreeCalls) {
    zvbl::Bytes data(256, 0x5A);
    const std::string bytes = hex(data);
    EXPECT_EQ(play({{"5A 31 CE", "5A 79"}, {"5A 20 00 00 00 20", "5A 79"}, {"5A FF " + bytes + " FF", "5A 79"}},
                   [&] { return ZVBL_DNLOAD(link, 0x20000000, data.data(), 256, 0); }),
              0);
    EXPECT_EQ(fake.count(), 3);
    EXPECT_EQ(play({{"5A 11 EE", "5A 79"}, {"5A 20 00 00 00 20", "5A 79"}, {"5A FF 00", "5A 79 5A " + bytes + " 00"}},
                   [&] { return ZVBL_UPLOAD(link, 0x20000000, data.data(), 256); }),
              0);
    EXPECT_EQ(fake.count(), 3);
}

TEST_F(SpiVectorsTest, TheLongestMessageAndReply) {
    zvbl::Bytes user(2048, 0x5A);
    const std::string bytes = hex(user);
    EXPECT_EQ(play({{"5A E1 1E", "5A 79"},
                    {"5A 1F FF F8 00 18", "5A 79"},
                    {"5A 07 FF F8", "00 00 00 5A 79 00 00 00 5A " + bytes + " 00"}},
                   [&] { return TARGET_GetUserSystemData(link, 0x1FFFF800, user.data(), 2048); }),
              0);
    EXPECT_EQ(
        play({{"5A E2 1D", "5A 79"}, {"5A 1F FF F8 00 18", "5A 79"}, {"5A 07 FF " + bytes + " F8", "5A 79 5A 79"}},
             [&] { return TARGET_SetUserSystemData(link, 0x1FFFF800, user.data(), 2048); }),
        0);
}

TEST_F(SpiVectorsTest, TheSpeed) {
    const Exchanges opening = {{"5A 7F", "5A 1F"}};
    EXPECT_EQ(play(opening, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
    EXPECT_EQ(fake.speed, 150000U);
    EXPECT_EQ(play(opening, [&] { return ZVBL_Init_BL(link, 0, 12000000, 0); }), 0);
    EXPECT_EQ(fake.speed, 12000000U);
    EXPECT_EQ(play({}, [&] { return ZVBL_Init_BL(link, 0, 0x100000000UL, 0); }), 0x21);
    fake.settingsFail = "EINVAL";
    EXPECT_EQ(play({}, [&] { return ZVBL_Init_BL(link, 0, 7, 0); }), 0x21);
    EXPECT_NE(trace().find("# the driver refuses 7 Hz: Invalid argument\n"), std::string::npos);
}

// Mode 0, highest bit first, whatever another program left; how the select is wired stays.
TEST_F(SpiVectorsTest, TheMode) {
    EXPECT_EQ(fake.mode, 0U);
    EXPECT_EQ(fake.bits, 8U);
    fake.mode = 0x2F; // CPHA, CPOL, select high, lowest bit first, loop
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(fake.mode, 0x04U);
}

TEST_F(SpiVectorsTest, TheTrace) {
    EXPECT_EQ(trace(), "# open SPI mode 0\n");
    ASSERT_EQ(play({{"5A 7F", "00 00 00 5A 1F"}}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
    BYTE byte = 0;
    ASSERT_EQ(play({{"5A 11 EE", "5A 79"}, {"5A 20 00 00 00 20", "5A 79"}, {"5A 00 FF", "5A 79 5A 42 42"}},
                   [&] { return ZVBL_UPLOAD(link, 0x20000000, &byte, 1); }),
              0);
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(trace(), "# 150000 Hz\n> 5A 7F\n< 5A 1F\n> 5A 11 EE\n< 5A 79\n> 5A 20 00 00 00 20\n< 5A 79\n> 5A 00 FF\n"
                       "< 5A 79\n< 5A 42 42\n# closed\n");
}

} // namespace
