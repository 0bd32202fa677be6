#include "tests/operations/OperationsTest.h"

namespace {

const std::string optionBytesRead = "TARGET_GetUserSystemData h=1001 addr=1FFFF800 len=24\n";
const std::string isProtected = "TARGET_GetUserSystemData data=00";
const std::string isOpen = "TARGET_GetUserSystemData data=A5";

} // namespace

class ProtectionTest : public OperationsTest {
protected:
    int protectAccess(BYTE level) {
        bootLoader().AccessProtect(level);
        return runAnew();
    }
    int unprotectAccess() {
        bootLoader().ReadoutUnProtect();
        return runAnew();
    }
    int protectSectors(QList<int> sectors) {
        bootLoader().EraseProgramProtect(sectors);
        return runAnew();
    }
    int unprotectSectors() {
        bootLoader().WriteUnProtect();
        return runAnew();
    }
    // Option bytes of layout A before and after the restart.
    static std::string epp(const std::string &before, const std::string &after) {
        return "TARGET_GetUserSystemData data=A5FFFFFF" + before + " nth=1\nTARGET_GetUserSystemData data=A5FFFFFF" +
               after + " from=2";
    }
    Lines bits() const { return calls({"ZVBL_ERASEPROGRAM_PROTECT"}); }
};

TEST_F(ProtectionTest, AccessOnReconnectsAndReadsBack) {
    connect(f413);
    library.script(isProtected);
    EXPECT_EQ(protectAccess(0), 0);
    EXPECT_EQ(library.log(), "ZVBL_ACCESS_PROTECT h=1001\n" + reconnected + optionBytesRead);
    EXPECT_EQ(events, (Lines{"INIT Enable access protection", "ACTION 0", "ACTION 100", "DONE"}));
}

TEST_F(ProtectionTest, TheCapabilityRecordChoosesTheCommand) {
    const struct {
        BYTE level;
        const char *capabilities;
        int code;
        const char *sent;
    } cases[] = {
        {0, "all", 0, "ZVBL_ACCESS_PROTECT h=1001"},
        {1, "all", 0, "ZVBL_ACCESS_PROTECT_LEVEL h=1001 level=1"},
        {2, "all", 0, "ZVBL_ACCESS_PROTECT_LEVEL h=1001 level=2"},
        {1, "all,-ACCESS_LEVEL_PROTECT_CMD", 0, "ZVBL_ACCESS_PROTECT h=1001"},
        {2, "all,-ACCESS_LEVEL_PROTECT_CMD", CResult::SYS_CMD_NOT_ALLOWED, nullptr},
        {0, "all,-ACCESS_PROTECT_CMD", 0, "ZVBL_ACCESS_PROTECT_LEVEL h=1001 level=1"},
        {0, "none", CResult::SYS_CMD_NOT_ALLOWED, nullptr},
        {3, "all", CResult::PROGRAM_INPUT_PARAMS_ERROR, nullptr},
    };
    for (const auto &one : cases) {
        connect(f413, one.capabilities);
        library.script(isProtected);
        EXPECT_EQ(protectAccess(one.level), one.code) << int(one.level) << " " << one.capabilities;
        EXPECT_EQ(calls({"ZVBL_ACCESS_PROTECT", "ZVBL_ACCESS_PROTECT_LEVEL"}), one.sent ? Lines{one.sent} : Lines());
        if (!one.sent)
            EXPECT_EQ(library.log(), "") << "nothing is sent";
    }
}

TEST_F(ProtectionTest, ARefusedReadIsAProtectedChip) {
    connect(f413);
    library.script("TARGET_GetUserSystemData status=0x13");
    EXPECT_EQ(protectAccess(1), 0);
    EXPECT_EQ(events.back(), "DONE");
}

TEST_F(ProtectionTest, AccessOnFailures) {
    connect(f413);
    const struct {
        const char *script;
        int code;
        const char *what;
    } cases[] = {
        {"ZVBL_ACCESS_PROTECT status=0x13", CResult::SYS_CMD_NOT_ALLOWED, "refused"},
        {"ZVBL_ACCESS_PROTECT status=5", CResult::COM_READ_FAIL, "no answer"},
        {"Interface_Open status=3", CResult::COM_CANT_OPEN_COM, "the port does not come back"},
        {"ZVBL_Init_BL status=0x11", CResult::SYS_CANT_INIT_BL, "the chip does not come back"},
        {"TARGET_GetUserSystemData status=5", CResult::COM_READ_FAIL, "the status cannot be read"},
        {isOpen.c_str(), CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING, "the chip says that it is open"},
    };
    for (const auto &one : cases) {
        library.script(one.script);
        EXPECT_EQ(protectAccess(0), one.code) << one.what;
        EXPECT_EQ(events.back(), "ABEND") << one.what;
    }
}

TEST_F(ProtectionTest, AccessOffWaitsForTheErase) {
    connect(f413);
    g_shareParameter.c_timeout = 9;
    library.script(isOpen);
    EXPECT_EQ(unprotectAccess(), 0);
    EXPECT_EQ(library.log(), "SetTimeOut h=1001 ms=100000\nZVBL_ACCESS_PERM_UNPROTECT h=1001\n"
                             "SetTimeOut h=1001 ms=9000\n" +
                                 reconnected + optionBytesRead);
    EXPECT_EQ(events, (Lines{"INIT Disable access protection", "ACTION 0", "ACTION 100", "DONE"}));
}

TEST_F(ProtectionTest, AccessOffFailures) {
    connect(f413);
    const struct {
        const char *script;
        int code;
    } cases[] = {
        {"ZVBL_ACCESS_PERM_UNPROTECT status=0x13", CResult::SYS_CMD_NOT_ALLOWED},
        {"Interface_Open status=3", CResult::COM_CANT_OPEN_COM},
        {"TARGET_GetUserSystemData status=4", CResult::COM_SEND_FAIL},
        {"TARGET_GetUserSystemData status=0x13", CResult::SYS_ACCESS_PROTECTION},
        {isProtected.c_str(), CResult::SYS_ACCESS_PROTECTION},
    };
    for (const auto &one : cases) {
        library.script(one.script);
        EXPECT_EQ(unprotectAccess(), one.code) << one.script;
        EXPECT_EQ(calls({"SetTimeOut"}).back(), "SetTimeOut h=1001 ms=5000") << one.script;
        EXPECT_EQ(events.back(), "ABEND");
    }
}

TEST_F(ProtectionTest, SectorsOnSendsBitsAndReadsBack) {
    connect(f413);
    library.script(epp("FFFFFFFF", "FCFFFFFF"));
    EXPECT_EQ(protectSectors({0, 1, 2, 3}), 0);
    EXPECT_EQ(library.log(),
              optionBytesRead + "ZVBL_ERASEPROGRAM_PROTECT h=1001 count=2 bits=0,1\n" + reconnected + optionBytesRead);
    EXPECT_EQ(events, (Lines{"INIT Enable erase and program protection", "ACTION 0", "ACTION 100", "DONE"}));
}

TEST_F(ProtectionTest, SectorsOnAddsToTheBitsThatAreClear) {
    connect(f413);
    library.script(epp("FFFDFFFF", "FEFDFFFF"));
    EXPECT_EQ(protectSectors({1}), 0);
    EXPECT_EQ(bits(), Lines{"ZVBL_ERASEPROGRAM_PROTECT h=1001 count=2 bits=0,9"});
}

TEST_F(ProtectionTest, SectorsOnCoversWhatWasAsked) {
    const struct {
        const char *what;
        const Chip &chip;
        QList<int> sectors;
        const char *bits;
    } cases[] = {
        {"one group", f413, {5}, "count=1 bits=2"},
        {"unsorted, each bit once", f413, {5, 0, 4}, "count=2 bits=0,2"},
        {"bits 30 and 31", f403a, {61, 62}, "count=2 bits=30,31"},
        {"after the first sectors of bit 31", f403a, {100, 511}, "count=1 bits=31"},
        {"SPIM", f413, {32768, 40000}, "count=1 bits=31"},
    };
    for (const auto &one : cases) {
        connect(one.chip);
        library.script(epp("FFFFFFFF", "00000000"));
        EXPECT_EQ(protectSectors(one.sectors), 0) << one.what;
        EXPECT_EQ(bits(), Lines{std::string("ZVBL_ERASEPROGRAM_PROTECT h=1001 ") + one.bits}) << one.what;
    }
}

TEST_F(ProtectionTest, AnEmptyListIsTheWholeFlash) {
    connect(f407);
    library.script(epp("FFFFFFFF", "00000000"));
    EXPECT_EQ(protectSectors({}), 0);
    EXPECT_EQ(bits(), Lines{"ZVBL_ERASEPROGRAM_PROTECT h=1001 count=32 bits=0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,"
                            "16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31"});
}

TEST_F(ProtectionTest, TheLongLayoutCountsOtherwiseAfter128Kb) {
    connect(f435);
    library.script("TARGET_GetUserSystemData data=A5FFFFFF fill=FF nth=1\n"
                   "TARGET_GetUserSystemData data=A5FFFFFF fill=00 from=2");
    EXPECT_EQ(protectSectors({31, 32, 63, 64}), 0);
    EXPECT_EQ(bits(), Lines{"ZVBL_ERASEPROGRAM_PROTECT h=1001 count=3 bits=31,32,33"});
}

TEST_F(ProtectionTest, ASectorThatNoBitCoversIsRefusedBeforeAnythingIsSent) {
    const struct {
        const Chip &chip;
        QList<int> sectors;
    } cases[] = {{f413, {0, 128}}, {f413, {-1}}, {f435, {1008}}, {f435, {32768}}};
    for (const auto &one : cases) {
        connect(one.chip);
        EXPECT_EQ(protectSectors(one.sectors), CResult::PROGRAM_INPUT_PARAMS_ERROR) << one.sectors.last();
        EXPECT_EQ(bits(), Lines());
    }
}

TEST_F(ProtectionTest, SectorsOnFailures) {
    connect(f413);
    const struct {
        std::string script;
        int code;
        bool sent;
    } cases[] = {
        {"TARGET_GetUserSystemData status=0x13", CResult::SYS_ACCESS_PROTECTION, false},
        {"TARGET_GetUserSystemData status=0x14", CResult::SYS_ACCESS_PROTECTION, false},
        {"TARGET_GetUserSystemData status=5", CResult::COM_READ_FAIL, false},
        {"ZVBL_ERASEPROGRAM_PROTECT status=0x14", CResult::SYS_CMD_FAIL, true},
        {"Interface_Open status=3", CResult::COM_CANT_OPEN_COM, true},
        {"TARGET_GetUserSystemData status=5 nth=2", CResult::COM_READ_FAIL, true},
        {epp("FFFFFFFF", "FEFFFFFF"), CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING, true}, // only one of the two
    };
    for (const auto &one : cases) {
        library.script(one.script);
        EXPECT_EQ(protectSectors({0, 2}), one.code) << one.script;
        EXPECT_EQ(bits().size(), one.sent ? 1u : 0u) << one.script;
    }
}

TEST_F(ProtectionTest, SectorsOffReadsBack) {
    connect(f413);
    library.script("TARGET_GetUserSystemData data=A5FFFFFFFFFFFFFF");
    EXPECT_EQ(unprotectSectors(), 0);
    EXPECT_EQ(library.log(), "ZVBL_ERASEPROGRAM_PERM_UNPROTECT h=1001\n" + reconnected + optionBytesRead);
    EXPECT_EQ(events, (Lines{"INIT Disable erase and program protection", "ACTION 0", "ACTION 100", "DONE"}));
}

TEST_F(ProtectionTest, SectorsOffFailures) {
    connect(f413);
    const struct {
        const char *script;
        int code;
    } cases[] = {
        {"ZVBL_ERASEPROGRAM_PERM_UNPROTECT status=0x13", CResult::SYS_CMD_NOT_ALLOWED},
        {"Interface_Open status=3", CResult::COM_CANT_OPEN_COM},
        {"TARGET_GetUserSystemData status=5", CResult::COM_READ_FAIL},
        {"TARGET_GetUserSystemData data=A5FFFFFFFFFFFF7F", CResult::SYS_ERASEPROGRAM_PROTECTION}, // SPIM is left
        {"TARGET_GetUserSystemData data=A5FFFFFFFFFEFFFF", CResult::SYS_ERASEPROGRAM_PROTECTION},
    };
    for (const auto &one : cases) {
        library.script(one.script);
        EXPECT_EQ(unprotectSectors(), one.code) << one.script;
    }
}

TEST_F(ProtectionTest, BitsOfNoSectorDoNotCount) {
    const Chip f415{"ZV32F415_32K", "700301C5", "05", "01C5700305", 1024, 32, 2};
    connect(f415);
    // 16 bits for 32 sectors; the upper half of the array covers nothing but SPIM at its very end.
    library.script("TARGET_GetUserSystemData data=A5FFFFFFFFFF007F nth=1\n"
                   "TARGET_GetUserSystemData data=A5FFFFFFFFFF00FF from=2");
    EXPECT_EQ(unprotectSectors(), CResult::SYS_ERASEPROGRAM_PROTECTION);
    EXPECT_EQ(unprotectSectors(), 0);
}

TEST_F(ProtectionTest, NoControl) {
    CAccessProtect on(nullptr);
    CAccessUnProtect off(nullptr);
    CEraseProgramProtect eppOn(nullptr);
    CEraseProgramUnProtect eppOff(nullptr);
    for (COperation *job : {static_cast<COperation *>(&on), static_cast<COperation *>(&off),
                            static_cast<COperation *>(&eppOn), static_cast<COperation *>(&eppOff)})
        EXPECT_EQ(run(*job), CResult::UNKNOWN_ERROR);
}
