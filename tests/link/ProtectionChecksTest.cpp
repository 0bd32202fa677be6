#include "tests/link/LinkTest.h"

namespace {

const std::string optionBytesRead = "TARGET_GetUserSystemData h=1001 addr=1FFFF800 len=24\n";
constexpr int firstSpim = 32768;

} // namespace

class ProtectionChecksTest : public LinkTest {
protected:
    void SetUp() override {
        writeUsualMap();
        identified();
    }
    // The option bytes of a 24-byte layout with these four protection bytes.
    void protectBits(const std::string &epp) { library.script("TARGET_GetUserSystemData data=A5FFFFFF" + epp); }
    int check(const QList<int> &sectors) { return bootLoader().HasBeenEraseProgramProtect(sectors); }
};

TEST_F(ProtectionChecksTest, AccessProtectionByTheFirstOptionByte) {
    const std::pair<const char *, bool> cases[] = {{"A5", false}, {"CC", true}, {"FF", true}, {"00", true}};
    for (const auto &[byte, isProtected] : cases) {
        library.clearLog();
        library.script(std::string("TARGET_GetUserSystemData data=") + byte);
        bool answer = !isProtected;
        EXPECT_EQ(bootLoader().GetAccessProtectiosStatus(&answer), CResult::SUCCESS);
        EXPECT_EQ(answer, isProtected) << byte;
        EXPECT_EQ(library.log(), optionBytesRead);
    }
    EXPECT_EQ(bootLoader().m_ObUserSystemData, nullptr) << "the check keeps nothing";
}

TEST_F(ProtectionChecksTest, ARefusedReadIsAProtectedChip) {
    for (const char *status : {"0x13", "0x14"}) {
        library.script(std::string("TARGET_GetUserSystemData status=") + status);
        bool answer = false;
        EXPECT_EQ(bootLoader().GetAccessProtectiosStatus(&answer), CResult::SUCCESS);
        EXPECT_TRUE(answer);
        EXPECT_EQ(check({0}), CResult::SYS_ACCESS_PROTECTION);
        EXPECT_EQ(check({}), CResult::SYS_ACCESS_PROTECTION);
    }
}

TEST_F(ProtectionChecksTest, ACheckThatCannotBeMadeIsNeverUnprotected) {
    const std::pair<const char *, int> cases[] = {{"1", CResult::COM_NOT_OPENED},
                                                  {"4", CResult::COM_SEND_FAIL},
                                                  {"5", CResult::COM_READ_FAIL},
                                                  {"2", CResult::UNKNOWN_ERROR}};
    for (const auto &[status, code] : cases) {
        library.script(std::string("TARGET_GetUserSystemData status=") + status);
        bool answer = false;
        EXPECT_EQ(bootLoader().GetAccessProtectiosStatus(&answer), code);
        EXPECT_TRUE(answer);
        EXPECT_EQ(check({0}), code);
        EXPECT_EQ(check({}), code);
    }
    EXPECT_EQ(bootLoader().GetAccessProtectiosStatus(nullptr), CResult::PROGRAM_INPUT_PARAMS_ERROR);
}

TEST_F(ProtectionChecksTest, WithoutADeviceTheFlashSizeRegisterTells) {
    bootLoader().m_ObDevice = nullptr;
    bool answer = true;
    EXPECT_EQ(bootLoader().GetAccessProtectiosStatus(&answer), CResult::SUCCESS);
    EXPECT_FALSE(answer);
    EXPECT_EQ(library.log(), "ZVBL_GET_ID h=1001 id=null\nZVBL_GET_ID h=1001 id=buffer\n"
                             "TARGET_GetFlashSize h=1001 addr=1FFFF7E0\n");
    library.script("TARGET_GetFlashSize status=0x13");
    EXPECT_EQ(bootLoader().GetAccessProtectiosStatus(&answer), CResult::SUCCESS);
    EXPECT_TRUE(answer);
    EXPECT_FALSE(bootLoader().HasInitDevice());
}

TEST_F(ProtectionChecksTest, WithoutADeviceAFailureIsNeverUnprotected) {
    bootLoader().m_ObDevice = nullptr;
    const std::pair<const char *, int> cases[] = {{"TARGET_GetFlashSize status=5", CResult::COM_READ_FAIL},
                                                  {"ZVBL_GET_ID status=4", CResult::COM_SEND_FAIL},
                                                  {"ZVBL_GET_ID id=010203", CResult::COM_READ_FAIL},
                                                  {"ZVBL_GET_ID id=0000000000", CResult::SYS_UNREOGNIZED_DEVICE}};
    for (const auto &[script, code] : cases) {
        library.script(script);
        bool answer = false;
        EXPECT_EQ(bootLoader().GetAccessProtectiosStatus(&answer), code) << script;
        EXPECT_TRUE(answer);
    }
    library.clearLog();
    EXPECT_EQ(check({0}), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(library.log(), "");
}

TEST_F(ProtectionChecksTest, NothingIsProtectedByErasedBits) {
    EXPECT_EQ(check({0, 1, 511, firstSpim, firstSpim + 4095}), CResult::SUCCESS);
    EXPECT_EQ(check({}), CResult::SUCCESS);
    EXPECT_EQ(library.log(), optionBytesRead + optionBytesRead);
    EXPECT_EQ(bootLoader().m_ObUserSystemData, nullptr) << "the check keeps nothing";
}

TEST_F(ProtectionChecksTest, ASectorIsProtectedAndItsNeighboursAreNot) {
    protectBits("FDFFFFFF"); // bit 1: sectors 2 and 3
    for (const int sector : {2, 3})
        EXPECT_EQ(check({sector}), CResult::SYS_ERASEPROGRAM_PROTECTION) << sector;
    EXPECT_EQ(check({0, 1, 4, 5, 511, firstSpim}), CResult::SUCCESS);
    EXPECT_EQ(check({0, 1, 2}), CResult::SYS_ERASEPROGRAM_PROTECTION) << "one is enough";
    EXPECT_EQ(check({}), CResult::SYS_ERASEPROGRAM_PROTECTION);
}

TEST_F(ProtectionChecksTest, TheLastBitStandsForTheRestOfTheFlashAndTheSpim) {
    protectBits("FFFFFF7F");
    EXPECT_EQ(check({61}), CResult::SUCCESS);
    for (const int sector : {62, 63, 511, firstSpim, 40000})
        EXPECT_EQ(check({sector}), CResult::SYS_ERASEPROGRAM_PROTECTION) << sector;
}

TEST_F(ProtectionChecksTest, TheWholeDeviceHasASpimOnlyWhereOneIsEnabled) {
    writeMap("ZV32F415_32K", "70030085", "05", 1024, 32, 2); // 16 bits used: the last one is the SPIM's alone
    identified("ZVBL_GET_ID id=0085700305\nZVBL_GET_VER_ROPS bid=46 res=01");
    protectBits("FFFFFF7F");
    EXPECT_EQ(check({}), CResult::SUCCESS);
    EXPECT_EQ(check({firstSpim}), CResult::SYS_ERASEPROGRAM_PROTECTION);
    bootLoader().m_ObDevice->m_haveBank3 = true;
    EXPECT_EQ(check({}), CResult::SYS_ERASEPROGRAM_PROTECTION);
    bootLoader().m_ObDevice->m_haveBank3 = false;
    protectBits("FFFF00FF"); // bits of no sector
    EXPECT_EQ(check({}), CResult::SUCCESS);
}

TEST_F(ProtectionChecksTest, TwentyBytesOfBits) {
    writeMap("ZV32F435_4032K", "70084540", "0D", 4096, 1008, 1);
    identified("ZVBL_GET_ID id=454070080D");
    bootLoader().m_ObDevice->m_haveBank3 = true;
    library.script("TARGET_GetUserSystemData data=A5FFFFFFFFFFFFFFFFFFFE"); // bit 32: the second 128 KB
    EXPECT_EQ(check({31, 64, 1007, firstSpim}), CResult::SUCCESS);
    for (const int sector : {32, 63})
        EXPECT_EQ(check({sector}), CResult::SYS_ERASEPROGRAM_PROTECTION) << sector;
    library.script("TARGET_GetUserSystemData data=A5FFFFFFFFFFFF7F"); // bit 31 is sector 31, and no SPIM
    EXPECT_EQ(check({31}), CResult::SYS_ERASEPROGRAM_PROTECTION);
    EXPECT_EQ(check({30, 32, firstSpim}), CResult::SUCCESS);
}

TEST_F(ProtectionChecksTest, WithoutASectorTableAnyClearBitCounts) {
    writeMap("ZV32F403A_512K", "700502C7", "07", 2048, 256, 2);
    std::filesystem::rename("Map/ZV32F403A_512K.ZVmap", "Map/other.ZVmap"); // matches and is not the target's own
    identified("ZVBL_GET_ID id=02C7700507");
    EXPECT_EQ(check({}), CResult::SUCCESS);
    EXPECT_EQ(check({5}), CResult::SUCCESS);
    protectBits("FFFFBFFF");
    EXPECT_EQ(check({}), CResult::SYS_ERASEPROGRAM_PROTECTION);
    EXPECT_EQ(check({5}), CResult::SYS_ERASEPROGRAM_PROTECTION);
}

TEST_F(ProtectionChecksTest, RemovingAccessProtectionWaitsLongAndReconnects) {
    EXPECT_EQ(bootLoader().ReadoutUnProtectNoThread(), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "SetTimeOut h=1001 ms=100000\nZVBL_ACCESS_PERM_UNPROTECT h=1001\n"
                             "SetTimeOut h=1001 ms=5000\nInterface_Close h=1001\nsleep 2000\nInterface_Open h=1001\n"
                             "sleep 100\nZVBL_Init_BL h=1001 addr=0 rate=0 duty=0\nZVBL_ZV32ISP_TOOL h=1001\n"
                             "ZVBL_GET h=1001\n");
}

TEST_F(ProtectionChecksTest, ARefusedRemovalDoesNotReconnect) {
    library.script("ZVBL_ACCESS_PERM_UNPROTECT status=0x14");
    EXPECT_EQ(bootLoader().ReadoutUnProtectNoThread(), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(library.log(), "SetTimeOut h=1001 ms=100000\nZVBL_ACCESS_PERM_UNPROTECT h=1001\n"
                             "SetTimeOut h=1001 ms=5000\n");
}
