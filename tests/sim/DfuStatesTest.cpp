// Every request in every state of DFU 1.1, Appendix A.2, and when GETSTATUS may come.

#include <gtest/gtest.h>

#include "tests/sim/UsbRig.h"

namespace {

using sim::Bytes;
using sim::millisecond;
using sim::UsbAnswer;
using sim::UsbRig;

const char setPointer[] = "21 01 00 00 00 00 05 00";
const Bytes toFlash = {0x21, 0x00, 0x00, 0x00, 0x08};
const char getStatus[] = "A1 03 00 00 00 00 06 00";
const char getState[] = "A1 05 00 00 00 00 01 00";
const char abortRequest[] = "21 06 00 00 00 00 00 00";
const char clrStatus[] = "21 04 00 00 00 00 00 00";
const char misfit[] = "A1 02 01 00 00 00 10 00"; // there is no reply

// Brings a fresh chip into a state.
using Way = void (*)(UsbRig &rig);

void idle(UsbRig &) {}
void downloadSync(UsbRig &rig) {
    rig.send(setPointer, toFlash);
}
void downloadBusy(UsbRig &rig) {
    rig.send("21 01 00 00 00 00 05 00", {0x41, 0x00, 0x00, 0x00, 0x08}); // takes time
    rig.send(getStatus);
}
void downloadDone(UsbRig &rig) { // the time is over
    downloadBusy(rig);
    rig.now += 20 * millisecond;
}
void downloadIdle(UsbRig &rig) {
    downloadDone(rig);
    rig.send(getStatus);
}
void manifestSync(UsbRig &rig) {
    rig.send("21 01 00 00 00 00 00 00");
}
void uploadIdle(UsbRig &rig) {
    rig.send("A1 02 02 00 00 00 10 00");
}
void error(UsbRig &rig) {
    rig.send(misfit);
}

struct StateRow {
    const char *name;
    Way reach;
    const char *dnload; // of five bytes, a command
    const char *leave;  // DNLOAD without data
    const char *upload; // of 16 bytes of memory
    const char *status;
    const char *clear;
    const char *state;
    const char *abort;
};

const char ok[] = "done";
const char no[] = "stall";

const StateRow states[] = {
    {"dfuIDLE", idle, ok, ok, "FF*16", "00 00 00 00 02 00", no, "02", ok},
    {"dfuDNLOAD_SYNC", downloadSync, no, no, no, "00 00 00 00 04 00", no, "03", no},
    {"dfuDNBUSY", downloadBusy, no, no, no, "00 14 00 00 04 00", no, no, no},
    {"dfuDNLOAD_SYNC_again", downloadDone, no, no, no, "00 00 00 00 05 00", no, "03", no},
    {"dfuDNLOAD_IDLE", downloadIdle, ok, ok, no, "00 00 00 00 05 00", no, "05", ok},
    {"dfuMANIFEST_SYNC", manifestSync, no, no, no, "00 00 00 00 07 00", no, "06", no},
    {"dfuUPLOAD_IDLE", uploadIdle, no, no, "FF*16", "00 00 00 00 09 00", no, "09", ok},
    {"dfuERROR", error, no, no, no, "0F 00 00 00 0A 00", ok, "0A", no},
};

class DfuStates : public ::testing::TestWithParam<StateRow> {
protected:
    // The answer, and whether a stall leaves the device where a stall has to.
    void expect(const std::string &setup, const Bytes &out, const std::string &wanted) {
        UsbRig rig("ZV32F403A_1024K", {}, {20 * millisecond, 0});
        GetParam().reach(rig);
        const std::string heard = rig.told.str();
        const UsbAnswer answer = rig.send(setup, out);
        const bool isWord = wanted == ok || wanted == no;
        EXPECT_EQ(UsbRig::show(answer), isWord ? wanted : sim::showBytes(sim::parseBytes(wanted))) << setup;
        if (wanted == no) {
            EXPECT_EQ(UsbRig::show(rig.send(getStatus)), "0F 00 00 00 0A 00") << setup;
            EXPECT_NE(rig.told.str().find("refused: ", heard.size()), std::string::npos) << rig.told.str();
        }
    }
};

TEST_P(DfuStates, dnload) {
    expect(setPointer, toFlash, GetParam().dnload);
}
TEST_P(DfuStates, dnloadWithoutData) {
    expect("21 01 02 00 00 00 00 00", {}, GetParam().leave);
}
TEST_P(DfuStates, upload) {
    expect("A1 02 02 00 00 00 10 00", {}, GetParam().upload);
}
TEST_P(DfuStates, getStatus) {
    expect(getStatus, {}, GetParam().status);
}
TEST_P(DfuStates, clrStatus) {
    expect(clrStatus, {}, GetParam().clear);
}
TEST_P(DfuStates, getState) {
    expect(getState, {}, GetParam().state);
}
TEST_P(DfuStates, abort) {
    expect(abortRequest, {}, GetParam().abort);
}

// What fits no state.
TEST_P(DfuStates, detach) {
    expect("21 00 E8 03 00 00 00 00", {}, no);
}
TEST_P(DfuStates, unknownRequest) {
    expect("21 07 00 00 00 00 00 00", {}, no);
}
TEST_P(DfuStates, wrongDirection) {
    expect("A1 01 00 00 00 00 05 00", {}, no);
}
TEST_P(DfuStates, wrongInterface) {
    expect("A1 03 00 00 01 00 06 00", {}, no);
}
TEST_P(DfuStates, wrongLengthOfStatus) {
    expect("A1 03 00 00 00 00 05 00", {}, no);
}
TEST_P(DfuStates, wrongValue) {
    expect("21 06 01 00 00 00 00 00", {}, no);
}
TEST_P(DfuStates, blockTooLong) {
    expect("21 01 02 00 00 00 04 10", Bytes(4100, 0), no);
}
TEST_P(DfuStates, readTooLong) {
    expect("A1 02 02 00 00 00 01 10", {}, no);
}
TEST_P(DfuStates, readOfNothing) {
    expect("A1 02 02 00 00 00 00 00", {}, no);
}
TEST_P(DfuStates, dnloadOfBlock1) {
    expect("21 01 01 00 00 00 05 00", toFlash, no);
}
TEST_P(DfuStates, uploadOfBlock1WithoutReply) {
    expect(misfit, {}, no);
}
TEST_P(DfuStates, classRequestBehindTheLast) {
    expect("21 07 00 00 00 00 00 00", {}, no);
}
TEST_P(DfuStates, vendorRequest) {
    expect("C0 01 00 00 00 00 01 00", {}, no);
}

INSTANTIATE_TEST_SUITE_P(Table, DfuStates, ::testing::ValuesIn(states),
                         [](const ::testing::TestParamInfo<StateRow> &row) { return row.param.name; });

void PrintTo(const StateRow &row, std::ostream *out) {
    *out << row.name;
}

// ---- time

TEST(DfuTime, statusTooEarlyIsBusyAndTold) {
    UsbRig rig("ZV32F403A_1024K", {}, {20 * millisecond, 0});
    downloadBusy(rig);
    rig.now += 12 * millisecond + 1;
    EXPECT_EQ(UsbRig::show(rig.send(getStatus)), "00 08 00 00 04 00");
    EXPECT_NE(rig.told.str().find("refused: GETSTATUS: 8 ms of the poll time are left"), std::string::npos);
    rig.now += 8 * millisecond - 1;
    EXPECT_EQ(UsbRig::show(rig.send(getStatus)), "00 00 00 00 05 00");
}

TEST(DfuTime, pollTimesOfWritingAndOfErasingEverything) {
    UsbRig rig("ZV32F403A_1024K", {}, {20 * millisecond, 2500 * sim::microsecond});
    rig.send("21 01 02 00 00 00 00 08", Bytes(2048, 0xA5));
    EXPECT_EQ(UsbRig::show(rig.send(getStatus)), "00 14 00 00 04 00"); // 8 times 2.5 ms
    rig.now += 20 * millisecond;
    rig.send(getStatus);
    rig.send("21 01 00 00 00 00 01 00", {0x41});
    EXPECT_EQ(UsbRig::show(rig.send(getStatus)), "00 00 28 00 04 00"); // 512 times 20 ms
}

TEST(DfuTime, theResultOfARefusedBlockIsToldAfterThePollTimeOnly) {
    UsbRig rig("ZV32F403A_1024K", {}, {20 * millisecond, 2500 * sim::microsecond});
    rig.send("21 01 02 00 00 00 04 00", {1, 2, 3, 4});
    rig.send(getStatus);
    rig.now += millisecond;
    rig.send(getStatus);
    rig.send("21 01 02 00 00 00 04 00", {5, 6, 7, 8});
    EXPECT_EQ(UsbRig::show(rig.send(getStatus)), "00 00 00 00 04 00");
    EXPECT_EQ(UsbRig::show(rig.send(getStatus)), "05 00 00 00 0A 00");
}

// ---- faults of commands

TEST(DfuFaults, refusalBehindTheOpcodeAndBehindAGroup) {
    UsbRig rig("ZV32F403A_1024K", {"nack@1:31", "nack@2:31:1", "nack@1:11"});
    EXPECT_EQ(rig.play(R"(
        H: 21 01 02 00 00 00 04 00 | 01 02 03 04
        C: done
        H: A1 03 00 00 00 00 06 00
        C: 00 00 00 00 04 00
        H: A1 03 00 00 00 00 06 00
        C: 0B 00 00 00 0A 00
        H: 21 04 00 00 00 00 00 00
        C: done
        H: 21 01 02 00 00 00 04 00 | 01 02 03 04
        C: done
        H: A1 03 00 00 00 00 06 00
        C: 00 00 00 00 04 00
        H: A1 03 00 00 00 00 06 00
        C: 01 00 00 00 0A 00
        H: 21 04 00 00 00 00 00 00
        C: done
        H: A1 02 02 00 00 00 04 00
        C: stall
        H: 21 04 00 00 00 00 00 00
        C: done
        H: A1 02 02 00 00 00 04 00
        C: FF FF FF FF
    )"),
              "");
}

TEST(DfuFaults, silentUntilTheResetButton) {
    UsbRig rig("ZV32F403A_1024K", {"silence@1"});
    EXPECT_EQ(rig.play(R"(
        H: 21 01 00 00 00 00 01 00 | 02
        C: done
        H: A1 03 00 00 00 00 06 00
        C: silent
        H: A1 05 00 00 00 00 01 00
        C: silent
        wait 10000
        here 1
        button
        wait 20
        here 2
        H: 00 09 01 00 00 00 00 00
        C: done
        H: A1 05 00 00 00 00 01 00
        C: 02
    )"),
              "");
}

TEST(DfuFaults, powerCutInTheMiddleOfABlock) {
    UsbRig rig("ZV32F403A_1024K", {"powercut@2"});
    EXPECT_EQ(rig.play(R"(
        H: 21 01 02 00 00 00 04 00 | 01 02 03 04
        C: done
        H: A1 03 00 00 00 00 06 00
        C: silent
        away
        wait 20
        here 2
        H: 00 09 01 00 00 00 00 00
        C: done
        H: A1 02 02 00 00 00 04 00
        C: 01 02 FF FF
    )"),
              "");
}

TEST(DfuFaults, powerCutComesWhenTheWorkWouldBeDone) {
    UsbRig rig("ZV32F403A_1024K", {"powercut@2"}, {0, 256 * millisecond});
    rig.send("21 01 02 00 00 00 04 00", {1, 2, 3, 4});
    EXPECT_EQ(UsbRig::show(rig.send(getStatus)), "00 04 00 00 04 00");
    EXPECT_EQ(rig.cable.nextEvent(rig.now), rig.now + 4 * millisecond);
    EXPECT_TRUE(rig.cable.presence(rig.now).attached);
    EXPECT_FALSE(rig.cable.presence(rig.now + 4 * millisecond).attached);
}

} // namespace
