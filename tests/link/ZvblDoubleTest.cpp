// The double itself: what other tests take for granted.

#include <chrono>
#include <thread>

#include <QThread>

#include "tests/link/LinkTest.h"

class ZvblDoubleTest : public LinkTest {};

TEST_F(ZvblDoubleTest, RulesByCallAndByAddress) {
    library.script("ZVBL_UPLOAD fill=11\nZVBL_UPLOAD at=08000100 data=AABB # there alone\n"
                   "ZVBL_UPLOAD status=5 nth=3\nZVBL_UPLOAD status=4 from=5 to=6\n");
    BYTE data[4] = {};
    EXPECT_EQ(ZVBL_UPLOAD(nullptr, 0x08000000, data, 4), 0);
    EXPECT_EQ(data[0], 0x11);
    EXPECT_EQ(ZVBL_UPLOAD(nullptr, 0x08000100, data, 4), 0);
    EXPECT_EQ(data[1], 0xBB);
    EXPECT_EQ(data[2], 0x11);
    const int statuses[] = {5, 0, 4, 4, 0};
    for (const int status : statuses)
        EXPECT_EQ(ZVBL_UPLOAD(nullptr, 0, data, 4), status);
    library.script("ZVBL_UPLOAD status=7 nth=1");
    EXPECT_EQ(ZVBL_UPLOAD(nullptr, 0, data, 4), 7) << "a new script counts anew";
}

TEST_F(ZvblDoubleTest, AScriptWithASlipEndsTheProcess) {
    library.script("ZVBL_GET_IDD id=00");
    EXPECT_DEATH(ZVBL_ResetMCU(nullptr), "no such function");
    library.script("ZVBL_GO data=00");
    EXPECT_DEATH(ZVBL_ResetMCU(nullptr), "no such key 'data=00'");
}

TEST_F(ZvblDoubleTest, DataIsLoggedShort) {
    BYTE data[17] = {1, 2, 3};
    ZVBL_DNLOAD(nullptr, 0x08000000, data, 3, 1);
    ZVBL_VERIFY(nullptr, 0x08000000, data, 17, 0);
    EXPECT_EQ(library.log(), "ZVBL_DNLOAD h=0 addr=08000000 len=3 data=010203 optimise=1\n"
                             "ZVBL_VERIFY h=0 addr=08000000 len=17 data=01020300000000000000000000000000.. "
                             "crc=D89475E4 optimise=0\n");
}

TEST_F(ZvblDoubleTest, SleepingIsLoggedAndTakesNoTime) {
    const auto begin = std::chrono::steady_clock::now();
    QThread::msleep(100000);
    QThread::sleep(50);
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    EXPECT_EQ(library.log(), "sleep 100000\nsleep 50000\nsleep 700\n");
}

TEST_F(ZvblDoubleTest, CallsOfAnotherThreadAreOrderedByTheirOwnThread) {
    std::thread other([] {
        for (int i = 0; i < 50; ++i)
            SetTimeOut(nullptr, 1);
    });
    for (int i = 0; i < 50; ++i)
        SetPaketSize(nullptr, 1);
    other.join();
    const std::string log = library.log();
    EXPECT_EQ(log.size(),
              50 * std::string("SetTimeOut h=0 ms=1\n").size() + 50 * std::string("SetPaketSize h=0 bytes=1\n").size());
}
