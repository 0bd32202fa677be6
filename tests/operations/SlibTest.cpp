#include "tests/operations/OperationsTest.h"

class SlibTest : public OperationsTest {
protected:
    int enable(EnableSlibParam record) {
        bootLoader().EnableSlib(record);
        return runAnew();
    }
    int disable(uint password) {
        bootLoader().DisableSlib(password);
        return runAnew();
    }
};

TEST_F(SlibTest, EnableAsksSendsReconnectsReadsBack) {
    connect(f413);
    library.script("ZVBL_GetSlibStatus_Ex enabled=1 start=10 datastart=12 end=20");
    EXPECT_EQ(enable({0x11223344, 10, 12, 20}), 0);
    EXPECT_EQ(library.log(), "ZVBL_GetSlibStatus h=1001\n"
                             "ZVBL_EnableSlib h=1001 password=11223344 start=10 datastart=12 end=20\n" +
                                 reconnected + "ZVBL_GetSlibStatus_Ex h=1001\n");
    EXPECT_EQ(events, (Lines{"INIT Enable sLib", "ACTION 0", "ACTION 100", "DONE"}));
}

TEST_F(SlibTest, TheRecordIsCheckedBeforeAnythingIsSent) {
    connect(f413); // 128 sectors
    const struct {
        const char *what;
        EnableSlibParam record;
        int code;
    } cases[] = {
        {"password 0", {0, 10, 12, 20}, CResult::SLIB_PASSWORD_ERROR},
        {"blank password", {0xFFFFFFFF, 10, 12, 20}, CResult::SLIB_PASSWORD_ERROR},
        {"start after flash", {1, 128, 128, 128}, CResult::SLIB_STARTSECTOR_ERROR},
        {"end after flash", {1, 10, 12, 128}, CResult::SLIB_ENDSECTOR_ERROR},
        {"end before start", {1, 10, 10, 9}, CResult::SLIB_ENDSECTOR_ERROR},
        {"data before start", {1, 10, 9, 20}, CResult::SLIB_STARTDATASECTOR_ERROR},
        {"data after end", {1, 10, 21, 20}, CResult::SLIB_STARTDATASECTOR_ERROR},
    };
    for (const auto &one : cases) {
        EXPECT_EQ(enable(one.record), one.code) << one.what;
        EXPECT_EQ(library.log(), "") << one.what;
    }
}

TEST_F(SlibTest, TheRecordsBorders) {
    connect(f413);
    for (const EnableSlibParam &record : {EnableSlibParam{1, 0, 0, 0}, EnableSlibParam{1, 127, 127, 127},
                                          EnableSlibParam{0xFFFFFFFE, 0, 0xFFFF, 127}}) {
        library.script("ZVBL_GetSlibStatus_Ex enabled=1 start=" + std::to_string(record.m_usStartSector) +
                       " datastart=" + std::to_string(record.m_usStartDataSector) +
                       " end=" + std::to_string(record.m_usEndSector));
        EXPECT_EQ(enable(record), 0) << record.m_usStartSector;
    }
}

TEST_F(SlibTest, EnableFailures) {
    const std::string asAsked = "\nZVBL_GetSlibStatus_Ex enabled=1 start=1 datastart=2 end=3";
    const struct {
        std::string script;
        int code;
        bool sent;
    } cases[] = {
        {"ZVBL_GetSlibStatus enabled=1" + asAsked, CResult::SLIB_HASBEEN_ENABLE_ERROR, false},
        {"ZVBL_GetSlibStatus status=5" + asAsked, CResult::COM_READ_FAIL, false},
        {"ZVBL_EnableSlib status=0x14" + asAsked, CResult::SYS_CMD_FAIL, true},
        {"Interface_Open status=3" + asAsked, CResult::COM_CANT_OPEN_COM, true},
        {"ZVBL_GetSlibStatus_Ex status=5", CResult::COM_READ_FAIL, true},
        {"ZVBL_GetSlibStatus_Ex enabled=0 start=1 datastart=2 end=3", CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING, true},
        {"ZVBL_GetSlibStatus_Ex enabled=1 start=1 datastart=2 end=4", CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING, true},
        {"ZVBL_GetSlibStatus_Ex enabled=1 start=1 datastart=3 end=3", CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING, true},
        {"ZVBL_GetSlibStatus_Ex enabled=1 start=0 datastart=2 end=3", CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING, true},
    };
    connect(f413);
    for (const auto &one : cases) {
        library.script(one.script);
        EXPECT_EQ(enable({7, 1, 2, 3}), one.code) << one.script;
        EXPECT_EQ(calls({"ZVBL_EnableSlib"}).size(), one.sent ? 1u : 0u) << one.script;
    }
}

TEST_F(SlibTest, AChipWithoutSlibIsNotAsked) {
    connect(f413, "none");
    EXPECT_EQ(enable({7, 1, 2, 3}), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(library.log(), "");
    EXPECT_EQ(disable(7), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(library.log(), "");
}

TEST_F(SlibTest, DisableErasesSoItWaits) {
    connect(f413);
    library.script("ZVBL_GetSlibStatus enabled=1 nth=1");
    EXPECT_EQ(disable(0x11223344), 0);
    EXPECT_EQ(library.log(), "ZVBL_GetSlibStatus h=1001\nSetTimeOut h=1001 ms=100000\n"
                             "ZVBL_DisableSlib h=1001 password=11223344\nSetTimeOut h=1001 ms=5000\n" +
                                 reconnected + "ZVBL_GetSlibStatus h=1001\n");
    EXPECT_EQ(events, (Lines{"INIT Disable sLib", "ACTION 0", "ACTION 100", "DONE"}));
}

TEST_F(SlibTest, WithoutAnAreaThereIsNothingToDisable) {
    connect(f413);
    EXPECT_EQ(disable(7), 0);
    EXPECT_EQ(library.log(), "ZVBL_GetSlibStatus h=1001\n");
    EXPECT_EQ(events.back(), "DONE");
}

TEST_F(SlibTest, DisableFailures) {
    const struct {
        const char *script;
        uint password;
        int code;
    } cases[] = {
        {"", 0, CResult::SLIB_DISABLE_PASSWORD_ERROR},
        {"", 0xFFFFFFFF, CResult::SLIB_DISABLE_PASSWORD_ERROR},
        {"ZVBL_GetSlibStatus status=5", 7, CResult::COM_READ_FAIL},
        {"ZVBL_GetSlibStatus enabled=1\nZVBL_DisableSlib status=0x14", 7, CResult::SLIB_DISABLE_PASSWORD_ERROR},
        {"ZVBL_GetSlibStatus enabled=1\nZVBL_DisableSlib status=0x13", 7, CResult::SYS_CMD_NOT_ALLOWED},
        {"ZVBL_GetSlibStatus enabled=1 nth=1\nInterface_Open status=3", 7, CResult::COM_CANT_OPEN_COM},
        {"ZVBL_GetSlibStatus enabled=1", 7, CResult::SLIB_HASBEEN_ENABLE_ERROR},
        {"ZVBL_GetSlibStatus enabled=1 nth=1\nZVBL_GetSlibStatus status=4 nth=2", 7, CResult::COM_SEND_FAIL},
    };
    connect(f413);
    for (const auto &one : cases) {
        library.script(one.script);
        EXPECT_EQ(disable(one.password), one.code) << one.script;
        EXPECT_EQ(events.back(), "ABEND");
    }
}
