// The bytes of every command, typed from docs/wire-protocol.md.

#include <cstring>
#include <functional>

#include "tests/zvbl/Calls.h"
#include "tests/zvbl/LinkFixture.h"

namespace {

class WireVectorsTest : public LinkFixture {};

struct Vector {
    const char *name;
    Script script;
    std::function<int(HANDLE)> call;
};

const Vector vectors[] = {
    {"init of a chip that was reset", {{"7F", "79"}}, calls::start},
    {"init of a chip in its command state", {{"7F", "1F"}}, calls::start},
    {"tool exchange", {{"5A A5", "79"}, {"00 02 00 01 03", "79"}}, calls::exchangeToolVersion},
    {"go", {{"21 DE", "79"}, {"08 00 00 00 08", "79"}}, calls::runFlash},
    {"reset", {{"D4 2B", "79"}}, calls::reset},
    {"erase of a sector", {{"44 BB", "79"}, {"00 00 01 02 03", "79"}}, calls::eraseSector258},
    {"erase of a sector of SPIM", {{"44 BB", "79"}, {"00 00 80 05 85", "79"}}, calls::eraseSpimSector5},
    {"erase of bank 1", {{"44 BB", "79"}, {"FF FE 01", "79"}}, calls::eraseBank1},
    {"erase of bank 2", {{"44 BB", "79"}, {"FF FD 02", "79"}}, calls::eraseBank2},
    {"erase of Bank 3", {{"44 BB", "79"}, {"FF FC 03", "79"}}, calls::eraseBank3},
    {"erase of a block", {{"44 BB", "79"}, {"FF FB 04", "79"}, {"08 03 00 00 0B", "79"}}, calls::eraseBlock},
    {"access protection on", {{"82 7D", "79 79"}}, calls::protectAccess},
    {"access protection at a level", {{"84 7B", "79"}, {"01 FE", "79 79"}}, calls::protectAccessAtLevel1},
    {"access protection at the high level", {{"84 7B", "79"}, {"02 FD", "79 79"}}, calls::protectAccessAtLevel2},
    {"access protection off", {{"92 6D", "79 79"}}, calls::unprotectAccess},
    {"sector protection on", {{"63 9C", "79"}, {"02 00 03 1F 1E", "79"}}, calls::protectSectors0And3And31},
    {"sector protection off", {{"73 8C", "79 79"}}, calls::unprotectSectors},
    {"sLib on", {{"D1 2E", "79"}, {"12 34 56 78 00 04 FF FF 00 07 0B", "79"}}, calls::enableSlib},
    {"sLib off", {{"D2 2D", "79"}, {"12 34 56 78 08", "79"}}, calls::disableSlib},
    {"remap off", {{"B7 48", "79"}, {"00 FF", "79"}}, calls::remapTo0},
    {"remap on", {{"B7 48", "79"}, {"01 FE", "79"}}, calls::remapTo1},
    {"Bank 3 on", {{"B3 4C", "79"}, {"91 00 40 00 00 00 01 00 00 D0", "79"}}, calls::enableBank3},
    {"user system data set",
     {{"E2 1D", "79"}, {"1F FF F8 00 18", "79"}, {"00 02 A5 FF 01 59", "79 79"}},
     calls::writeUserData},
    {"download to RAM", {{"31 CE", "79"}, {"20 00 10 00 30", "79"}, {"02 AA BB CC DF", "79"}}, calls::writeRam},
    {"download of an OTP lock byte", {{"31 CE", "79"}, {"1F FF F5 03 16", "79"}, {"00 00 00", "79"}}, calls::lockOtp},
    {"verify", {{"11 EE", "79"}, {"08 00 00 04 0C", "79"}, {"02 FD", "79 01 02 03"}}, calls::verifyThree},
};

TEST_F(WireVectorsTest, CommandsWithoutAResult) {
    for (const Vector &vector : vectors) {
        SCOPED_TRACE(vector.name);
        EXPECT_EQ(play(vector.script, [&] { return vector.call(link); }), 0);
    }
}

TEST_F(WireVectorsTest, GetFillsTheRecord) {
    Commands commands;
    std::memset(&commands, 0x55, sizeof commands);
    BYTE scratch = 0;
    const Script script = {{"00 FF", "79 0B 31 00 01 02 11 21 31 44 63 73 82 92 79"}};
    EXPECT_EQ(play(script, [&] { return ZVBL_GET(link, &scratch, &commands); }), 0);
    const BOOL expected[24] = {1, 1, 1, 0, 1, 1, 1, 0, 1, 1, 0, 1, 1, 0, 1};
    EXPECT_EQ(std::memcmp(&commands, expected, sizeof commands), 0);
}

// One opcode at a time, in the order of the record.
TEST_F(WireVectorsTest, EveryOpcodeHasItsMember) {
    const char *opcodes[24] = {"00", "01", "02", "03", "11", "21", "31", "43", "44", "63", "71", "73",
                               "82", "81", "92", "AC", "B3", "5A", "D1", "D2", "D3", "B7", "D4", "84"};
    for (int member = 0; member < 24; ++member) {
        SCOPED_TRACE(opcodes[member]);
        BOOL record[24];
        BYTE scratch = 0;
        Commands commands;
        const Script script = {{"00 FF", std::string("79 02 20 ") + opcodes[member] + " E1 79"}};
        EXPECT_EQ(play(script, [&] { return ZVBL_GET(link, &scratch, &commands); }), 0);
        std::memcpy(record, &commands, sizeof record);
        for (int other = 0; other < 24; ++other)
            EXPECT_EQ(record[other], other == member ? 1 : 0);
    }
}

TEST_F(WireVectorsTest, VersionComesAsVersionReserveBid) {
    BYTE version = 0, reserve = 0, bid = 0;
    EXPECT_EQ(play({{"01 FE", "79 21 FF 12 79"}}, [&] { return ZVBL_GET_VER_ROPS(link, &version, &reserve, &bid); }),
              0);
    EXPECT_EQ(version, 0x21);
    EXPECT_EQ(reserve, 0xFF);
    EXPECT_EQ(bid, 0x12);
}

TEST_F(WireVectorsTest, IdOfFiveBytes) {
    BYTE length = 0;
    const Script script = {{"02 FD", "79 04 03 47 70 05 07 79"}};
    EXPECT_EQ(play(script, [&] { return ZVBL_GET_ID(link, &length, nullptr); }), 0);
    EXPECT_EQ(length, 5);
    BYTE id[5] = {};
    EXPECT_EQ(play(script, [&] { return ZVBL_GET_ID(link, &length, id); }), 0);
    EXPECT_EQ(hex(zvbl::Bytes(id, id + 5)), "03 47 70 05 07");
}

TEST_F(WireVectorsTest, IdOfTwoBytes) {
    BYTE length = 0, id[2] = {};
    EXPECT_EQ(play({{"02 FD", "79 01 02 42 79"}}, [&] { return ZVBL_GET_ID(link, &length, id); }), 0);
    EXPECT_EQ(length, 2);
    EXPECT_EQ(hex(zvbl::Bytes(id, id + 2)), "02 42");
}

TEST_F(WireVectorsTest, UploadOfOneByteAndOfTwelve) {
    BYTE data[12] = {};
    EXPECT_EQ(play({{"11 EE", "79"}, {"20 00 00 01 21", "79"}, {"00 FF", "79 5A"}},
                   [&] { return ZVBL_UPLOAD(link, 0x20000001, data, 1); }),
              0);
    EXPECT_EQ(data[0], 0x5A);
    EXPECT_EQ(play({{"11 EE", "79"}, {"1F FF F7 E8 FF", "79"}, {"0B F4", "79 01 02 03 04 05 06 07 08 09 0A 0B 0C"}},
                   [&] { return ZVBL_UPLOAD(link, 0x1FFFF7E8, data, 12); }),
              0);
    EXPECT_EQ(data[11], 0x0C);
}

TEST_F(WireVectorsTest, FlashSizeIsLowByteFirst) {
    int kilobytes = 0;
    EXPECT_EQ(play({{"11 EE", "79"}, {"1F FF F7 E0 F7", "79"}, {"01 FE", "79 00 04"}},
                   [&] { return TARGET_GetFlashSize(link, 0x1FFFF7E0, &kilobytes); }),
              0);
    EXPECT_EQ(kilobytes, 1024);
}

TEST_F(WireVectorsTest, FirmwareCrcIsHighestByteFirst) {
    BYTE crc[4] = {};
    EXPECT_EQ(play({{"AC 53", "79"}, {"08 00 08 00 00", "79"}, {"01 02 03", "79 DE AD BE EF 22"}},
                   [&] { return ZVBL_GetFirmwareCRC(link, 0x08000800, 0x102, crc); }),
              0);
    EXPECT_EQ(hex(zvbl::Bytes(crc, crc + 4)), "DE AD BE EF");
}

TEST_F(WireVectorsTest, UserSystemDataRead) {
    BYTE data[16] = {};
    const Script script = {{"E1 1E", "79"},
                           {"1F FF F8 00 18", "79"},
                           {"00 0F 0F", "79 A5 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F A5"}};
    EXPECT_EQ(play(script, [&] { return TARGET_GetUserSystemData(link, 0x1FFFF800, data, 16); }), 0);
    EXPECT_EQ(data[0], 0xA5);
    EXPECT_EQ(data[15], 0x0F);
}

TEST_F(WireVectorsTest, SlibStatus) {
    const Script on = {{"D3 2C", "79 01 00 04 00 06 01 07 05"}};
    const Script off = {{"D3 2C", "79 00 FF FF FF FF FF FF 00"}};
    BYTE enabled = 9;
    unsigned short start = 0, data = 0, end = 0;
    EXPECT_EQ(play(on, [&] { return ZVBL_GetSlibStatus(link, &enabled); }), 0);
    EXPECT_EQ(enabled, 1);
    EXPECT_EQ(play(off, [&] { return ZVBL_GetSlibStatus(link, &enabled); }), 0);
    EXPECT_EQ(enabled, 0);
    EXPECT_EQ(play(on, [&] { return ZVBL_GetSlibStatus_Ex(link, &enabled, &start, &data, &end); }), 0);
    EXPECT_EQ(enabled, 1);
    EXPECT_EQ(start, 4);
    EXPECT_EQ(data, 6);
    EXPECT_EQ(end, 0x107);
}

TEST_F(WireVectorsTest, SpeedIsOnlyForBusesThatHaveOne) {
    EXPECT_EQ(play({}, [&] { return ZVBL_SetSpeed(link, 2); }), 0x13);
}

// A chip without 44 is asked for the same with 43, as far as that can say it.
TEST_F(WireVectorsTest, EraseOnAChipWithoutTheExtendedForm) {
    Commands commands;
    BYTE scratch = 0;
    ASSERT_EQ(play({{"00 FF", "79 0B 31 00 01 02 11 21 31 43 63 73 82 92 79"}},
                   [&] { return ZVBL_GET(link, &scratch, &commands); }),
              0);
    BYTE sector[] = {0x42, 0x00}, farSector[] = {0x00, 0x01};
    EXPECT_EQ(play({{"43 BC", "79"}, {"00 42 42", "79"}}, [&] { return ZVBL_ERASE(link, 1, sector, 2048); }), 0);
    EXPECT_EQ(play({{"43 BC", "79"}, {"FF 00", "79"}}, [&] { return ZVBL_ERASE(link, 0xFFFE, nullptr, 0); }), 0);
    EXPECT_EQ(play({}, [&] { return ZVBL_ERASE(link, 1, farSector, 2048); }), 0x21);
    EXPECT_EQ(play({}, [&] { return ZVBL_ERASE(link, 0xFFFD, nullptr, 0); }), 0x13);
    EXPECT_EQ(play({}, [&] { return ZVBL_ERASE(link, 0xFFFC, nullptr, 0); }), 0x13);
    EXPECT_EQ(play({}, [&] { return ZVBL_BLOCK_ERASE(link, 0xFFFB, 0x08000000); }), 0x13);
}

TEST_F(WireVectorsTest, EraseOnAChipWithBothFormsOrNone) {
    Commands commands;
    BYTE scratch = 0;
    ASSERT_EQ(play({{"00 FF", "79 03 31 00 44 43 79"}}, [&] { return ZVBL_GET(link, &scratch, &commands); }), 0);
    const Script erase = {{"44 BB", "79"}, {"FF FE 01", "79"}};
    EXPECT_EQ(play(erase, [&] { return ZVBL_ERASE(link, 0xFFFE, nullptr, 0); }), 0);
    ASSERT_EQ(play({{"00 FF", "79 01 31 00 79"}}, [&] { return ZVBL_GET(link, &scratch, &commands); }), 0);
    EXPECT_EQ(play(erase, [&] { return ZVBL_ERASE(link, 0xFFFE, nullptr, 0); }), 0);
}

} // namespace
