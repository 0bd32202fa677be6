// What goes wrong on USB DFU: at every transfer, in every state.

#include <functional>

#include "libs/zvbl/Timing.h"
#include "tests/zvbl/DfuFixture.h"

using namespace dfu;
using usbWords::damaged;
using usbWords::gone;
using usbWords::pulled;
using usbWords::silence;
using usbWords::stall;

namespace {

const std::string eraseBank1 = "21 01 00 00 00 00 04 00 44 FF FE 01";
const std::string pointAtRam = "21 01 00 00 00 00 05 00 21 00 00 00 20";
const std::string pointAtFlash = "21 01 00 00 00 00 05 00 21 00 00 00 08";

class DfuFailuresTest : public DfuFixture {
protected:
    int erase() { return ZVBL_ERASE(link, 0xFFFE, nullptr, 0); }
    int write4() {
        BYTE data[4] = {1, 2, 3, 4};
        return ZVBL_DNLOAD(link, 0x08000000, data, 4, 0);
    }
    int read4(unsigned address = 0x08000000) { return ZVBL_UPLOAD(link, address, bytes, 4); }
    BYTE bytes[4] = {};
};

struct Call {
    const char *name;
    UsbScript script;
    std::function<int(HANDLE)> call;
};

const Call calls[] = {
    {"erase", done(eraseBank1), [](HANDLE h) { return ZVBL_ERASE(h, 0xFFFE, nullptr, 0); }},
    {"upload", done(pointAtRam) + UsbScript{{abortRequest, ""}, {"A1 02 02 00 00 00 02 00", "01 02"}},
     [](HANDLE h) {
         BYTE data[2];
         return ZVBL_UPLOAD(h, 0x20000000, data, 2);
     }},
    {"download", done(pointAtRam) + done("21 01 02 00 00 00 02 00 01 02"),
     [](HANDLE h) {
         BYTE data[2] = {1, 2};
         return ZVBL_DNLOAD(h, 0x20000000, data, 2, 0);
     }},
    {"identifier",
     done("21 01 00 00 00 00 01 00 02") + UsbScript{{abortRequest, ""}, {"A1 02 01 00 00 00 00 10", "01 02 42"}},
     [](HANDLE h) {
         BYTE length;
         return ZVBL_GET_ID(h, &length, nullptr);
     }},
    {"go", done(pointAtRam) + UsbScript{{"21 01 02 00 00 00 00 00", ""}, {getStatus, isManifest}},
     [](HANDLE h) { return ZVBL_GO(h, 0x20000000); }},
};

// The first turns of a call, and another answer to the next one.
UsbScript upTo(const UsbScript &script, std::size_t turns, const std::string &answer) {
    UsbScript cut(script.begin(), script.begin() + static_cast<std::ptrdiff_t>(turns));
    cut.emplace_back(script[turns].host, answer);
    return cut;
}

TEST_F(DfuFailuresTest, UnpluggedInAnyTransferIs4AtOnceUntilTheLinkIsClosed) {
    for (const Call &row : calls) {
        for (std::size_t turn = 0; turn <= row.script.size(); ++turn) {
            SCOPED_TRACE(std::string(row.name) + ", turn " + std::to_string(turn));
            ASSERT_EQ(Interface_Open(link), 0);
            device->play(upTo(inStep + row.script, turn, gone));
            EXPECT_LT(timeOf([&] { EXPECT_EQ(row.call(link), 4); }).count(), 2000);
            EXPECT_EQ(device->finish(), "");
            EXPECT_EQ(row.call(link), 4);
            EXPECT_EQ(Interface_is_Open(link), 1);
            EXPECT_EQ(Interface_Close(link), 0);
            device->plugInAgain();
        }
    }
}

TEST_F(DfuFailuresTest, AnUnpluggedDeviceIsFoundAgainWithoutANewList) {
    EXPECT_EQ(play({{getState, gone}}, [&] { return erase(); }), 4);
    device->awaitUnplugged();
    EXPECT_EQ(Interface_Open(link), 3);
    EXPECT_EQ(Interface_Open(link), 3);
    device->plugInAgain();
    EXPECT_EQ(playAfresh(done(eraseBank1), [&] { return erase(); }), 0);
}

// A cable that is pulled shows as a damaged transfer first.
TEST_F(DfuFailuresTest, ADamagedTransferIs4WhenTheDeviceIsGoneThenAnd5WhenItIsNot) {
    EXPECT_EQ(playAfresh({{eraseBank1, damaged}}, [&] { return erase(); }), 5);
    EXPECT_EQ(play(inStep + done(eraseBank1), [&] { return erase(); }), 0);
    EXPECT_EQ(playAfresh({{eraseBank1, pulled}}, [&] { return erase(); }), 4);
}

TEST_F(DfuFailuresTest, AnEraseWithoutAnAnswerIs5AndIsNotSentAgain) {
    const UsbScript script = done(eraseBank1);
    for (std::size_t turn = 0; turn < script.size(); ++turn) {
        SCOPED_TRACE(turn);
        EXPECT_LT(
            timeOf([&] { EXPECT_EQ(playAfresh(upTo(script, turn, silence), [&] { return erase(); }), 5); }).count(),
            2000);
    }
}

TEST_F(DfuFailuresTest, ADeviceThatCannotBeBroughtInStepIs5AndNothingIsSent) {
    for (const char *answer : {silence, stall, "", "00", "01", "07", "08", "0B"}) {
        SCOPED_TRACE(answer);
        ASSERT_EQ(Interface_Open(link), 0);
        ASSERT_EQ(SetTimeOut(link, 150), 0);
        EXPECT_EQ(play({{getState, answer}}, [&] { return erase(); }), 5);
        EXPECT_EQ(play({{getState, answer}}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0x11);
    }
}

TEST_F(DfuFailuresTest, EveryStateOfTheBootloaderIsBroughtToIdle) {
    const struct {
        const char *state;
        UsbScript way;
    } rows[] = {
        {"03", {{abortRequest, ""}, {getState, "02"}}},
        {"05", {{abortRequest, ""}, {getState, "02"}}},
        {"06", {{abortRequest, ""}, {getState, "02"}}},
        {"09", {{abortRequest, ""}, {getState, "02"}}},
        {"0A", {{clearStatus, ""}, {getState, "02"}}},
        {"03", {{abortRequest, stall}, {getState, "0A"}, {clearStatus, ""}, {getState, "02"}}},
        {"04",
         {{getStatus, "00 05 00 00 04 00"},
          {getStatus, isDownloadIdle, 5},
          {getState, "05"},
          {abortRequest, ""},
          {getState, "02"}}},
        {"04", {{getStatus, "04 00 00 00 0A 00"}, {clearStatus, ""}, {getState, "02"}}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.state);
        ASSERT_EQ(Interface_Open(link), 0);
        const UsbScript script = UsbScript{{getState, row.state}} + row.way + done(eraseBank1);
        EXPECT_EQ(play(script, [&] { return erase(); }), 0);
    }
}

TEST_F(DfuFailuresTest, ADeviceThatNeverBecomesIdleIs5) {
    const UsbScript round = {{getState, "0A"}, {clearStatus, ""}};
    EXPECT_EQ(play(round + round + round + round + round, [&] { return erase(); }), 5);
}

// A GETSTATUS would carry out the erase that has failed long ago.
TEST_F(DfuFailuresTest, WhatFailedIsAbortedAndNotCarriedOutByTheNextCommand) {
    EXPECT_EQ(playAfresh({{eraseBank1, silence}}, [&] { return erase(); }), 5);
    const UsbScript next = {{getState, "03"}, {abortRequest, ""}, {getState, "02"}};
    EXPECT_EQ(play(next + done("21 01 00 00 00 00 03 00 B7 01 FE"), [&] { return ZVBL_SPIMREMAP(link, 1); }), 0);
}

TEST_F(DfuFailuresTest, RefusalsAtTheEndOfACommand) {
    const struct {
        const char *status;
        int expected;
    } rows[] = {{"01", 0x14}, {"02", 0x14}, {"03", 0x14}, {"04", 0x14}, {"05", 0x14}, {"06", 0x14},
                {"07", 0x14}, {"08", 0x14}, {"09", 0x14}, {"0A", 0x14}, {"0B", 0x13}, {"0C", 0x14},
                {"0D", 0x14}, {"0E", 0x14}, {"0F", 0x13}, {"7F", 0x14}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.status);
        EXPECT_EQ(
            playAfresh(UsbScript{{eraseBank1, ""}, {getStatus, isBusy}} + failed(row.status), [&] { return erase(); }),
            row.expected);
        EXPECT_EQ(play(UsbScript{{eraseBank1, ""}} + failed(row.status), [&] { return erase(); }), row.expected);
        EXPECT_EQ(play(UsbScript{{eraseBank1, stall}} + failed(row.status), [&] { return erase(); }), row.expected);
        EXPECT_EQ(play(done(eraseBank1), [&] { return erase(); }), 0);
    }
}

TEST_F(DfuFailuresTest, AStallWithoutAReasonIs0x13) {
    EXPECT_EQ(playAfresh({{eraseBank1, stall}, {getStatus, "00 00 00 00 02 00"}}, [&] { return erase(); }), 0x13);
    EXPECT_EQ(play(inStep + done(eraseBank1), [&] { return erase(); }), 0);
}

TEST_F(DfuFailuresTest, ReadingThatIsRefusedIsTriedThreeTimes) {
    const UsbScript refused =
        done(pointAtFlash) + UsbScript{{abortRequest, ""}, {"A1 02 02 00 00 00 04 00", stall}} + failed("08");
    EXPECT_EQ(playAfresh(refused + refused + refused, [&] { return read4(); }), 0x14);
    const UsbScript isProtected =
        done(pointAtFlash) + UsbScript{{abortRequest, ""}, {"A1 02 02 00 00 00 04 00", stall}} + failed("0B");
    const UsbScript script = isProtected + isProtected + isProtected;
    EXPECT_EQ(play(script, [&] { return read4(); }), 0x13);
    EXPECT_EQ(play(script, [&] { return ZVBL_VERIFY(link, 0x08000000, bytes, 4, 0); }), 0x14);
}

TEST_F(DfuFailuresTest, AnAnswerOfTheWrongLengthOrSumIs5) {
    const UsbScript asked = done("21 01 00 00 00 00 09 00 AC 08 00 00 00 08 00 01 01") + UsbScript{{abortRequest, ""}};
    for (const char *reply : {"", "DE AD BE EF", "DE AD BE EF 22 00", "DE AD BE EF 23"}) {
        SCOPED_TRACE(reply);
        const UsbScript once = asked + UsbScript{{"A1 02 01 00 00 00 00 10", reply}};
        EXPECT_EQ(playAfresh(once + once + once, [&] { return ZVBL_GetFirmwareCRC(link, 0x08000000, 1, bytes); }), 5);
    }
    const UsbScript id = done("21 01 00 00 00 00 01 00 02") + UsbScript{{abortRequest, ""}};
    BYTE length = 0;
    for (const char *reply : {"", "01", "01 02", "01 02 42 00"}) {
        SCOPED_TRACE(reply);
        const UsbScript once = id + UsbScript{{"A1 02 01 00 00 00 00 10", reply}};
        EXPECT_EQ(playAfresh(once + once + once, [&] { return ZVBL_GET_ID(link, &length, nullptr); }), 5);
    }
    const UsbScript shortRead =
        done(pointAtFlash) + UsbScript{{abortRequest, ""}, {"A1 02 02 00 00 00 04 00", "01 02"}};
    EXPECT_EQ(playAfresh(shortRead + shortRead + shortRead, [&] { return read4(); }), 5);
}

TEST_F(DfuFailuresTest, AStatusThatIsNoneIs5) {
    for (const char *answer : {"", "00 00 00 00 05", stall, "00 00 00 00 02 00", "00 00 00 00 09 00"}) {
        SCOPED_TRACE(answer);
        EXPECT_EQ(playAfresh({{eraseBank1, ""}, {getStatus, answer}}, [&] { return erase(); }), 5);
    }
    const UsbScript go = done(pointAtFlash) + UsbScript{{"21 01 02 00 00 00 00 00", ""}};
    EXPECT_EQ(playAfresh(go + UsbScript{{getStatus, isDownloadIdle}}, [&] { return ZVBL_GO(link, 0x08000000); }), 5);
    EXPECT_EQ(playAfresh(go + failed("08"), [&] { return ZVBL_GO(link, 0x08000000); }), 0x14);
    EXPECT_EQ(playAfresh(go + failed("0B"), [&] { return ZVBL_GO(link, 0x08000000); }), 0x13);
}

// The cells are not erased: nothing was touched, and it is tried as often as anything else.
TEST_F(DfuFailuresTest, AWriteThatIsRefusedIs0x14AndIsNotReadBack) {
    const UsbScript refused =
        done(pointAtFlash) + UsbScript{{"21 01 02 00 00 00 04 00 01 02 03 04", ""}, {getStatus, isBusy}} + failed("05");
    EXPECT_EQ(playAfresh(refused + refused + refused, [&] { return write4(); }), 0x14);
}

TEST_F(DfuFailuresTest, AWriteWithoutAnAnswerIsReadBackAndSentForTheRest) {
    const UsbScript lost = done(pointAtFlash) + UsbScript{{"21 01 02 00 00 00 04 00 01 02 03 04", silence}} +
                           UsbScript{{getState, "03"}, {abortRequest, ""}, {getState, "02"}} + done(pointAtFlash) +
                           UsbScript{{abortRequest, ""}};
    const std::string readBack = "A1 02 02 00 00 00 04 00";
    EXPECT_EQ(playAfresh(lost + UsbScript{{readBack, "01 02 03 04"}}, [&] { return write4(); }), 0);
    EXPECT_EQ(playAfresh(lost + UsbScript{{readBack, "01 02 FF FF"}, {abortRequest, ""}} +
                             done("21 01 02 00 00 00 04 00 FF FF 03 04"),
                         [&] { return write4(); }),
              0);
    EXPECT_EQ(playAfresh(lost + UsbScript{{readBack, "01 02 00 FF"}}, [&] { return write4(); }), 5);
    EXPECT_EQ(playAfresh(lost + UsbScript{{readBack, gone}}, [&] { return write4(); }), 4);
}

TEST_F(DfuFailuresTest, PollTimesAreWaitedForAndEachAnswerBeginsAnew) {
    const UsbScript script = {{eraseBank1, ""},
                              {getStatus, "00 C8 00 00 04 00"},
                              {getStatus, "00 1E 00 00 04 00", 200},
                              {getStatus, isDownloadIdle, 30}};
    // Longer than the time limit of 150 ms, which is for a device that says nothing.
    EXPECT_EQ(playAfresh(script, [&] { return erase(); }), 0);
    const UsbScript high = {{eraseBank1, ""}, {getStatus, "00 00 01 00 04 00"}, {getStatus, isDownloadIdle, 256}};
    EXPECT_EQ(playAfresh(high, [&] { return erase(); }), 0);
}

// 24 bits of milliseconds are 4.6 hours.
TEST_F(DfuFailuresTest, APollTimeIsBelievedUpToALimit) {
    zvbl::Timing timing;
    timing.longestPoll = std::chrono::milliseconds(50);
    zvbl::setTiming(timing);
    const UsbScript done = {{eraseBank1, ""}, {getStatus, "00 FF FF FF 04 00"}, {getStatus, isDownloadIdle, 50}};
    EXPECT_EQ(playAfresh(done, [&] { return erase(); }), 0);
    zvbl::setTiming({});
}

TEST_F(DfuFailuresTest, BusyForEverIs5OneTimeLimitAfterTheTimeThatWasTold) {
    ASSERT_EQ(Interface_Open(link), 0);
    ASSERT_EQ(SetTimeOut(link, 150), 0);
    device->playForEver(inStep + UsbScript{{eraseBank1, ""}, {getStatus, "00 14 00 00 04 00"}});
    const auto time = timeOf([&] { EXPECT_EQ(erase(), 5); });
    EXPECT_EQ(device->finish(), "");
    EXPECT_GE(time.count(), 150);
    EXPECT_LT(time.count(), 2000);
}

TEST_F(DfuFailuresTest, UnpluggedWithinAPollTimeIs4AtOnce) {
    const UsbScript script = {{eraseBank1, ""}, {getStatus, "00 88 13 00 04 00", 0, 30}};
    EXPECT_LT(timeOf([&] { EXPECT_EQ(playAfresh(script, [&] { return erase(); }), 4); }).count(), 2000);
}

// It is the answer to the first GETSTATUS that tells that the command was taken.
TEST_F(DfuFailuresTest, ADeviceThatLeavesAfterItsPollTimeInAResetHasDoneWhatItWasTold) {
    const std::string commands[] = {"21 01 00 00 00 00 01 00 D4", "21 01 00 00 00 00 01 00 92",
                                    "21 01 00 00 00 00 01 00 82", "21 01 00 00 00 00 01 00 73",
                                    "21 01 00 00 00 00 06 00 D2 12 34 56 78 08"};
    const std::function<int()> run[] = {
        [&] { return ZVBL_ResetMCU(link); }, [&] { return ZVBL_ACCESS_PERM_UNPROTECT(link); },
        [&] { return ZVBL_ACCESS_PROTECT(link); }, [&] { return ZVBL_ERASEPROGRAM_PERM_UNPROTECT(link); },
        [&] { return ZVBL_DisableSlib(link, 0x12345678); }};
    for (std::size_t i = 0; i < std::size(commands); ++i) {
        SCOPED_TRACE(commands[i]);
        EXPECT_EQ(playAfresh({{commands[i], ""}, {getStatus, isBusy}, {getStatus, gone}}, run[i]), 0);
        EXPECT_EQ(run[i](), 4);
        device->plugInAgain();
        EXPECT_EQ(playAfresh({{commands[i], ""}, {getStatus, gone}}, run[i]), 4);
        device->plugInAgain();
        EXPECT_EQ(playAfresh({{commands[i], ""}, {getStatus, "00 88 13 00 04 00", 0, 20}}, run[i]), 4);
        device->plugInAgain();
    }
    EXPECT_EQ(playAfresh({{eraseBank1, ""}, {getStatus, isBusy}, {getStatus, gone}}, [&] { return erase(); }), 4);
}

} // namespace
