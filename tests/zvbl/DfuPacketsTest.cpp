// Packets on USB DFU: wTransferSize, the address pointer, and what a block costs.

#include <cstring>
#include <numeric>

#include "tests/zvbl/DfuFixture.h"

using namespace dfu;

namespace {

// Data that can be told apart: 0, 1, 2, ...
zvbl::Bytes counting(std::size_t count, std::uint8_t first = 0) {
    zvbl::Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
}

zvbl::Bytes part(const zvbl::Bytes &bytes, std::size_t from, std::size_t count) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
            bytes.begin() + static_cast<std::ptrdiff_t>(from + count)};
}

template <unsigned size>
class DfuSize : public DfuFixture {
protected:
    UsbDeviceFacts facts() const override {
        UsbDeviceFacts facts;
        facts.transferSize = size;
        return facts;
    }
    int write(unsigned address, zvbl::Bytes data, bool optimise = false) {
        return ZVBL_DNLOAD(link, address, data.data(), static_cast<unsigned>(data.size()), optimise);
    }
    int read(unsigned address, zvbl::Bytes &data) {
        return ZVBL_UPLOAD(link, address, data.data(), static_cast<unsigned>(data.size()));
    }
};
using DfuSize64Test = DfuSize<64>;
using DfuSize2048Test = DfuSize<2048>;
using DfuSize8192Test = DfuSize<8192>;
using DfuPacketsTest = DfuSize<4096>;

TEST_F(DfuSize64Test, ADownloadCostsOneDnloadAndTwoGetstatusABlock) {
    const zvbl::Bytes data = counting(160);
    const UsbScript script = inStep + done("21 01 00 00 00 00 05 00 21 00 00 00 08") +
                             done("21 01 02 00 00 00 40 00 " + hex(part(data, 0, 64))) +
                             done("21 01 03 00 00 00 40 00 " + hex(part(data, 64, 64))) +
                             done("21 01 04 00 00 00 20 00 " + hex(part(data, 128, 32)));
    EXPECT_EQ(play(script, [&] { return write(0x08000000, data); }), 0);
}

TEST_F(DfuSize64Test, AnUploadCostsOneRequestABlock) {
    const zvbl::Bytes data = counting(130);
    const UsbScript script = inStep + done("21 01 00 00 00 00 05 00 21 00 00 00 08") +
                             UsbScript{{abortRequest, ""},
                                       {"A1 02 02 00 00 00 40 00", hex(part(data, 0, 64))},
                                       {"A1 02 03 00 00 00 40 00", hex(part(data, 64, 64))},
                                       {"A1 02 04 00 00 00 02 00", hex(part(data, 128, 2))}};
    zvbl::Bytes back(130);
    EXPECT_EQ(play(script, [&] { return read(0x08000000, back); }), 0);
    EXPECT_EQ(back, data);
}

// In RAM too, where packets need no alignment; and whatever packet size is wished.
TEST_F(DfuSize64Test, ThePointerIsGoodForBlocksInAnyOrderAfterIt) {
    EXPECT_EQ(SetPaketSize(link, 16), 0);
    const zvbl::Bytes data = counting(64);
    const std::string whole = " 00 00 40 00 " + hex(data);
    EXPECT_EQ(play(inStep + done("21 01 00 00 00 00 05 00 21 01 00 00 20") + done("21 01 02 00" + whole),
                   [&] { return write(0x20000001, data); }),
              0);
    EXPECT_EQ(play(done("21 01 05 00" + whole), [&] { return write(0x200000C1, data); }), 0);
    EXPECT_EQ(play(done("21 01 03 00" + whole), [&] { return write(0x20000041, data); }), 0);
    zvbl::Bytes back(64);
    EXPECT_EQ(
        play({{abortRequest, ""}, {"A1 02 03 00 00 00 40 00", hex(data)}}, [&] { return read(0x20000041, back); }), 0);
    // And back again: what was uploaded has to be ended first.
    EXPECT_EQ(
        play(UsbScript{{abortRequest, ""}} + done("21 01 02 00" + whole), [&] { return write(0x20000001, data); }), 0);
    // Before it, and beside its blocks.
    EXPECT_EQ(play(done("21 01 00 00 00 00 05 00 21 00 00 00 20") + done("21 01 02 00" + whole),
                   [&] { return write(0x20000000, data); }),
              0);
    EXPECT_EQ(play(done("21 01 00 00 00 00 05 00 21 44 00 00 20") + done("21 01 02 00" + whole),
                   [&] { return write(0x20000044, data); }),
              0);
}

TEST_F(DfuSize64Test, BlankPacketsAreLeftOutAndTheirNumbersToo) {
    zvbl::Bytes data(192, 0xFF);
    data[0] = 1;
    data[191] = 2;
    const UsbScript script = inStep + done("21 01 00 00 00 00 05 00 21 00 00 00 08") +
                             done("21 01 02 00 00 00 40 00 " + hex(part(data, 0, 64))) +
                             done("21 01 04 00 00 00 40 00 " + hex(part(data, 128, 64)));
    EXPECT_EQ(play(script, [&] { return write(0x08000000, data, true); }), 0);
}

TEST_F(DfuSize64Test, ABlockNumberHas16Bits) {
    const zvbl::Bytes data = counting(64);
    const std::string whole = " 00 00 40 00 " + hex(data);
    ASSERT_EQ(play(inStep + done("21 01 00 00 00 00 05 00 21 00 00 00 20") + done("21 01 02 00" + whole),
                   [&] { return write(0x20000000, data); }),
              0);
    // 0x20000000 + (0xFFFF - 2) * 64
    EXPECT_EQ(play(done("21 01 FF FF 00 00 40 00 " + hex(data)), [&] { return write(0x203FFF40, data); }), 0);
    EXPECT_EQ(play(done("21 01 00 00 00 00 05 00 21 80 FF 3F 20") + done("21 01 02 00" + whole),
                   [&] { return write(0x203FFF80, data); }),
              0);
}

TEST_F(DfuSize64Test, ACommandThatIsLongerIsNotSent) {
    zvbl::Bytes data = counting(55); // 1 + 5 + 2 + 55 + 1
    EXPECT_EQ(play(inStep + done("21 01 00 00 00 00 40 00 E2 1F FF F8 00 18 00 36 " + hex(data) + " 01"),
                   [&] { return TARGET_SetUserSystemData(link, 0x1FFFF800, data.data(), 55); }),
              0);
    data = counting(56);
    EXPECT_EQ(play(inStep, [&] { return TARGET_SetUserSystemData(link, 0x1FFFF800, data.data(), 56); }), 0x21);
}

TEST_F(DfuSize64Test, AReplyOfAWholeBlockIsEndedWithAbort) {
    zvbl::Bytes found(63);
    const zvbl::Bytes data = counting(63); // their XOR is 3F
    const UsbScript script =
        inStep + done("21 01 00 00 00 00 09 00 E1 1F FF F8 00 18 00 3E 3E") +
        UsbScript{{abortRequest, ""}, {"A1 02 01 00 00 00 40 00", hex(data) + " 3F"}, {abortRequest, ""}} +
        done("21 01 00 00 00 00 03 00 B7 01 FE");
    EXPECT_EQ(play(script,
                   [&] {
                       EXPECT_EQ(TARGET_GetUserSystemData(link, 0x1FFFF800, found.data(), 63), 0);
                       return ZVBL_SPIMREMAP(link, 1);
                   }),
              0);
    EXPECT_EQ(found, data);
}

TEST_F(DfuSize2048Test, ElementsOfOneSectorEachFollowOneAnother) {
    const zvbl::Bytes data(2048, 0x5A);
    const std::string whole = " 00 00 00 08 " + hex(data);
    EXPECT_EQ(play(inStep + done("21 01 00 00 00 00 05 00 21 00 00 00 08") + done("21 01 02 00" + whole),
                   [&] { return write(0x08000000, data); }),
              0);
    EXPECT_EQ(play(done("21 01 03 00" + whole), [&] { return write(0x08000800, data); }), 0);
    EXPECT_EQ(play(done("21 01 04 00" + whole), [&] { return write(0x08001000, data); }), 0);
}

// No control transfer of this system is longer than 4096 bytes.
TEST_F(DfuSize8192Test, PacketsOfATransferSizeThatTheSystemCannotCarry) {
    const zvbl::Bytes data(8192, 0x5A);
    const std::string half = " 00 00 00 10 " + hex(part(data, 0, 4096));
    EXPECT_EQ(play(inStep + done("21 01 00 00 00 00 05 00 21 00 00 00 08") + done("21 01 02 00" + half) +
                       done("21 01 00 00 00 00 05 00 21 00 10 00 08") + done("21 01 02 00" + half),
                   [&] { return write(0x08000000, data); }),
              0);
}

// After a refusal nothing is known of the pointer, and a reset sets it back.
TEST_F(DfuPacketsTest, ThePointerIsSetAnewAfterAFailureAndAReset) {
    const zvbl::Bytes data = counting(4);
    const UsbScript point = done("21 01 00 00 00 00 05 00 21 00 00 00 20");
    const UsbScript packet = done("21 01 02 00 00 00 04 00 00 01 02 03");
    const auto run = [&] { return write(0x20000000, data); };
    EXPECT_EQ(play(inStep + point + packet, run), 0);
    EXPECT_EQ(play(packet, run), 0);
    EXPECT_EQ(play(UsbScript{{"21 01 00 00 00 00 04 00 44 FF FD 02", ""}} + failed("0B"),
                   [&] { return ZVBL_ERASE(link, 0xFFFD, nullptr, 0); }),
              0x13);
    EXPECT_EQ(play(point + packet, run), 0);
    EXPECT_EQ(play(done("21 01 00 00 00 00 01 00 D4"), [&] { return ZVBL_ResetMCU(link); }), 0);
    EXPECT_EQ(play(inStep + point + packet, run), 0);
    EXPECT_EQ(play(point + UsbScript{{"21 01 02 00 00 00 00 00", ""}, {getStatus, isManifest}},
                   [&] { return ZVBL_GO(link, 0x20000000); }),
              0);
    EXPECT_EQ(play(inStep + point + packet, run), 0);
}

} // namespace
