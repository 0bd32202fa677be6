#include "tests/operations/OperationsTest.h"

class EraseTest : public OperationsTest {
protected:
    int erase(QList<int> sectors, QList<int> blocks = {}) {
        bootLoader().EraseFlash(EraseParam{sectors, blocks});
        return run();
    }
    // The calls after the protection check.
    Lines erasing() const { return calls({"SetTimeOut", "ZVBL_ERASE", "ZVBL_BLOCK_ERASE"}); }
};

namespace {
const std::string checked = "TARGET_GetUserSystemData h=1001 addr=1FFFF800 len=24\n";
const std::string bank1 = "ZVBL_ERASE h=1001 selector=FFFE sector=null size=0\n";
const std::string bank2 = "ZVBL_ERASE h=1001 selector=FFFD sector=null size=0\n";
const std::string bank3 = "ZVBL_ERASE h=1001 selector=FFFC sector=null size=0\n";
const std::string longTime = "SetTimeOut h=1001 ms=100000\n";
const std::string usualTime = "SetTimeOut h=1001 ms=5000\n";
} // namespace

TEST_F(EraseTest, NothingListedIsTheWholeDevice) {
    connect(f407);
    EXPECT_EQ(erase({}), 0);
    EXPECT_EQ(library.log(), checked + longTime + bank1 + usualTime);
    EXPECT_EQ(events, (Lines{"INIT Erase", "ACTION 0", "ACTION 100", "DONE"}));
    EXPECT_EQ(lastInit.m_emType, OP_ERASE);
}

TEST_F(EraseTest, AboveHalfAMegabyteThereAreTwoBanks) {
    CBootLoader &control = connect(f407);
    control.m_ObDevice->m_IFlashSize = 513;
    EXPECT_EQ(erase({}), 0);
    EXPECT_EQ(library.log(), checked + longTime + bank1 + bank2 + usualTime);
}

TEST_F(EraseTest, Bank3ComesLast) {
    CBootLoader &control = connect(f403a);
    control.m_ObDevice->m_haveBank3 = true;
    EXPECT_EQ(erase({}), 0);
    EXPECT_EQ(library.log(), checked + longTime + bank1 + bank2 + bank3 + usualTime);
}

TEST_F(EraseTest, AFailedBankLeavesTheUsualTimeLimit) {
    CBootLoader &control = connect(f403a);
    control.m_ObDevice->m_haveBank3 = true;
    library.script("ZVBL_ERASE status=5 nth=2\nSetTimeOut status=1 nth=2");
    EXPECT_EQ(erase({}), CResult::COM_READ_FAIL);
    EXPECT_EQ(library.log(), checked + longTime + bank1 + bank2 + usualTime);
    EXPECT_EQ(events, (Lines{"INIT Erase", "ACTION 0", "ABEND"}));
}

TEST_F(EraseTest, OnlyTheLastTimeLimitCounts) {
    connect(f407);
    library.script("SetTimeOut status=4 nth=1");
    EXPECT_EQ(erase({}), 0);
    library.script("SetTimeOut status=4 nth=2");
    EXPECT_EQ(erase({}), CResult::COM_SEND_FAIL);
}

TEST_F(EraseTest, SectorsOneByOneInTheirOrder) {
    connect(f413);
    EXPECT_EQ(erase({3, 0, 32769}), 0);
    EXPECT_EQ(erasing(), (Lines{"ZVBL_ERASE h=1001 selector=1 sector=3 size=2048",
                                "ZVBL_ERASE h=1001 selector=1 sector=0 size=2048",
                                "ZVBL_ERASE h=1001 selector=1 sector=32769 size=2048"}));
    EXPECT_EQ(events, (Lines{"INIT Erase", "ACTION 0", "ACTION 33", "ACTION 66", "ACTION 100", "ACTION 100", "DONE"}));
}

TEST_F(EraseTest, ASectorAbove65535LosesItsUpperBits) {
    connect(f413);
    EXPECT_EQ(erase({0x12345}), 0);
    EXPECT_EQ(erasing(), Lines{"ZVBL_ERASE h=1001 selector=1 sector=9029 size=2048"});
}

TEST_F(EraseTest, PercentDividesFirst) {
    connect(f413);
    QList<int> sectors;
    for (int i = 0; i < 100; ++i)
        sectors.append(i);
    EXPECT_EQ(erase(sectors), 0);
    ASSERT_EQ(events.size(), 104u);
    EXPECT_EQ(events[2 + 28], "ACTION 28") << "29 of 100";
    EXPECT_EQ(events[2 + 99], "ACTION 100");
}

TEST_F(EraseTest, BlocksGoBeforeSectors) {
    connect(f435);
    EXPECT_EQ(erase({40}, {2, 1}), 0);
    EXPECT_EQ(erasing(), (Lines{"ZVBL_BLOCK_ERASE h=1001 selector=FFFB addr=08020000",
                                "ZVBL_BLOCK_ERASE h=1001 selector=FFFB addr=08010000",
                                "ZVBL_ERASE h=1001 selector=1 sector=40 size=4096"}));
    EXPECT_EQ(events, (Lines{"INIT Erase", "ACTION 0", "ACTION 33", "ACTION 66", "ACTION 100", "ACTION 100", "DONE"}));
}

TEST_F(EraseTest, ABlockThatEndsAtSpimIsErasedThoughItExpandsToNothing) {
    connect(f435);
    // Block 63 would end at 0x08400000.
    EXPECT_EQ(erase({}, {63, 70}), 0);
    EXPECT_EQ(erasing(), (Lines{"ZVBL_BLOCK_ERASE h=1001 selector=FFFB addr=083F0000",
                                "ZVBL_BLOCK_ERASE h=1001 selector=FFFB addr=08460000"}));
}

TEST_F(EraseTest, BlocksExpandToSectors) {
    CErase job(nullptr);
    using List = QList<int>;
    EXPECT_EQ(job.GetNecessarySectorIndexFromBlockIndex({1, 0}, 8192, 4096), (List{2, 3, 0, 1}));
    EXPECT_EQ(job.GetNecessarySectorIndexFromBlockIndex({1, 1}, 4096, 2048), (List{2, 3, 2, 3}));
    EXPECT_EQ(job.GetNecessarySectorIndexFromBlockIndex({62}, 0x10000, 4096).size(), 16);
    EXPECT_EQ(job.GetNecessarySectorIndexFromBlockIndex({62}, 0x10000, 4096).last(), 1007);
    EXPECT_EQ(job.GetNecessarySectorIndexFromBlockIndex({63, 64}, 0x10000, 4096), List());
    EXPECT_EQ(job.GetNecessarySectorIndexFromBlockIndex({0}, 0x10000, 0), List());
}

TEST_F(EraseTest, AProtectedSectorIsRefusedBeforeAnythingIsErased) {
    struct {
        const Chip &chip;
        QList<int> sectors, blocks;
    } const cases[] = {{f413, {8, 4}, {}}, {f413, {}, {}}, {f435, {}, {0}}, {f435, {700}, {0}}};
    for (const auto &one : cases) {
        connect(one.chip);
        // EPP byte 0 protects bits 2 and 3.
        library.script("TARGET_GetUserSystemData data=A5FFFFFFF3FFFFFF");
        EXPECT_EQ(erase(one.sectors, one.blocks), CResult::SYS_ERASEPROGRAM_PROTECTION);
        EXPECT_EQ(erasing(), Lines());
    }
}

TEST_F(EraseTest, ANeighbourOfAProtectedSectorIsErased) {
    connect(f413);
    library.script("TARGET_GetUserSystemData data=A5FFFFFFF3FFFFFF");
    EXPECT_EQ(erase({3, 8}), 0);
    EXPECT_EQ(erasing().size(), 2u);
}

TEST_F(EraseTest, ACheckThatCannotBeMadeFailsWithItsOwnCode) {
    connect(f413);
    library.script("TARGET_GetUserSystemData status=5");
    EXPECT_EQ(erase({1}), CResult::COM_READ_FAIL);
    EXPECT_EQ(erasing(), Lines());
}

TEST_F(EraseTest, AFailedUnitEndsTheErase) {
    connect(f435);
    library.script("ZVBL_ERASE status=0x14 nth=2");
    EXPECT_EQ(erase({5, 6, 7}), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(erasing().size(), 2u);
    EXPECT_EQ(events, (Lines{"INIT Erase", "ACTION 0", "ACTION 33", "ABEND"}));
    library.script("ZVBL_BLOCK_ERASE status=0x13");
    abendCode = 0;
    EXPECT_EQ(erase({5}, {1}), CResult::SYS_CMD_NOT_ALLOWED);
}

TEST_F(EraseTest, CancelBetweenUnits) {
    connect(f435);
    onEvent = [&](InfoType) {
        if (events.back() == "ACTION 25")
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(erase({5}, {1, 2, 3}), 0);
    EXPECT_EQ(erasing().size(), 2u) << "the unit that was under way is finished";
    EXPECT_EQ(events, (Lines{"INIT Erase", "ACTION 0", "ACTION 25", "ACTION 25", "CANCEL"}));
}

TEST_F(EraseTest, NoControl) {
    CErase job(nullptr);
    EXPECT_EQ(run(job), CResult::UNKNOWN_ERROR);
}
