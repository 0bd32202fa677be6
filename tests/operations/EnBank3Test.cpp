#include "tests/operations/OperationsTest.h"
#include "usersystemdata/CUserSystemData.h"

class EnBank3Test : public OperationsTest {
protected:
    int enable(EnBank3Param parameters) {
        bootLoader().EnableBank3Func(parameters);
        return runAnew();
    }
    Lines sent() const { return calls({"ZVBL_SPIMREMAP", "ZVBL_EnableBank3"}); }
    static std::string withKeys(const std::string &keys) {
        return "TARGET_GetUserSystemData data=A5FFFFFFFFFFFFFFFFFFFFFFFFFFFFFF" + keys;
    }
};

TEST_F(EnBank3Test, SizeGoesInBytes) {
    connect(f403a);
    EXPECT_EQ(enable({false, false, 0x90, 16384, 0x1000}), 0);
    EXPECT_EQ(sent(), Lines{"ZVBL_EnableBank3 h=1001 type=144 size=16777216 addr=00001000"});
    EXPECT_EQ(events, (Lines{"INIT Enable Bank3", "ACTION 0", "ACTION 100", "DONE"}));
}

TEST_F(EnBank3Test, RemapOnlyWhenNeeded) {
    connect(f403a);
    EXPECT_EQ(enable({true, false, 0x90, 1, 0}), 0);
    EXPECT_EQ(sent().size(), 1u);
    EXPECT_EQ(enable({true, true, 0x90, 1, 0}), 0);
    EXPECT_EQ(sent()[0], "ZVBL_SPIMREMAP h=1001 remap=1");
    EXPECT_EQ(enable({false, true, 0x90, 1, 0}), 0);
    EXPECT_EQ(sent()[0], "ZVBL_SPIMREMAP h=1001 remap=0");
}

TEST_F(EnBank3Test, BlankKeysMeanNoEncryptedRangeOnOneFamily) {
    const struct {
        const Chip &chip;
        const char *keys;
        const char *address;
    } cases[] = {
        {f413, "FFFFFFFFFFFFFFFF", "00000000"},  {f413, "FFFFFFFFFFFFFF00", "00001000"},
        {f413, "00FFFFFFFFFFFFFF", "00001000"},  {f413, "0000000000000000", "00001000"},
        {f403a, "FFFFFFFFFFFFFFFF", "00001000"},
    };
    for (const auto &one : cases) {
        connect(one.chip);
        library.script(withKeys(one.keys));
        EXPECT_EQ(enable({false, false, 0x91, 1, 0x1000}), 0);
        EXPECT_EQ(sent(), Lines{std::string("ZVBL_EnableBank3 h=1001 type=145 size=1024 addr=") + one.address})
            << one.chip.name << " " << one.keys;
    }
}

TEST_F(EnBank3Test, KeysThatCannotBeReadLeaveTheAnswerToTheChip) {
    connect(f413);
    const std::string refused = "TARGET_GetUserSystemData status=0x13\n";
    library.script(refused + "ZVBL_EnableBank3 status=0x13");
    EXPECT_EQ(enable({false, false, 0x90, 1, 0x1000}), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(sent(), Lines{"ZVBL_EnableBank3 h=1001 type=144 size=1024 addr=00001000"});
    library.script(refused);
    EXPECT_EQ(enable({false, false, 0x90, 1, 0x1000}), 0);
}

TEST_F(EnBank3Test, KeysOfAnEarlierReadingNeverDecide) {
    connect(f413);
    library.script(withKeys("FFFFFFFFFFFFFFFF") + " nth=1\nTARGET_GetUserSystemData status=0x13 from=2");
    EXPECT_EQ(bootLoader().GetUserSystemData(), 0);
    EXPECT_EQ(enable({false, false, 0x90, 1, 0x1000}), 0);
    EXPECT_EQ(sent(), Lines{"ZVBL_EnableBank3 h=1001 type=144 size=1024 addr=00001000"});
}

TEST_F(EnBank3Test, OtherFamiliesDoWithoutTheKeys) {
    connect(f403a);
    library.script("TARGET_GetUserSystemData status=0x13");
    EXPECT_EQ(enable({false, false, 0x90, 1, 0x1000}), 0);
    EXPECT_EQ(sent(), Lines{"ZVBL_EnableBank3 h=1001 type=144 size=1024 addr=00001000"});
}

TEST_F(EnBank3Test, Failures) {
    connect(f403a);
    library.script("ZVBL_SPIMREMAP status=0x13");
    EXPECT_EQ(enable({true, true, 0x90, 1, 0}), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(sent().size(), 1u);
    library.script("ZVBL_EnableBank3 status=0x14");
    EXPECT_EQ(enable({true, true, 0x90, 1, 0}), CResult::SYS_CMD_FAIL);
    EXPECT_FALSE(bootLoader().m_ObOperation->IsDone());
}
