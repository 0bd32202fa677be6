#include "sim/links/usb/AcmDevice.h"

#include <gtest/gtest.h>

#include "tests/sim/Rig.h"

namespace sim {
namespace {

constexpr std::uint8_t data = 2;

class AcmDeviceTest : public ::testing::Test {
protected:
    void SetUp() override {
        control("00 09 01 00 00 00 00 00");
        ASSERT_EQ(control("21 20 00 00 00 00 07 00", "00 C2 01 00 00 02 08"), "done"); // 115200 8E1
    }

    std::string control(const std::string &setup, const std::string &out = "-") {
        const UsbAnswer answer = device.control(parseSetup(parseBytes(setup).data()), parseBytes(out), rig.now);
        return answer.kind != UsbAnswer::Kind::done ? "stall" : answer.data.empty() ? "done" : showBytes(answer.data);
    }
    void send(const std::string &bytes) {
        EXPECT_EQ(device.out(data, parseBytes(bytes), rig.now).kind, UsbAnswer::Kind::done);
    }
    std::string fetch(std::size_t length = 64) { return showBytes(device.in(data, length, rig.now).data); }

    Rig rig{"ZV32F403A_1024K", {"tx-hangup@5:30"}};
    AcmDevice device{{}, rig.bootloader, rig.faults, rig.log, false, rig.now};
};

TEST_F(AcmDeviceTest, itsDescriptorsAreThoseOfAnAdapter) {
    EXPECT_EQ(control("80 06 00 01 00 00 12 00"), "12 01 00 02 02 00 00 40 09 12 02 00 00 01 00 01 02 01");
    EXPECT_EQ(control("80 06 00 02 00 00 FF 00"), "09 02 43 00 02 01 00 80 32 "
                                                  "09 04 00 00 01 02 02 01 00 "
                                                  "05 24 00 10 01 05 24 01 00 01 04 24 02 06 05 24 06 00 01 "
                                                  "07 05 81 03 08 00 10 "
                                                  "09 04 01 00 02 0A 00 00 00 "
                                                  "07 05 02 02 40 00 00 07 05 82 02 40 00 00");
}

TEST_F(AcmDeviceTest, bytesGoToTheChipAndBack) {
    send("7F");
    EXPECT_EQ(fetch(), "79");
    EXPECT_EQ(device.in(data, 64, rig.now).kind, UsbAnswer::Kind::wait);
}

TEST_F(AcmDeviceTest, theHostHasItsRoom) {
    send("7F 7F 7F");
    EXPECT_EQ(fetch(2), "79 1F");
    EXPECT_EQ(fetch(2), "1F");
}

TEST_F(AcmDeviceTest, nobodyTalksInTheOtherFormat) {
    control("21 20 00 00 00 00 07 00", "00 C2 01 00 00 00 08");
    send("7F");
    EXPECT_EQ(fetch(), "");
    EXPECT_NE(rig.told.str().find("refused: 1 bytes, not with 8 data bits and even parity"), std::string::npos);
    EXPECT_EQ(control("A1 21 00 00 00 00 07 00"), "00 C2 01 00 00 00 08");
}

TEST_F(AcmDeviceTest, theLineCodingTellsThePace) {
    AcmDevice paced({}, rig.bootloader, rig.faults, rig.log, true, rig.now);
    paced.control(parseSetup(parseBytes("00 09 01 00 00 00 00 00").data()), {}, rig.now);
    paced.control(parseSetup(parseBytes("21 20 00 00 00 00 07 00").data()), parseBytes("F8 2A 00 00 00 02 08"),
                  rig.now);
    paced.out(data, {0x7F}, rig.now); // at 11000 baud
    EXPECT_EQ(paced.in(data, 64, rig.now).kind, UsbAnswer::Kind::wait);
    EXPECT_EQ(paced.nextEvent(rig.now), rig.now + 2 * millisecond); // there and back
    rig.now += 2 * millisecond;
    EXPECT_EQ(paced.nextEvent(rig.now), std::nullopt);
    EXPECT_EQ(showBytes(paced.in(data, 64, rig.now).data), "79");
}

TEST_F(AcmDeviceTest, theControlLinesReachTheBoard) {
    Wiring wiring;
    std::string error;
    ASSERT_TRUE(parseWiring("reset=dtr:high,boot=rts:low", wiring, error));
    AcmDevice wired(wiring, rig.bootloader, rig.faults, rig.log, false, rig.now);
    const auto lines = [&](const std::string &setup) {
        rig.now += 20 * millisecond;
        EXPECT_EQ(wired.control(parseSetup(parseBytes(setup).data()), {}, rig.now).kind, UsbAnswer::Kind::done);
    };
    const auto opens = [&] {
        rig.now += 20 * millisecond;
        wired.out(data, {0x7F}, rig.now);
        return showBytes(wired.in(data, 64, rig.now).data);
    };
    wired.control(parseSetup(parseBytes("00 09 01 00 00 00 00 00").data()), {}, rig.now);
    wired.control(parseSetup(parseBytes("21 20 00 00 00 00 07 00").data()), parseBytes("00 C2 01 00 00 02 08"),
                  rig.now);
    lines("21 22 03 00 00 00 00 00"); // both high: held
    EXPECT_EQ(opens(), "");
    lines("21 22 02 00 00 00 00 00"); // released with RTS high
    EXPECT_EQ(opens(), "");
    lines("21 22 01 00 00 00 00 00");
    lines("21 22 00 00 00 00 00 00"); // released with RTS low
    EXPECT_EQ(opens(), "79");
}

TEST_F(AcmDeviceTest, whatItDoesNotKnowIsStalled) {
    EXPECT_EQ(control("21 20 00 00 00 00 06 00", "00 C2 01 00 00 02"), "stall");
    EXPECT_EQ(control("A1 FE 00 00 00 00 01 00"), "stall");
    EXPECT_EQ(control("21 22 03 00 00 00 00 00"), "done"); // control lines
    EXPECT_EQ(device.out(3, {0}, rig.now).kind, UsbAnswer::Kind::stall);
}

TEST_F(AcmDeviceTest, withoutConfigurationThereIsNoData) {
    device.busReset(rig.now);
    EXPECT_EQ(device.out(data, {0x7F}, rig.now).kind, UsbAnswer::Kind::stall);
    EXPECT_EQ(device.in(data, 64, rig.now).kind, UsbAnswer::Kind::stall);
}

TEST_F(AcmDeviceTest, aHangupUnplugsAfterTheBytesThatWereUnderWay) {
    send("7F 7F 7F 7F 7F");
    EXPECT_TRUE(device.presence(rig.now).attached);
    EXPECT_EQ(fetch(), "79 1F 1F 1F");
    EXPECT_FALSE(device.presence(rig.now).attached);
    EXPECT_FALSE(device.presence(rig.now).forGood);
    EXPECT_EQ(device.nextEvent(rig.now), rig.now + 30 * millisecond);
    rig.now += 30 * millisecond;
    EXPECT_TRUE(device.presence(rig.now).attached);
    EXPECT_EQ(device.presence(rig.now).attachments, 2U);
    rig.now += 20 * millisecond;
    SetUp();
    send("7F");
    EXPECT_EQ(fetch(), "79"); // a chip that has lost its power
}

TEST_F(AcmDeviceTest, theResetButtonTakesUnreadAnswersAway) {
    send("7F");
    device.pressReset(rig.now);
    EXPECT_EQ(fetch(), "");
    rig.now += 20 * millisecond;
    send("7F");
    EXPECT_EQ(fetch(), "79");
}

// The lengths that the descriptors tell are their own.
TEST_F(AcmDeviceTest, theConfigurationIsWhole) {
    const Bytes &all = device.descriptors().configuration;
    EXPECT_EQ(all.size(), all[2] + 256U * all[3]);
    std::size_t at = 0;
    while (at < all.size() && all[at] != 0)
        at += all[at];
    EXPECT_EQ(at, all.size());
}

} // namespace
} // namespace sim
