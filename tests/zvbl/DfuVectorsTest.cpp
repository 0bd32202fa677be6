// The control transfers of every command, typed from docs/wire-protocol.md.

#include <cstring>
#include <functional>

#include "tests/zvbl/Calls.h"
#include "tests/zvbl/DfuFixture.h"

using namespace dfu;

namespace {

class DfuVectorsTest : public DfuFixture {};

struct Vector {
    const char *name;
    UsbScript script;
    std::function<int(HANDLE)> call;
};

const Vector vectors[] = {
    {"tool exchange", done("21 01 00 00 00 00 06 00 5A 00 02 00 01 03"), calls::exchangeToolVersion},
    {"reset", done("21 01 00 00 00 00 01 00 D4"), calls::reset},
    {"erase of a sector", done("21 01 00 00 00 00 06 00 44 00 00 01 02 03"), calls::eraseSector258},
    {"erase of a sector of SPIM", done("21 01 00 00 00 00 06 00 44 00 00 80 05 85"), calls::eraseSpimSector5},
    {"erase of bank 1", done("21 01 00 00 00 00 04 00 44 FF FE 01"), calls::eraseBank1},
    {"erase of bank 2", done("21 01 00 00 00 00 04 00 44 FF FD 02"), calls::eraseBank2},
    {"erase of Bank 3", done("21 01 00 00 00 00 04 00 44 FF FC 03"), calls::eraseBank3},
    {"erase of a block", done("21 01 00 00 00 00 09 00 44 FF FB 04 08 03 00 00 0B"), calls::eraseBlock},
    {"access protection on", done("21 01 00 00 00 00 01 00 82"), calls::protectAccess},
    {"access protection at a level", done("21 01 00 00 00 00 03 00 84 01 FE"), calls::protectAccessAtLevel1},
    {"access protection at the high level", done("21 01 00 00 00 00 03 00 84 02 FD"), calls::protectAccessAtLevel2},
    {"access protection off", done("21 01 00 00 00 00 01 00 92"), calls::unprotectAccess},
    {"sector protection on", done("21 01 00 00 00 00 06 00 63 02 00 03 1F 1E"), calls::protectSectors0And3And31},
    {"sector protection off", done("21 01 00 00 00 00 01 00 73"), calls::unprotectSectors},
    {"sLib on", done("21 01 00 00 00 00 0C 00 D1 12 34 56 78 00 04 FF FF 00 07 0B"), calls::enableSlib},
    {"sLib off", done("21 01 00 00 00 00 06 00 D2 12 34 56 78 08"), calls::disableSlib},
    {"remap off", done("21 01 00 00 00 00 03 00 B7 00 FF"), calls::remapTo0},
    {"remap on", done("21 01 00 00 00 00 03 00 B7 01 FE"), calls::remapTo1},
    {"Bank 3 on", done("21 01 00 00 00 00 0B 00 B3 91 00 40 00 00 00 01 00 00 D0"), calls::enableBank3},
    {"user system data set", done("21 01 00 00 00 00 0C 00 E2 1F FF F8 00 18 00 02 A5 FF 01 59"), calls::writeUserData},
    {"download to RAM", done("21 01 00 00 00 00 05 00 21 00 10 00 20") + done("21 01 02 00 00 00 03 00 AA BB CC"),
     calls::writeRam},
    {"download to flash, filled up",
     done("21 01 00 00 00 00 05 00 21 04 00 00 08") + done("21 01 02 00 00 00 04 00 FF AA BB FF"),
     [](HANDLE h) {
         BYTE data[] = {0xAA, 0xBB};
         return ZVBL_DNLOAD(h, 0x08000005, data, 2, 0);
     }},
    {"download of an OTP lock byte",
     done("21 01 00 00 00 00 05 00 21 03 F5 FF 1F") + done("21 01 02 00 00 00 01 00 00"), calls::lockOtp},
    {"verify",
     done("21 01 00 00 00 00 05 00 21 04 00 00 08") +
         UsbScript{{abortRequest, ""}, {"A1 02 02 00 00 00 03 00", "01 02 03"}},
     calls::verifyThree},
    {"go",
     done("21 01 00 00 00 00 05 00 21 00 40 00 08") +
         UsbScript{{"21 01 02 00 00 00 00 00", ""}, {getStatus, isManifest}},
     [](HANDLE h) { return ZVBL_GO(h, 0x08004000); }},
};

TEST_F(DfuVectorsTest, CommandsWithoutAResult) {
    for (const Vector &vector : vectors) {
        SCOPED_TRACE(vector.name);
        ASSERT_EQ(Interface_Open(link), 0);
        EXPECT_EQ(play(inStep + vector.script, [&] { return vector.call(link); }), 0);
    }
}

// A command whose reply is fetched from block 1.
UsbScript asked(const std::string &download, const std::string &reply) {
    return inStep + done(download) + UsbScript{{abortRequest, ""}, {"A1 02 01 00 00 00 00 10", reply}};
}

TEST_F(DfuVectorsTest, GetFillsTheRecord) {
    Commands commands;
    std::memset(&commands, 0x55, sizeof commands);
    BYTE scratch = 0;
    const UsbScript script = asked("21 01 00 00 00 00 01 00 00", "0B 31 00 01 02 11 21 31 44 63 73 82 92");
    EXPECT_EQ(play(script, [&] { return ZVBL_GET(link, &scratch, &commands); }), 0);
    const BOOL expected[24] = {1, 1, 1, 0, 1, 1, 1, 0, 1, 1, 0, 1, 1, 0, 1};
    EXPECT_EQ(std::memcmp(&commands, expected, sizeof commands), 0);
    EXPECT_EQ(scratch, 0x31);
}

TEST_F(DfuVectorsTest, Version) {
    BYTE version = 0, reserve = 0, bid = 0;
    EXPECT_EQ(play(asked("21 01 00 00 00 00 01 00 01", "21 FF 12"),
                   [&] { return ZVBL_GET_VER_ROPS(link, &version, &reserve, &bid); }),
              0);
    EXPECT_EQ(version, 0x21);
    EXPECT_EQ(reserve, 0xFF);
    EXPECT_EQ(bid, 0x12);
}

TEST_F(DfuVectorsTest, IdOfFiveBytesAndOfTwo) {
    BYTE length = 0, id[5] = {};
    EXPECT_EQ(
        play(asked("21 01 00 00 00 00 01 00 02", "04 03 47 70 05 07"), [&] { return ZVBL_GET_ID(link, &length, id); }),
        0);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(hex(zvbl::Bytes(id, id + 5)), "03 47 70 05 07");
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(play(asked("21 01 00 00 00 00 01 00 02", "01 02 42"), [&] { return ZVBL_GET_ID(link, &length, id); }), 0);
    EXPECT_EQ(length, 2);
}

// USB checks every packet by itself: nothing has to vouch for what was read.
TEST_F(DfuVectorsTest, AnUploadAsksForNoChecksum) {
    Commands commands;
    BYTE version = 0;
    EXPECT_EQ(
        play(asked("21 01 00 00 00 00 01 00 00", "02 21 11 AC"), [&] { return ZVBL_GET(link, &version, &commands); }),
        0);
    EXPECT_EQ(commands.FIRMWARE_CRC_CMD, 1);
    zvbl::Bytes data(2048);
    const UsbScript read = done("21 01 00 00 00 00 05 00 21 00 00 00 08") +
                           UsbScript{{abortRequest, ""}, {"A1 02 02 00 00 00 00 08", hex(zvbl::Bytes(2048, 0x5A))}};
    EXPECT_EQ(play(read, [&] { return ZVBL_UPLOAD(link, 0x08000000, data.data(), 2048); }), 0);
    EXPECT_EQ(data, zvbl::Bytes(2048, 0x5A));
}

// What is compared travels once for a whole sector: as a command of its own, and four bytes of reply.
TEST_F(DfuVectorsTest, AVerifyOfAWholeSectorAsksForItsChecksum) {
    Commands commands;
    BYTE version = 0;
    EXPECT_EQ(
        play(asked("21 01 00 00 00 00 01 00 00", "02 21 11 AC"), [&] { return ZVBL_GET(link, &version, &commands); }),
        0);
    const auto question = [](const std::string &download, const std::string &reply) {
        return done(download) + UsbScript{{abortRequest, ""}, {"A1 02 01 00 00 00 00 10", reply}};
    };
    const UsbScript script = question("21 01 00 00 00 00 09 00 AC 08 00 00 00 08 00 00 00", "00 00 08 00 08") +
                             question("21 01 00 00 00 00 09 00 AC 08 00 08 00 00 00 01 01", "3F 55 D1 7F C4");
    zvbl::Bytes erased(2048, 0xFF);
    EXPECT_EQ(play(script, [&] { return ZVBL_VERIFY(link, 0x08000800, erased.data(), 2048, 0); }), 0);
}

TEST_F(DfuVectorsTest, FlashSizeIsLowByteFirst) {
    int kilobytes = 0;
    const UsbScript script = inStep + done("21 01 00 00 00 00 05 00 21 E0 F7 FF 1F") +
                             UsbScript{{abortRequest, ""}, {"A1 02 02 00 00 00 02 00", "00 04"}};
    EXPECT_EQ(play(script, [&] { return TARGET_GetFlashSize(link, 0x1FFFF7E0, &kilobytes); }), 0);
    EXPECT_EQ(kilobytes, 1024);
}

TEST_F(DfuVectorsTest, FirmwareCrcIsHighestByteFirst) {
    BYTE crc[4] = {};
    EXPECT_EQ(play(asked("21 01 00 00 00 00 09 00 AC 08 00 08 00 00 01 02 03", "DE AD BE EF 22"),
                   [&] { return ZVBL_GetFirmwareCRC(link, 0x08000800, 0x102, crc); }),
              0);
    EXPECT_EQ(hex(zvbl::Bytes(crc, crc + 4)), "DE AD BE EF");
}

TEST_F(DfuVectorsTest, UserSystemDataRead) {
    BYTE data[4] = {};
    EXPECT_EQ(play(asked("21 01 00 00 00 00 09 00 E1 1F FF F8 00 18 00 03 03", "A5 01 02 03 A5"),
                   [&] { return TARGET_GetUserSystemData(link, 0x1FFFF800, data, 4); }),
              0);
    EXPECT_EQ(hex(zvbl::Bytes(data, data + 4)), "A5 01 02 03");
}

TEST_F(DfuVectorsTest, SlibStatus) {
    BYTE enabled = 0;
    unsigned short start = 0, data = 0, end = 0;
    EXPECT_EQ(play(asked("21 01 00 00 00 00 01 00 D3", "01 00 04 00 06 01 07 05"),
                   [&] { return ZVBL_GetSlibStatus_Ex(link, &enabled, &start, &data, &end); }),
              0);
    EXPECT_EQ(enabled, 1);
    EXPECT_EQ(start, 4);
    EXPECT_EQ(data, 6);
    EXPECT_EQ(end, 0x107);
}

TEST_F(DfuVectorsTest, InitBringsTheDeviceToIdleAndUsbHasNoSpeedAndNoLines) {
    EXPECT_EQ(play(inStep, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
    EXPECT_EQ(play({}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
    EXPECT_EQ(play({}, [&] { return ZVBL_SetSpeed(link, 2); }), 0x13);
    EXPECT_EQ(play({}, [&] { return ZVBL_SetDtr(link, 1); }), 4);
    EXPECT_EQ(play(done("21 01 00 00 00 00 01 00 D4"), [&] { return ZVBL_ResetMCU(link); }), 0);
}

// One of three alternate settings, on the fourth interface.
class DfuInterfaceTest : public DfuFixture {
    UsbDeviceFacts facts() const override {
        UsbDeviceFacts facts;
        facts.interface = 3;
        facts.alternates = 3;
        return facts;
    }
};

TEST_F(DfuInterfaceTest, EveryRequestGoesToTheInterface) {
    BYTE data[2] = {};
    const UsbScript script = {{"A1 05 00 00 03 00 01 00", "02"},
                              {"21 01 00 00 03 00 05 00 21 00 00 00 20", ""},
                              {"A1 03 00 00 03 00 06 00", isDownloadIdle},
                              {"21 06 00 00 03 00 00 00", ""},
                              {"A1 02 02 00 03 00 02 00", "12 34"}};
    EXPECT_EQ(play(script, [&] { return ZVBL_UPLOAD(link, 0x20000000, data, 2); }), 0);
    EXPECT_EQ(data[1], 0x34);
}

} // namespace
