#include "sim/links/usb/UsbIp.h"

#include <gtest/gtest.h>

#include "tests/sim/Rig.h"

namespace sim {
namespace {

// A device that does as it is told, and writes down what it is asked.
class Scripted : public UsbDevice {
public:
    const UsbDescriptors &descriptors() const override { return m_none; }

    UsbAnswer control(const UsbSetup &setup, const Bytes &out, Nanoseconds) override {
        asked.push_back("control " + std::to_string(setup.request) + " value " + std::to_string(setup.value) +
                        " index " + std::to_string(setup.index) + " length " + std::to_string(setup.length) + ": " +
                        showBytes(out));
        return next;
    }
    UsbAnswer out(std::uint8_t endpoint, const Bytes &data, Nanoseconds now) override {
        asked.push_back("out " + std::to_string(endpoint) + ": " + showBytes(data));
        return UsbAnswer::done(now);
    }
    UsbAnswer in(std::uint8_t, std::size_t, Nanoseconds now) override {
        return toFetch.empty() ? UsbAnswer::wait() : UsbAnswer::done(now, std::exchange(toFetch, {}));
    }
    void delivered(Nanoseconds at) override { deliveredAt = at; }
    UsbPresence presence(Nanoseconds now) override { return {now < goneAt, 1, false}; }
    void pressReset(Nanoseconds) override {}
    void losePower(Nanoseconds) override {}

    UsbAnswer next;
    Bytes toFetch;
    std::vector<std::string> asked;
    Nanoseconds deliveredAt = 0;
    Nanoseconds goneAt = 1000 * second;

private:
    UsbDescriptors m_none;
};

class UsbIpTest : public ::testing::Test {
protected:
    bool send(const std::string &text) {
        const Bytes bytes = parseBytes(text);
        return usbIp.receive(bytes.data(), bytes.size(), now);
    }
    std::string due() { return showBytes(usbIp.takeDue(now)); }

    Scripted device;
    UsbIp usbIp{device};
    Nanoseconds now = second;
};

// SUBMIT and RET_SUBMIT, 48 bytes each: command, number, device, direction, endpoint; flags or status, length,
// start frame, packets, interval or errors; setup or nothing.
const std::string getDescriptor = "00 00 00 01 00 00 00 0D 00 01 00 02 00 00 00 01 00 00 00 00 00 00 02 00 00 00 00 12 "
                                  "00 00 00 00 FF FF FF FF 00 00 00 00 80 06 00 01 00 00 12 00";
const std::string fetch2 = "00 00 00 01 00 00 00 21 00 01 00 02 00 00 00 01 00 00 00 02 00 00 02 00 00 00 00 40 "
                           "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00";
const std::string noDataAnswer = "00 00 00 03 00 00 00 0E 00 00 00 00 00 00 00 00 00 00 00 00 ";
const std::string twentyZeros = " 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00";

TEST_F(UsbIpTest, aControlTransferBringsData) {
    device.next = UsbAnswer::done(now, {0x12, 0x01, 0x00});
    ASSERT_TRUE(send(getDescriptor));
    EXPECT_EQ(device.asked.at(0), "control 6 value 256 index 0 length 18: ");
    EXPECT_EQ(due(), "00 00 00 03 00 00 00 0D 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 03" +
                         twentyZeros + " 12 01 00");
}

TEST_F(UsbIpTest, aControlTransferTakesDataAndTellsHowMuch) {
    device.next = UsbAnswer::done(now);
    ASSERT_TRUE(send("00 00 00 01 00 00 00 0E 00 01 00 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 03 "
                     "00 00 00 00 FF FF FF FF 00 00 00 00 21 01 02 00 01 00 03 00 AA BB CC"));
    EXPECT_EQ(device.asked.at(0), "control 1 value 2 index 1 length 3: AA BB CC");
    EXPECT_EQ(due(), noDataAnswer + "00 00 00 00 00 00 00 03" + twentyZeros);
}

TEST_F(UsbIpTest, messagesComeInAnyPieces) {
    device.next = UsbAnswer::done(now, {0x55});
    const Bytes bytes = parseBytes(getDescriptor + " " + getDescriptor);
    for (const std::uint8_t byte : bytes)
        ASSERT_TRUE(usbIp.receive(&byte, 1, now));
    EXPECT_EQ(device.asked.size(), 2U);
    EXPECT_EQ(usbIp.takeDue(now).size(), 2U * 49);
}

TEST_F(UsbIpTest, aStallIsBrokenPipe) {
    device.next = UsbAnswer::stall(now);
    ASSERT_TRUE(send(getDescriptor));
    EXPECT_EQ(due(),
              "00 00 00 03 00 00 00 0D 00 00 00 00 00 00 00 00 00 00 00 00 FF FF FF E0 00 00 00 00" + twentyZeros);
}

TEST_F(UsbIpTest, anAnswerLeavesWhenItIsDue) {
    device.next = UsbAnswer::done(now + 5 * millisecond, {0x01});
    ASSERT_TRUE(send(getDescriptor));
    EXPECT_EQ(due(), "");
    EXPECT_EQ(usbIp.nextDue(now), now + 5 * millisecond);
    now += 6 * millisecond;
    EXPECT_NE(due(), "");
    EXPECT_EQ(device.deliveredAt, now);
    EXPECT_EQ(usbIp.nextDue(now), std::nullopt);
}

TEST_F(UsbIpTest, anAnswerOfADeviceThatIsGoneByThenIsLost) {
    device.next = UsbAnswer::done(now + 5 * millisecond, {0x01});
    device.goneAt = now + 5 * millisecond;
    ASSERT_TRUE(send(getDescriptor));
    now += 6 * millisecond;
    EXPECT_EQ(due(), "");
}

TEST_F(UsbIpTest, aReadingTransferWaitsForData) {
    ASSERT_TRUE(send(fetch2));
    EXPECT_EQ(due(), "");
    device.toFetch = {0x79};
    due(); // looks for data after what is due
    EXPECT_EQ(due(), "00 00 00 03 00 00 00 21 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01" +
                         twentyZeros + " 79");
}

TEST_F(UsbIpTest, aTransferThatWaitsCanBeTakenBackOnce) {
    const std::string unlink = "00 00 00 02 00 00 00 22 00 01 00 02 00 00 00 00 00 00 00 00 00 00 00 21 00 00 00 00 "
                               "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00";
    ASSERT_TRUE(send(fetch2));
    ASSERT_TRUE(send(unlink));
    EXPECT_EQ(usbIp.nextDue(now), now);
    EXPECT_EQ(due(),
              "00 00 00 04 00 00 00 22 00 00 00 00 00 00 00 00 00 00 00 00 FF FF FF 98 00 00 00 00" + twentyZeros);
    ASSERT_TRUE(send(unlink));
    EXPECT_EQ(due(),
              "00 00 00 04 00 00 00 22 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00" + twentyZeros);
    device.toFetch = {0x79};
    EXPECT_EQ(due() + due(), "");
}

TEST_F(UsbIpTest, aSilentTransferIsAskedOnceAndCanBeTakenBack) {
    device.next = UsbAnswer::silent();
    ASSERT_TRUE(send(getDescriptor));
    EXPECT_EQ(due(), "");
    ASSERT_TRUE(send("00 00 00 02 00 00 00 23 00 01 00 02 00 00 00 00 00 00 00 00 00 00 00 0D 00 00 00 00 "
                     "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"));
    EXPECT_EQ(due(),
              "00 00 00 04 00 00 00 23 00 00 00 00 00 00 00 00 00 00 00 00 FF FF FF 98 00 00 00 00" + twentyZeros);
    EXPECT_EQ(device.asked.size(), 1U);
}

TEST_F(UsbIpTest, aWritingTransferGoesToItsEndpoint) {
    ASSERT_TRUE(send("00 00 00 01 00 00 00 30 00 01 00 02 00 00 00 00 00 00 00 02 00 00 00 00 00 00 00 02 "
                     "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 31 CE"));
    EXPECT_EQ(device.asked.at(0), "out 2: 31 CE");
    EXPECT_EQ(due(),
              "00 00 00 03 00 00 00 30 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 02" + twentyZeros);
}

TEST_F(UsbIpTest, anythingElseIsNoUsbIp) {
    EXPECT_FALSE(send("00 00 00 05" + twentyZeros + twentyZeros + " 00 00 00 00"));
    usbIp.forget();
    std::string isochronous = getDescriptor;
    isochronous.replace(isochronous.find("FF FF FF FF"), 11, "00 00 00 08");
    EXPECT_FALSE(send(isochronous));
    usbIp.forget();
    std::string endless = getDescriptor;
    endless.replace(endless.find("00 00 00 12"), 11, "7F FF FF FF");
    EXPECT_FALSE(send(endless));
}

TEST_F(UsbIpTest, behindAnUnpluggingNothingOfBeforeHolds) {
    ASSERT_TRUE(send(fetch2 + " 00 00 00 01"));
    usbIp.forget();
    device.toFetch = {0x79};
    EXPECT_EQ(due() + due(), "");
    device.next = UsbAnswer::done(now);
    EXPECT_TRUE(send(getDescriptor));
    EXPECT_EQ(device.asked.size(), 1U);
}

} // namespace
} // namespace sim
