// The transfers of every command on I2C, typed from docs/wire-protocol.md.

#include <cstring>
#include <functional>

#include "libs/zvbl/Timing.h"
#include "tests/zvbl/Calls.h"
#include "tests/zvbl/FakeI2c.h"
#include "tests/zvbl/NodeFixture.h"
#include "tests/zvbl/Pty.h"

namespace {

class I2cVectorsTest : public NodeFixture<FakeI2c, 2> {
protected:
    template <class Call>
    int play(const Transfers &script, Call call) {
        fake.play(script);
        const int status = call();
        EXPECT_EQ(fake.finish(), "");
        return status;
    }
};

// A GET as the library sends it, which can't know how long the answer is.
const Transfers get = {"> 00 FF", "< 79", "< 0B", "> 00 FF", "< 79", "< 0B 31 00 01 02 11 21 31 44 63 73 82 92",
                       "< 79"};

struct Vector {
    const char *name;
    Transfers script;
    std::function<int(HANDLE)> call;
};

const Vector vectors[] = {
    {"init", get, [](HANDLE h) { return ZVBL_Init_BL(h, 0x3C, 400000, 2); }},
    {"tool exchange", {"> 5A A5", "< 79", "> 00 02 00 01 03", "< 79"}, calls::exchangeToolVersion},
    {"go", {"> 21 DE", "< 79", "> 08 00 00 00 08", "< 79"}, calls::runFlash},
    {"reset", {"> D4 2B", "< 79"}, calls::reset},
    {"erase of a sector, its count alone",
     {"> 44 BB", "< 79", "> 00 00 00", "< 79", "> 01 02 03", "< 76", "< 76", "< 79"},
     calls::eraseSector258},
    {"erase of a sector of SPIM",
     {"> 44 BB", "< 79", "> 00 00 00", "< 79", "> 80 05 85", "< 79"},
     calls::eraseSpimSector5},
    {"erase of bank 1", {"> 44 BB", "< 79", "> FF FE 01", "< 79"}, calls::eraseBank1},
    {"erase of bank 2", {"> 44 BB", "< 79", "> FF FD 02", "< 79"}, calls::eraseBank2},
    {"erase of Bank 3", {"> 44 BB", "< 79", "> FF FC 03", "< 79"}, calls::eraseBank3},
    {"erase of a block",
     {"> 44 BB", "< 79", "> FF FB 04", "< 79", "> 08 03 00 00 0B", "< 76", "< 79"},
     calls::eraseBlock},
    {"access protection on", {"> 82 7D", "< 79", "< 76", "< 79"}, calls::protectAccess},
    {"access protection at a level", {"> 84 7B", "< 79", "> 02 FD", "< 79", "< 79"}, calls::protectAccessAtLevel2},
    {"access protection off", {"> 92 6D", "< 79", "< 76", "< 76", "< 76", "< 79"}, calls::unprotectAccess},
    {"sector protection on", {"> 63 9C", "< 79", "> 02 00 03 1F 1E", "< 79"}, calls::protectSectors0And3And31},
    {"sector protection off", {"> 73 8C", "< 79", "< 79"}, calls::unprotectSectors},
    {"sLib on", {"> D1 2E", "< 79", "> 12 34 56 78 00 04 FF FF 00 07 0B", "< 79"}, calls::enableSlib},
    {"sLib off", {"> D2 2D", "< 79", "> 12 34 56 78 08", "< 79"}, calls::disableSlib},
    {"remap", {"> B7 48", "< 79", "> 01 FE", "< 79"}, calls::remapTo1},
    {"Bank 3 on", {"> B3 4C", "< 79", "> 91 00 40 00 00 00 01 00 00 D0", "< 79"}, calls::enableBank3},
    {"user system data set",
     {"> E2 1D", "< 79", "> 1F FF F8 00 18", "< 79", "> 00 02 A5 FF 01 59", "< 79", "< 76", "< 79"},
     calls::writeUserData},
    {"download to flash",
     {"> 31 CE", "< 79", "> 08 00 00 00 08", "< 79", "> 03 AA BB CC FF 21", "< 76", "< 79"},
     [](HANDLE h) {
         BYTE data[] = {0xAA, 0xBB, 0xCC};
         return ZVBL_DNLOAD(h, 0x08000000, data, 3, 0);
     }},
    {"verify", {"> 11 EE", "< 79", "> 08 00 00 04 0C", "< 79", "> 02 FD", "< 79", "< 01 02 03"}, calls::verifyThree},
    {"speed, which this bus has none of", {}, calls::setSpeedThatNoneHas},
};

TEST_F(I2cVectorsTest, CommandsWithoutAResult) {
    for (const Vector &vector : vectors) {
        SCOPED_TRACE(vector.name);
        EXPECT_EQ(play(vector.script, [&] { return vector.call(link); }), 0);
    }
}

TEST_F(I2cVectorsTest, Get) {
    Commands commands;
    BYTE version = 0;
    EXPECT_EQ(play(get, [&] { return ZVBL_GET(link, &version, &commands); }), 0);
    EXPECT_EQ(version, 0x31);
    const BOOL expected[24] = {1, 1, 1, 0, 1, 1, 1, 0, 1, 1, 0, 1, 1, 0, 1};
    EXPECT_EQ(std::memcmp(&commands, expected, sizeof commands), 0);
}

TEST_F(I2cVectorsTest, VersionAndIdentifier) {
    BYTE version = 0, reserve = 0, bid = 0, length = 0, id[5] = {};
    EXPECT_EQ(play({"> 01 FE", "< 79", "< 21 FF 12", "< 79"},
                   [&] { return ZVBL_GET_VER_ROPS(link, &version, &reserve, &bid); }),
              0);
    EXPECT_EQ(version, 0x21);
    EXPECT_EQ(bid, 0x12);
    EXPECT_EQ(play({"> 02 FD", "< 79", "< 04", "> 02 FD", "< 79", "< 04 03 47 70 05 07", "< 79"},
                   [&] { return ZVBL_GET_ID(link, &length, id); }),
              0);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(hex(zvbl::Bytes(id, id + 5)), "03 47 70 05 07");
}

TEST_F(I2cVectorsTest, FirmwareCrcAndSlibStatus) {
    BYTE crc[4] = {}, enabled = 9;
    unsigned short start = 0, data = 0, end = 0;
    EXPECT_EQ(play({"> AC 53", "< 79", "> 08 00 08 00 00", "< 79", "> 01 02 03", "< 76", "< 79", "< DE AD BE EF 22"},
                   [&] { return ZVBL_GetFirmwareCRC(link, 0x08000800, 0x102, crc); }),
              0);
    EXPECT_EQ(hex(zvbl::Bytes(crc, crc + 4)), "DE AD BE EF");
    EXPECT_EQ(play({"> D3 2C", "< 79", "< 01 00 04 00 06 01 07 05"},
                   [&] { return ZVBL_GetSlibStatus_Ex(link, &enabled, &start, &data, &end); }),
              0);
    EXPECT_EQ(enabled, 1);
    EXPECT_EQ(end, 0x107);
}

TEST_F(I2cVectorsTest, UserSystemDataRead) {
    BYTE data[4] = {};
    EXPECT_EQ(play({"> E1 1E", "< 79", "> 1F FF F8 00 18", "< 79", "> 00 03 03", "< 79", "< A5 01 02 03 A5"},
                   [&] { return TARGET_GetUserSystemData(link, 0x1FFFF800, data, 4); }),
              0);
    EXPECT_EQ(hex(zvbl::Bytes(data, data + 4)), "A5 01 02 03");
}

// Where a byte FF is lost, the idle level stands in the place of the check byte, and fits.
TEST_F(I2cVectorsTest, UserSystemDataWithTheIdleLevelForACheckByteComeTwice) {
    const std::vector<std::string> asked = {"> E1 1E", "< 79", "> 1F FF F8 00 18", "< 79", "> 00 03 03", "< 79"};
    zvbl::Timing hasty = zvbl::timing();
    hasty.believed = {}; // else the second reading in a row is answered by the first
    zvbl::setTiming(hasty);
    const auto read = [&](const std::vector<std::string> &answers) {
        std::vector<std::string> all;
        for (const std::string &answer : answers) {
            all.insert(all.end(), asked.begin(), asked.end());
            all.push_back("< " + answer);
        }
        BYTE data[4] = {};
        const int status = play(all, [&] { return TARGET_GetUserSystemData(link, 0x1FFFF800, data, 4); });
        return std::to_string(status) + ": " + hex(zvbl::Bytes(data, data + 4));
    };
    EXPECT_EQ(read({"A5 00 5A 00 FF", "A5 00 5A 00 FF"}), "0: A5 00 5A 00");
    EXPECT_EQ(read({"A5 5A 03 03 FF", "A5 FF 5A 03 03"}), "0: A5 FF 5A 03");
    EXPECT_EQ(read({"A5 5A 02 02 FF", "A5 5A 01 01 FF", "A5 5A 01 01 FF"}), "0: A5 5A 01 01");
    EXPECT_EQ(read({"A5 5A 02 02 FF", "A5 5A 01 01 FF", "A5 5A 03 03 FF"}).substr(0, 2), "5:");
}

// One group and one reply of the full length are one transfer each.
TEST_F(I2cVectorsTest, TheLongestTransfers) {
    zvbl::Bytes data(256, 0x5A);
    const std::string bytes = hex(data);
    EXPECT_EQ(play({"> 31 CE", "< 79", "> 20 00 00 00 20", "< 79", "> FF " + bytes + " FF", "< 79"},
                   [&] { return ZVBL_DNLOAD(link, 0x20000000, data.data(), 256, 0); }),
              0);
    EXPECT_EQ(play({"> 11 EE", "< 79", "> 20 00 00 00 20", "< 79", "> FF 00", "< 79", "< " + bytes},
                   [&] { return ZVBL_UPLOAD(link, 0x20000000, data.data(), 256); }),
              0);
    zvbl::Bytes user(2048, 0x5A);
    EXPECT_EQ(play({"> E1 1E", "< 79", "> 1F FF F8 00 18", "< 79", "> 07 FF F8", "< 79", "< " + hex(user) + " 00"},
                   [&] { return TARGET_GetUserSystemData(link, 0x1FFFF800, user.data(), 2048); }),
              0);
}

TEST_F(I2cVectorsTest, AnErasureOfAChipWithoutTheExtendedFormIsNotCut) {
    Commands commands;
    BYTE version = 0, sector[] = {0x42, 0x00};
    ASSERT_EQ(play({"> 00 FF", "< 79", "< 01", "> 00 FF", "< 79", "< 01 31 43", "< 79"},
                   [&] { return ZVBL_GET(link, &version, &commands); }),
              0);
    EXPECT_EQ(play({"> 43 BC", "< 79", "> 00 42 42", "< 79"}, [&] { return ZVBL_ERASE(link, 1, sector, 2048); }), 0);
}

TEST_F(I2cVectorsTest, WhatWasLeftOutHasADefault) {
    EXPECT_EQ(play(get, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
    EXPECT_NE(trace().find("# asked for 400000 Hz, 2:1;"), std::string::npos);
    EXPECT_EQ(play(get, [&] { return ZVBL_Init_BL(link, 0x3C, 100000, 16); }), 0);
    EXPECT_NE(trace().find("# asked for 100000 Hz, 16:9;"), std::string::npos);
    EXPECT_EQ(play(get, [&] { return ZVBL_Init_BL(link, 0x3C, 100000, 7); }), 0);
    EXPECT_NE(trace().find("# asked for 100000 Hz, 2:1;"), std::string::npos);
}

TEST_F(I2cVectorsTest, AnAddressIsTakenFor08To77) {
    for (const unsigned short wrong : {0x01, 0x07, 0x78, 0x7F, 0x80, 0x13C, 0xFFFF})
        EXPECT_EQ(play({}, [&] { return ZVBL_Init_BL(link, wrong, 0, 0); }), 0x21) << wrong;
    for (const unsigned short right : {0x08, 0x77, 0x50}) {
        fake.address = right;
        EXPECT_EQ(play(get, [&] { return ZVBL_Init_BL(link, right, 0, 0); }), 0) << right;
        EXPECT_EQ(play({"> D4 2B", "< 79"}, [&] { return ZVBL_ResetMCU(link); }), 0);
    }
    EXPECT_EQ(play({}, [&] { return ZVBL_Init_BL(link, 0x80, 0, 0); }), 0x21);
    EXPECT_EQ(play({"> D4 2B", "< 79"}, [&] { return ZVBL_ResetMCU(link); }), 0); // the old one still holds
}

TEST_F(I2cVectorsTest, TheTrace) {
    EXPECT_EQ(trace(), "# open I2C\n");
    BYTE sector[] = {0x02, 0x01};
    ASSERT_EQ(play({">! ENXIO", "> 44 BB", "< 79", "> 00 00 00", "< 79", "> 01 02 03", "< 76", "< 76", "< 79"},
                   [&] { return ZVBL_ERASE(link, 1, sector, 2048); }),
              0);
    EXPECT_EQ(trace(), "> 44 BB\n# not acknowledged: No such device or address\n< 79\n> 00 00 00\n< 79\n> 01 02 03\n"
                       "# busy\n< 79\n");
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(trace(), "# closed\n");
}

} // namespace
