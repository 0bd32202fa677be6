#include "tests/operations/OperationsTest.h"

class FlashCRCTest : public OperationsTest {
protected:
    int crc(uint address, uint first, uint count) {
        bootLoader().FlashCRCCheck(FlashCRCParam{address, first, count});
        return runAnew();
    }
    CFlashCRC &job() { return static_cast<CFlashCRC &>(*bootLoader().m_ObOperation); }
};

TEST_F(FlashCRCTest, AsksTheTarget) {
    connect(f413);
    g_shareParameter.c_timeout = 7;
    library.script("ZVBL_GetFirmwareCRC crc=89ABCDEF");
    EXPECT_EQ(crc(0x08001000, 2, 3), 0);
    EXPECT_EQ(library.log(), "SetTimeOut h=1001 ms=100000\nsleep 50\n"
                             "ZVBL_GetFirmwareCRC h=1001 addr=08001000 sectors=3\nSetTimeOut h=1001 ms=7000\n");
    EXPECT_EQ(job().m_CRCValue, 0x89ABCDEFu);
    EXPECT_EQ(events, (Lines{"INIT Flash CRC calculate: Sector2--Sector4", "ACTION 0", "ACTION 100", "DONE"}));
}

TEST_F(FlashCRCTest, ACountAbove65535IsCut) {
    connect(f413);
    EXPECT_EQ(crc(0x08000000, 0, 0x10005), 0);
    EXPECT_EQ(calls({"ZVBL_GetFirmwareCRC"}), Lines{"ZVBL_GetFirmwareCRC h=1001 addr=08000000 sectors=5"});
}

TEST_F(FlashCRCTest, AFailureRestoresTheTimeLimitToo) {
    connect(f413);
    library.script("ZVBL_GetFirmwareCRC status=0x13");
    EXPECT_EQ(crc(0x08000000, 0, 1), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(calls({"SetTimeOut"}).back(), "SetTimeOut h=1001 ms=5000");
    EXPECT_EQ(job().m_CRCValue, 0u);
}

TEST_F(FlashCRCTest, TheLastTimeLimitsStatusIsTheResultAsItIs) {
    connect(f413);
    library.script("SetTimeOut status=4 nth=2");
    EXPECT_EQ(crc(0x08000000, 0, 1), 4);
    EXPECT_EQ(job().m_CRCValue, 0x12345678u);
}
