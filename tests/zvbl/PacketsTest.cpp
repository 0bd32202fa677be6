// How a stretch of memory becomes packets: size, padding, what is left out.

#include <numeric>

#include "tests/zvbl/LinkFixture.h"

namespace {

// A whole WRITE as its three turns; the data group is built here from its payload.
Script writeOf(const std::string &addressGroup, const zvbl::Bytes &payload) {
    zvbl::Bytes group{static_cast<std::uint8_t>(payload.size() - 1)};
    group.insert(group.end(), payload.begin(), payload.end());
    group.push_back(std::accumulate(group.begin(), group.end(), std::uint8_t{0},
                                    [](int sum, int byte) { return static_cast<std::uint8_t>(sum ^ byte); }));
    return {{"31 CE", "79"}, {addressGroup, "79"}, {group, "79"}};
}

Script operator+(Script first, const Script &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

zvbl::Bytes counting(std::size_t count, int first = 1) {
    zvbl::Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), static_cast<std::uint8_t>(first));
    return bytes;
}

zvbl::Bytes slice(const zvbl::Bytes &bytes, std::size_t from, std::size_t count) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(from);
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
}

class PacketsTest : public LinkFixture {
protected:
    int download(unsigned address, zvbl::Bytes data, int optimise, Script script) {
        return play(std::move(script), [&] {
            return ZVBL_DNLOAD(link, address, data.data(), static_cast<unsigned>(data.size()), BYTE(optimise));
        });
    }
};

TEST_F(PacketsTest, AFullPacketIs268BytesAndThreeWaits) {
    const zvbl::Bytes data = counting(256, 0);
    const Script script = writeOf("08 00 00 00 08", data);
    std::size_t bytes = 0;
    for (const Turn &turn : script)
        bytes += turn.host.size() + turn.chip.size();
    EXPECT_EQ(script.size(), 3U);
    EXPECT_EQ(bytes, 268U);
    EXPECT_EQ(download(0x08000000, data, 0, script), 0);
}

TEST_F(PacketsTest, LongerDataAreCutAtThePacketSize) {
    const zvbl::Bytes data = counting(600);
    EXPECT_EQ(download(0x08000000, data, 0,
                       writeOf("08 00 00 00 08", slice(data, 0, 256)) +
                           writeOf("08 00 01 00 09", slice(data, 256, 256)) +
                           writeOf("08 00 02 00 0A", slice(data, 512, 88))),
              0);
}

TEST_F(PacketsTest, PacketSizeIsRoundedDownToAMultipleOfFourInFlash) {
    const zvbl::Bytes data = counting(12);
    EXPECT_EQ(SetPaketSize(link, 11), 0);
    EXPECT_EQ(download(0x08000000, data, 0,
                       writeOf("08 00 00 00 08", slice(data, 0, 8)) + writeOf("08 00 00 08 00", slice(data, 8, 4))),
              0);
    EXPECT_EQ(SetPaketSize(link, 1), 0);
    EXPECT_EQ(download(0x08400000, slice(data, 0, 8), 0,
                       writeOf("08 40 00 00 48", slice(data, 0, 4)) + writeOf("08 40 00 04 4C", slice(data, 4, 4))),
              0);
    EXPECT_EQ(SetPaketSize(link, 0), 0);
    EXPECT_EQ(download(0x08000000, data, 0, writeOf("08 00 00 00 08", data)), 0);
}

TEST_F(PacketsTest, RamTakesAnyPacketSize) {
    const zvbl::Bytes data = counting(7);
    EXPECT_EQ(SetPaketSize(link, 3), 0);
    EXPECT_EQ(download(0x20000001, data, 0,
                       writeOf("20 00 00 01 21", {1, 2, 3}) + writeOf("20 00 00 04 24", {4, 5, 6}) +
                           writeOf("20 00 00 07 27", {7})),
              0);
}

TEST_F(PacketsTest, AnUnalignedStartAndEndInFlashIsFilledUp) {
    EXPECT_EQ(download(0x08000803, {1, 2, 3, 4, 5, 6}, 0,
                       writeOf("08 00 08 00 00", {0xFF, 0xFF, 0xFF, 1, 2, 3, 4, 5, 6, 0xFF, 0xFF, 0xFF})),
              0);
    EXPECT_EQ(download(0x08400002, {9}, 0, writeOf("08 40 00 00 48", {0xFF, 0xFF, 9, 0xFF})), 0);
}

TEST_F(PacketsTest, TheFirstPacketOfAnUnalignedStretchStaysWithinTheSize) {
    const zvbl::Bytes data = counting(9);
    EXPECT_EQ(SetPaketSize(link, 8), 0);
    EXPECT_EQ(download(0x08000001, data, 0,
                       writeOf("08 00 00 00 08", {0xFF, 1, 2, 3, 4, 5, 6, 7}) +
                           writeOf("08 00 00 08 00", {8, 9, 0xFF, 0xFF})),
              0);
}

TEST_F(PacketsTest, OptimisedDownloadLeavesOutWhatIsBlank) {
    zvbl::Bytes data(768, 0xFF);
    data[300] = 0;
    const Script middle = writeOf("08 00 01 00 09", slice(data, 256, 256));
    EXPECT_EQ(download(0x08000000, data, 1, middle), 0);
    EXPECT_EQ(download(0x08000000, zvbl::Bytes(512, 0xFF), 1, {}), 0);
    EXPECT_EQ(download(0x08000000, zvbl::Bytes(4, 0xFF), 0, writeOf("08 00 00 00 08", zvbl::Bytes(4, 0xFF))), 0);
}

TEST_F(PacketsTest, OptimisedVerifyLeavesOutWhatIsBlank) {
    zvbl::Bytes data(6, 0xFF);
    data[4] = 0x12;
    EXPECT_EQ(SetPaketSize(link, 4), 0);
    EXPECT_EQ(play({{"11 EE", "79"}, {"08 00 00 04 0C", "79"}, {"01 FE", "79 12 FF"}},
                   [&] { return ZVBL_VERIFY(link, 0x08000000, data.data(), 6, 1); }),
              0);
}

TEST_F(PacketsTest, UploadIsCutToo) {
    EXPECT_EQ(SetPaketSize(link, 4), 0);
    BYTE data[6] = {};
    EXPECT_EQ(play({{"11 EE", "79"},
                    {"08 00 00 02 0A", "79"},
                    {"01 FE", "79 01 02"},
                    {"11 EE", "79"},
                    {"08 00 00 04 0C", "79"},
                    {"03 FC", "79 03 04 05 06"}},
                   [&] { return ZVBL_UPLOAD(link, 0x08000002, data, 6); }),
              0);
    EXPECT_EQ(hex(zvbl::Bytes(data, data + 6)), "01 02 03 04 05 06");
}

// At 300 baud one pause to see whether the line is silent takes 55 ms.
TEST_F(PacketsTest, PacketsFollowEachOtherWithoutAPause) {
    ASSERT_EQ(SetCOMSettings(&link, 0, pty.path().c_str(), 300, 8, 2, 1.0F), 0);
    EXPECT_EQ(SetPaketSize(link, 1), 0);
    Script script;
    for (int i = 0; i < 20; ++i)
        script = script + writeOf("20 00 00 " + hex(counting(1, i)) + " " + hex(counting(1, 0x20 ^ i)), {1});
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(download(0x20000000, zvbl::Bytes(20, 1), 0, script), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(800));
}

TEST_F(PacketsTest, NothingToDoSendsNothing) {
    BYTE data = 0;
    EXPECT_EQ(play({}, [&] { return ZVBL_DNLOAD(link, 0x08000000, &data, 0, 0); }), 0);
    EXPECT_EQ(play({}, [&] { return ZVBL_VERIFY(link, 0x08000000, &data, 0, 0); }), 0);
    EXPECT_EQ(play({}, [&] { return ZVBL_UPLOAD(link, 0x08000000, &data, 0); }), 0);
}

} // namespace
