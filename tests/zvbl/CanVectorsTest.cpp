// The frames of every command on CAN, typed from docs/wire-protocol.md.

#include <cstring>
#include <functional>
#include <numeric>

#include "tests/zvbl/Calls.h"
#include "tests/zvbl/CanFixture.h"
#include "tests/zvbl/Pty.h"

namespace {

class CanVectorsTest : public CanFixture {};

struct Vector {
    const char *name;
    CanScript script;
    std::function<int(HANDLE)> call;
};

const Vector vectors[] = {
    {"init of a chip that was reset", {{"07F", "17F 79"}}, [](HANDLE h) { return ZVBL_Init_BL(h, 0, 2, 0); }},
    {"init of a chip in its command state", {{"07F", "17F 1F"}}, [](HANDLE h) { return ZVBL_Init_BL(h, 0, 2, 0); }},
    {"tool exchange", {{"05A", "15A 79"}, {"05A 00 02 00 01 03", "15A 79"}}, calls::exchangeToolVersion},
    {"go", {{"021", "121 79"}, {"021 08 00 00 00 08", "121 79"}}, calls::runFlash},
    {"reset", {{"0D4", "1D4 79"}}, calls::reset},
    {"erase of a sector", {{"044", "144 79"}, {"044 00 00 01 02 03", "144 79"}}, calls::eraseSector258},
    {"erase of bank 1", {{"044", "144 79"}, {"044 FF FE 01", "144 79"}}, calls::eraseBank1},
    {"erase of a block",
     {{"044", "144 79"}, {"044 FF FB 04", "144 79"}, {"044 08 03 00 00 0B", "144 79"}},
     calls::eraseBlock},
    {"access protection on", {{"082", "182 79, 182 79"}}, calls::protectAccess},
    {"access protection at the high level",
     {{"084", "184 79"}, {"084 02 FD", "184 79, 184 79"}},
     calls::protectAccessAtLevel2},
    {"access protection off", {{"092", "192 79, 192 79"}}, calls::unprotectAccess},
    {"sector protection on", {{"063", "163 79"}, {"063 02 00 03 1F 1E", "163 79"}}, calls::protectSectors0And3And31},
    {"sector protection off", {{"073", "173 79, 173 79"}}, calls::unprotectSectors},
    {"sLib on, more than one frame",
     {{"0D1", "1D1 79"}, {"0D1 12 34 56 78 00 04 FF FF,0D1 00 07 0B", "1D1 79"}},
     calls::enableSlib},
    {"sLib off", {{"0D2", "1D2 79"}, {"0D2 12 34 56 78 08", "1D2 79"}}, calls::disableSlib},
    {"remap on", {{"0B7", "1B7 79"}, {"0B7 01 FE", "1B7 79"}}, calls::remapTo1},
    {"Bank 3 on", {{"0B3", "1B3 79"}, {"0B3 91 00 40 00 00 00 01 00,0B3 00 D0", "1B3 79"}}, calls::enableBank3},
    {"user system data set",
     {{"0E2", "1E2 79"}, {"0E2 1F FF F8 00 18", "1E2 79"}, {"0E2 00 02 A5 FF 01 59", "1E2 79, 1E2 79"}},
     calls::writeUserData},
    {"download to RAM",
     {{"031", "131 79"}, {"031 20 00 10 00 30", "131 79"}, {"031 02 AA BB CC DF", "131 79"}},
     calls::writeRam},
    {"download of two frames",
     {{"031", "131 79"},
      {"031 08 00 00 00 08", "131 79"},
      {"031 0B AA BB CC DD 01 02 03,031 04 05 06 07 08 03", "131 79"}},
     [](HANDLE h) {
         BYTE data[] = {0xAA, 0xBB, 0xCC, 0xDD, 1, 2, 3, 4, 5, 6, 7, 8};
         return ZVBL_DNLOAD(h, 0x08000000, data, 12, 0);
     }},
    {"verify",
     {{"011", "111 79"}, {"011 08 00 00 04 0C", "111 79"}, {"011 02 FD", "111 79, 111 01 02 03 00"}},
     calls::verifyThree},
};

TEST_F(CanVectorsTest, CommandsWithoutAResult) {
    for (const Vector &vector : vectors) {
        SCOPED_TRACE(vector.name);
        EXPECT_EQ(play(vector.script, [&] { return vector.call(link); }), 0);
    }
}

TEST_F(CanVectorsTest, GetFillsTheRecord) {
    Commands commands;
    std::memset(&commands, 0x55, sizeof commands);
    BYTE scratch = 0;
    const CanScript script = {{"000", "100 79, 100 0C 31 00 01 02 11 21 31, 100 44 63 73 82 92 03 78, 100 79"}};
    EXPECT_EQ(play(script, [&] { return ZVBL_GET(link, &scratch, &commands); }), 0);
    EXPECT_EQ(scratch, 0x31);
    const BOOL expected[24] = {1, 1, 1, 1, 1, 1, 1, 0, 1, 1, 0, 1, 1, 0, 1};
    EXPECT_EQ(std::memcmp(&commands, expected, sizeof commands), 0);
}

// 16 bytes with their check byte: the frame after them is the ACK, not a part that came twice.
TEST_F(CanVectorsTest, AReplyOfFullFrames) {
    Commands commands;
    BYTE scratch = 0;
    const CanScript script = {{"000", "100 79, 100 0D 31 00 01 02 11 21 31, 100 44 63 73 82 92 03 5A 23, 100 79"}};
    EXPECT_EQ(play(script, [&] { return ZVBL_GET(link, &scratch, &commands); }), 0);
    EXPECT_EQ(scratch, 0x31);
    EXPECT_EQ(commands.ZV32_ISP_CMD, 1);
}

TEST_F(CanVectorsTest, VersionAndId) {
    BYTE version = 0, reserve = 0, bid = 0, length = 0, id[5] = {};
    EXPECT_EQ(play({{"001", "101 79, 101 21 FF 12 CC, 101 79"}},
                   [&] { return ZVBL_GET_VER_ROPS(link, &version, &reserve, &bid); }),
              0);
    EXPECT_EQ(hex(zvbl::Bytes{version, reserve, bid}), "21 FF 12");
    const CanScript getId = {{"002", "102 79, 102 04 03 47 70 05 07 32, 102 79"}};
    EXPECT_EQ(play(getId, [&] { return ZVBL_GET_ID(link, &length, nullptr); }), 0);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(play(getId, [&] { return ZVBL_GET_ID(link, &length, id); }), 0);
    EXPECT_EQ(hex(zvbl::Bytes(id, id + 5)), "03 47 70 05 07");
}

TEST_F(CanVectorsTest, IdOfTwoBytes) {
    BYTE length = 0, id[2] = {};
    EXPECT_EQ(play({{"002", "102 79, 102 01 02 42 41, 102 79"}}, [&] { return ZVBL_GET_ID(link, &length, id); }), 0);
    EXPECT_EQ(length, 2);
    EXPECT_EQ(hex(zvbl::Bytes(id, id + 2)), "02 42");
}

TEST_F(CanVectorsTest, UploadOfOneByteAndOfTwelve) {
    BYTE data[12] = {};
    EXPECT_EQ(play({{"011", "111 79"}, {"011 20 00 00 01 21", "111 79"}, {"011 00 FF", "111 79, 111 5A 5A"}},
                   [&] { return ZVBL_UPLOAD(link, 0x20000001, data, 1); }),
              0);
    EXPECT_EQ(data[0], 0x5A);
    EXPECT_EQ(play({{"011", "111 79"},
                    {"011 1F FF F7 E8 FF", "111 79"},
                    {"011 0B F4", "111 79, 111 01 02 03 04 05 06 07 08, 111 09 0A 0B 0C 0C"}},
                   [&] { return ZVBL_UPLOAD(link, 0x1FFFF7E8, data, 12); }),
              0);
    EXPECT_EQ(hex(zvbl::Bytes(data, data + 12)), "01 02 03 04 05 06 07 08 09 0A 0B 0C");
}

// A reply of full frames alone: the check byte is the last of the second one.
TEST_F(CanVectorsTest, UploadThatEndsWithItsFrame) {
    BYTE data[15] = {};
    const CanScript script = {{"011", "111 79"},
                              {"011 20 00 00 00 20", "111 79"},
                              {"011 0E F1", "111 79, 111 00 01 02 03 04 05 06 07, 111 08 09 0A 0B 0C 0D 0E 0F"}};
    EXPECT_EQ(play(script, [&] { return ZVBL_UPLOAD(link, 0x20000000, data, 15); }), 0);
    EXPECT_EQ(hex(zvbl::Bytes(data, data + 15)), "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E");
}

std::string fullFrames(const std::string &id, zvbl::Bytes bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 8) {
        const std::size_t size = std::min<std::size_t>(8, bytes.size() - i);
        const auto from = bytes.begin() + static_cast<std::ptrdiff_t>(i);
        text += (i ? "," : "") + id + " " + hex(zvbl::Bytes(from, from + static_cast<std::ptrdiff_t>(size)));
    }
    return text;
}

TEST_F(CanVectorsTest, AFullPacketIsThirtyThreeFrames) {
    zvbl::Bytes data(256);
    std::iota(data.begin(), data.end(), std::uint8_t{0});
    zvbl::Bytes group = data, reply = data;
    group.insert(group.begin(), 0xFF);
    group.push_back(0xFF); // the sum of 0 to 255 is 0
    reply.push_back(0x00);
    EXPECT_EQ(play({{"031", "131 79"}, {"031 08 00 00 00 08", "131 79"}, {fullFrames("031", group), "131 79"}},
                   [&] { return ZVBL_DNLOAD(link, 0x08000000, data.data(), 256, 0); }),
              0);
    zvbl::Bytes read(256, 0xEE);
    const CanScript script = {
        {"011", "111 79"}, {"011 08 00 00 00 08", "111 79"}, {"011 FF 00", "111 79," + fullFrames("111", reply)}};
    EXPECT_EQ(play(script, [&] { return ZVBL_UPLOAD(link, 0x08000000, read.data(), 256); }), 0);
    EXPECT_EQ(read, data);
}

TEST_F(CanVectorsTest, FlashSizeIsLowByteFirst) {
    int kilobytes = 0;
    EXPECT_EQ(play({{"011", "111 79"}, {"011 1F FF F7 E0 F7", "111 79"}, {"011 01 FE", "111 79, 111 00 04 04"}},
                   [&] { return TARGET_GetFlashSize(link, 0x1FFFF7E0, &kilobytes); }),
              0);
    EXPECT_EQ(kilobytes, 1024);
}

// Replies with a check byte of their own get no second one.
TEST_F(CanVectorsTest, FirmwareCrcAndSlibStatus) {
    BYTE crc[4] = {}, enabled = 9;
    EXPECT_EQ(
        play({{"0AC", "1AC 79"}, {"0AC 08 00 08 00 00", "1AC 79"}, {"0AC 01 02 03", "1AC 79, 1AC DE AD BE EF 22"}},
             [&] { return ZVBL_GetFirmwareCRC(link, 0x08000800, 0x102, crc); }),
        0);
    EXPECT_EQ(hex(zvbl::Bytes(crc, crc + 4)), "DE AD BE EF");
    unsigned short start = 0, data = 0, end = 0;
    EXPECT_EQ(play({{"0D3", "1D3 79, 1D3 01 00 04 00 06 01 07 05"}},
                   [&] { return ZVBL_GetSlibStatus_Ex(link, &enabled, &start, &data, &end); }),
              0);
    EXPECT_EQ(enabled, 1);
    EXPECT_EQ(start, 4);
    EXPECT_EQ(data, 6);
    EXPECT_EQ(end, 0x107);
}

TEST_F(CanVectorsTest, UserSystemDataRead) {
    BYTE data[16] = {};
    const CanScript script = {
        {"0E1", "1E1 79"},
        {"0E1 1F FF F8 00 18", "1E1 79"},
        {"0E1 00 0F 0F", "1E1 79, 1E1 A5 01 02 03 04 05 06 07, 1E1 08 09 0A 0B 0C 0D 0E 0F, 1E1 A5"}};
    EXPECT_EQ(play(script, [&] { return TARGET_GetUserSystemData(link, 0x1FFFF800, data, 16); }), 0);
    EXPECT_EQ(data[0], 0xA5);
    EXPECT_EQ(data[15], 0x0F);
}

TEST_F(CanVectorsTest, EraseOnAChipWithoutTheExtendedForm) {
    Commands commands;
    BYTE scratch = 0;
    ASSERT_EQ(play({{"000", "100 79, 100 0B 31 00 01 02 11 21 31, 100 43 63 73 82 92 7B, 100 79"}},
                   [&] { return ZVBL_GET(link, &scratch, &commands); }),
              0);
    BYTE sector[] = {0x42, 0x00};
    EXPECT_EQ(play({{"043", "143 79"}, {"043 00 42 42", "143 79"}}, [&] { return ZVBL_ERASE(link, 1, sector, 2048); }),
              0);
    EXPECT_EQ(play({{"043", "143 79"}, {"043 FF 00", "143 79"}}, [&] { return ZVBL_ERASE(link, 0xFFFE, nullptr, 0); }),
              0);
}

// Frames of other chips' numbers, of other nodes and of other formats don't get in.
TEST_F(CanVectorsTest, WhatElseIsOnTheBusIsNotHeard) {
    const CanScript script = {{"0D4", "231 79, 0D4 79, 1D3 79, 800001D4 79, 400001D4, 1D4 79"}};
    EXPECT_EQ(play(script, [&] { return ZVBL_ResetMCU(link); }), 0);
    EXPECT_EQ(trace(), "# open, a bus without a bit rate\n> 0D4\nx 1D3 79\n< 1D4 79\n");
}

TEST_F(CanVectorsTest, TheTraceCanBeWithoutDataOfPackets) {
    setenv("ZVBL_TRACE_DATA", "no", 1);
    ASSERT_EQ(Interface_Open(link), 0);
    BYTE data[] = {0xAA, 0xBB, 0xCC, 0xDD, 1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(play({{"031", "131 79"},
                    {"031 08 00 00 00 08", "131 79"},
                    {"031 0B AA BB CC DD 01 02 03,031 04 05 06 07 08 03", "131 79"}},
                   [&] { return ZVBL_DNLOAD(link, 0x08000000, data, 12, 0); }),
              0);
    EXPECT_EQ(play({{"011", "111 79"}, {"011 08 00 00 04 0C", "111 79"}, {"011 02 FD", "111 79, 111 01 02 03 00"}},
                   [&] { return ZVBL_UPLOAD(link, 0x08000004, data, 3); }),
              0);
    unsetenv("ZVBL_TRACE_DATA");
    EXPECT_TRUE(traced("> 031\n< 131 79\n> 031 08 00 00 00 08\n< 131 79\n> 031 8 bytes\n> 031 6 bytes\n< 131 79\n"))
        << trace();
    EXPECT_TRUE(traced("> 011\n< 111 79\n> 011 08 00 00 04 0C\n< 111 79\n> 011 02 FD\n< 111 79\n< 111 4 bytes\n"));
}

} // namespace
