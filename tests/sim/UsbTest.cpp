// What all USB devices have in common: standard requests, and the cable with its pace and its faults.

#include <gtest/gtest.h>

#include "tests/sim/UsbRig.h"

namespace {

using sim::Bytes;
using sim::Faults;
using sim::millisecond;
using sim::Nanoseconds;
using sim::UsbAnswer;
using sim::UsbRig;

const char getStatus[] = "A1 03 00 00 00 00 06 00";
const char getState[] = "A1 05 00 00 00 00 01 00";
const char abortRequest[] = "21 06 00 00 00 00 00 00";
const char writeWord[] = "21 01 02 00 00 00 04 00";

// ---- standard requests

struct StandardRow {
    const char *name;
    const char *setup;
    const char *answer;
};

class Standard : public ::testing::TestWithParam<StandardRow> {};

TEST_P(Standard, request) {
    UsbRig rig("ZV32F403A_1024K");
    EXPECT_EQ(UsbRig::show(rig.send(GetParam().setup)), GetParam().answer);
}

const StandardRow standard[] = {
    {"first_eight_bytes_of_the_device", "80 06 00 01 00 00 08 00", "12 01 00 02 00 00 00 40"},
    {"head_of_the_configuration", "80 06 00 02 00 00 09 00", "09 02 1B 00 01 01 00 80 32"},
    {"languages", "80 06 00 03 00 00 FF 00", "04 03 09 04"},
    {"string_cut", "80 06 01 03 09 04 06 00", "20 03 5A 00 56 00"},
    {"no_such_string", "80 06 04 03 09 04 FF 00", "stall"},
    {"no_second_configuration", "80 06 01 02 00 00 FF 00", "stall"},
    {"no_device_qualifier", "80 06 00 06 00 00 0A 00", "stall"},
    {"configuration", "80 08 00 00 00 00 01 00", "01"},
    {"no_such_configuration", "00 09 02 00 00 00 00 00", "stall"},
    {"interface", "81 0A 00 00 00 00 01 00", "00"},
    {"no_such_interface", "81 0A 00 00 01 00 01 00", "stall"},
    {"only_alternate_setting", "01 0B 00 00 00 00 00 00", "done"},
    {"no_other_alternate_setting", "01 0B 01 00 00 00 00 00", "stall"},
    {"status_of_the_device", "80 00 00 00 00 00 02 00", "00 00"},
    {"status_of_the_interface", "81 00 00 00 00 00 02 00", "00 00"},
    {"status_of_no_interface", "81 00 00 00 01 00 02 00", "stall"},
    {"status_of_endpoint_0", "82 00 00 00 00 00 02 00", "00 00"},
    {"status_of_no_endpoint", "82 00 00 00 81 00 02 00", "stall"},
    {"halt_of_no_endpoint", "02 03 00 00 81 00 00 00", "stall"},
    {"no_second_device", "80 06 01 01 00 00 12 00", "stall"},
    {"other_feature_of_an_endpoint", "02 03 01 00 00 00 00 00", "stall"},
    {"halt_cleared_of_endpoint_0", "02 01 00 00 00 00 00 00", "done"},
    {"halt_cleared_of_no_endpoint", "02 01 00 00 81 00 00 00", "stall"},
    {"other_feature_cleared", "02 01 01 00 00 00 00 00", "stall"},
    {"address", "00 05 07 00 00 00 00 00", "done"},
    {"remote_wakeup", "00 03 01 00 00 00 00 00", "stall"},
    {"unknown", "80 33 00 00 00 00 01 00", "stall"},
};

INSTANTIATE_TEST_SUITE_P(Requests, Standard, ::testing::ValuesIn(standard),
                         [](const ::testing::TestParamInfo<StandardRow> &row) { return row.param.name; });

TEST(StandardRequests, aStallOfOneDoesNotTouchTheStateOfTheFunction) {
    UsbRig rig("ZV32F403A_1024K");
    rig.send("80 33 00 00 00 00 01 00");
    EXPECT_EQ(UsbRig::show(rig.send(getState)), "02");
}

TEST(StandardRequests, endpointsAreHaltedAndFreedOneByOne) {
    const sim::UsbDescriptors descriptors = {
        {}, {9, 2, 23, 0, 1, 1, 0, 0x80, 50, 7, 5, 0x81, 2, 64, 0, 0, 7, 5, 0x02, 2, 64, 0, 0}, {}};
    sim::StandardRequests requests(descriptors);
    requests.answer({0x02, 3, 0, 0x81, 0}, 0);
    EXPECT_TRUE(requests.halted(0x81));
    EXPECT_FALSE(requests.halted(0x02));
    EXPECT_EQ(requests.answer({0x82, 0, 0, 0x81, 2}, 0).data, (Bytes{1, 0}));
    requests.answer({0x02, 1, 0, 0x81, 0}, 0);
    EXPECT_FALSE(requests.halted(0x81));
}

TEST(StandardRequests, aBusResetForgetsTheConfigurationAndWhatWasUnderWay) {
    UsbRig rig("ZV32F403A_1024K");
    rig.send(writeWord, {1, 2, 3, 4});
    rig.cable.busReset(rig.now);
    EXPECT_EQ(UsbRig::show(rig.send("80 08 00 00 00 00 01 00")), "00");
    rig.send("00 09 01 00 00 00 00 00");
    EXPECT_EQ(UsbRig::show(rig.send(getState)), "02");
    EXPECT_EQ(rig.cable.presence(rig.now).attachments, 1U);
}

// ---- pace

Nanoseconds duration(UsbRig &rig, const std::string &setup, const Bytes &out = {}) {
    const Nanoseconds start = rig.now;
    rig.send(setup, out);
    return rig.now - start;
}

TEST(UsbPace, nineteenPacketsAFrame) {
    UsbRig rig("ZV32F403A_1024K", {}, {}, true);
    const double packet = 1e6 / 19;
    EXPECT_NEAR(static_cast<double>(duration(rig, "A1 02 02 00 00 00 00 08")), 32.5 * packet, 100);
    EXPECT_NEAR(static_cast<double>(duration(rig, abortRequest)), 0.5 * packet, 100);
    EXPECT_NEAR(static_cast<double>(duration(rig, "21 01 02 00 00 00 00 08", Bytes(2048, 0x11))), 32.5 * packet, 100);
    EXPECT_NEAR(static_cast<double>(duration(rig, getStatus)), 1.5 * packet, 100);
}

TEST(UsbPace, noneByItself) {
    UsbRig rig("ZV32F403A_1024K");
    EXPECT_EQ(duration(rig, "A1 02 02 00 00 00 00 08"), 0);
}

// ---- faults. Bytes: the host's 1 to 4 are the word that is written; the chip's 1 to 6 are a status.

TEST(UsbFaults, lostOnTheWayToTheChip) {
    UsbRig rig("ZV32F403A_1024K", {"rx-lost@3"});
    EXPECT_EQ(UsbRig::show(rig.send(writeWord, {1, 2, 3, 4})), "silent");
    EXPECT_EQ(UsbRig::show(rig.send(getState)), "02");
}

TEST(UsbFaults, lostOnTheWayToTheHost) {
    UsbRig rig("ZV32F403A_1024K", {"tx-lost@6"});
    rig.send(writeWord, {1, 2, 3, 4});
    EXPECT_EQ(UsbRig::show(rig.send(getStatus)), "silent");
    EXPECT_EQ(UsbRig::show(rig.send(getStatus)), "00 00 00 00 05 00"); // it was carried out all the same
}

TEST(UsbFaults, damagedBothWays) {
    UsbRig rig("ZV32F403A_1024K", {"rx-damage@2:01", "tx-damage@13:80"});
    rig.send(writeWord, {1, 2, 3, 4});
    rig.send(getStatus);
    rig.send(getStatus);
    rig.send(abortRequest);
    EXPECT_EQ(UsbRig::show(rig.send("A1 02 02 00 00 00 04 00")), "81 03 03 04");
}

TEST(UsbFaults, doubledByteShiftsWhatFollows) {
    UsbRig rig("ZV32F403A_1024K", {"tx-double@1"});
    EXPECT_EQ(UsbRig::show(rig.send("A1 02 00 00 00 00 04 00")), "00 00 21 41");
}

TEST(UsbFaults, aRequestWithoutDataIsOneByte) {
    for (const char *fault : {"rx-lost@1", "rx-damage@1"}) {
        UsbRig rig("ZV32F403A_1024K", {fault});
        rig.send("A1 02 02 00 00 00 04 00");
        EXPECT_EQ(UsbRig::show(rig.send(abortRequest)), "silent") << fault;
        EXPECT_EQ(UsbRig::show(rig.send(getState)), "09") << fault;
    }
    UsbRig rig("ZV32F403A_1024K", {"rx-double@1"});
    rig.send("A1 02 01 00 00 00 04 00");
    // The second CLRSTATUS does not fit dfuIDLE any more.
    EXPECT_EQ(UsbRig::show(rig.send("21 04 00 00 00 00 00 00")), "stall");
}

TEST(UsbFaults, lateBothWays) {
    UsbRig rig("ZV32F403A_1024K", {"rx-late@2:30", "tx-late@1:50"});
    const Nanoseconds start = rig.now;
    EXPECT_EQ(rig.send(writeWord, {1, 2, 3, 4}).at, start + 30 * millisecond);
    EXPECT_EQ(rig.send(getStatus).at, start + 80 * millisecond);
}

TEST(UsbFaults, aLateAnswerIsWaitedForBeforeTheDeviceGoesAway) {
    UsbRig rig("ZV32F403A_1024K", {"tx-late@7:500"});
    EXPECT_EQ(rig.play(R"(
        H: 21 01 00 00 00 00 01 00 | D4
        C: done
        H: A1 03 00 00 00 00 06 00
        C: 00 00 00 00 04 00
        H: A1 03 00 00 00 00 06 00
        C: 00 00 00 00 05 00
        here 1
        wait 1
        away
        wait 20
        here 2
    )"),
              "");
    EXPECT_EQ(rig.now, sim::second + 521 * millisecond);
}

TEST(UsbFaults, unpluggedInTheMiddleAndPluggedInAgain) {
    UsbRig rig("ZV32F403A_1024K", {"hangup@3:300"});
    EXPECT_EQ(rig.play(R"(
        H: 21 01 02 00 00 00 04 00 | 01 02 03 04
        C: silent
        away
        H: A1 05 00 00 00 00 01 00
        C: silent
        button
        wait 300
        away
        wait 20
        here 2
        H: 00 09 01 00 00 00 00 00
        C: done
        H: A1 02 02 00 00 00 04 00
        C: FF FF FF FF
    )"),
              "");
    EXPECT_FALSE(rig.cable.presence(rig.now).forGood);
}

TEST(UsbFaults, unpluggedForGoodBehindTheWork) {
    UsbRig rig("ZV32F403A_1024K", {"tx-hangup@1"});
    rig.send(writeWord, {1, 2, 3, 4});
    EXPECT_EQ(UsbRig::show(rig.send(getStatus)), "silent");
    EXPECT_TRUE(rig.cable.presence(rig.now).forGood);
    EXPECT_EQ(rig.cable.nextEvent(rig.now), std::nullopt);
    Bytes content;
    rig.chip.read(0x08000000, 4, content);
    EXPECT_EQ(content, (Bytes{1, 2, 3, 4}));
}

TEST(UsbFaults, whatAHostAsksToKnowTheDeviceIsNotCounted) {
    UsbRig rig("ZV32F403A_1024K", {"tx-lost@1"});
    EXPECT_EQ(rig.send("80 06 00 01 00 00 12 00").data.size(), 18U);
    EXPECT_EQ(UsbRig::show(rig.send(getState)), "silent");
}

} // namespace
