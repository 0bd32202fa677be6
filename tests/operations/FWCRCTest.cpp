#include "tests/operations/OperationsTest.h"

class FWCRCTest : public OperationsTest {
protected:
    int check(QList<std::string> paths, QList<uint> addresses = {}) {
        bootLoader().FirmwareCRCCheck(FWCRCParam{paths, addresses, 0});
        return run();
    }
    CFWCRC &job() { return static_cast<CFWCRC &>(*bootLoader().m_ObOperation); }
};

TEST_F(FWCRCTest, OpensAndWalksTheFiles) {
    for (const Chip &chip : {f413, f403_1}) {
        connect(chip);
        events.clear();
        image("element address=08000000\nelement address=08000800");
        EXPECT_EQ(check({path("a.hex"), path("b.bin")}, {0, 0x08001000}), 0);
        EXPECT_EQ(events, (Lines{"INIT Firmware CRC Check------(a.hex)", "ACTION 0",
                                 "INIT Firmware CRC Check------(b.bin)", "ACTION 0", "DONE"}));
        EXPECT_EQ(job().m_strName, "Firmware CRC Check------(b.bin)");
        EXPECT_EQ(lastInit.m_strFilePath, path("b.bin"));
        EXPECT_EQ(lastInit.m_uiFileSize, 4096u);
        EXPECT_EQ(job().m_uiAddressOffset, (QList<uint>{0, 0x1000}));
        EXPECT_EQ(job().m_iAllElementNum, 2);
        EXPECT_EQ(library.log(), "") << "the target is not asked";
    }
}

TEST_F(FWCRCTest, APathWithoutSlashSucceedsWithoutOpeningAnything) {
    connect(f413);
    setenv("FILES_DOUBLE_LOG", path("files.log").c_str(), 1);
    EXPECT_EQ(check({"a.hex"}), 0);
    unsetenv("FILES_DOUBLE_LOG");
    EXPECT_FALSE(std::filesystem::exists(path("files.log")));
    EXPECT_EQ(events, (Lines{"INIT ", "ACTION 0"}));
}

TEST_F(FWCRCTest, ASecondPathWithoutSlashGoesRoundUntilCancelled) {
    connect(f413);
    int rounds = 0;
    onEvent = [&](InfoType type) {
        if (type == INFO_TYPE_ACTION && ++rounds == 20)
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(check({path("a.hex"), "b.hex"}), 0);
    EXPECT_EQ(rounds, 20);
    EXPECT_EQ(std::count(events.begin(), events.end(), "INIT Firmware CRC Check------(a.hex)"), 1)
        << "the second file is not announced";
    EXPECT_EQ(events.back(), "CANCEL");
}

TEST_F(FWCRCTest, NothingIsLeftOutOfTheFiles) {
    connect(f413);
    setenv("FILES_DOUBLE_LOG", path("files.log").c_str(), 1);
    EXPECT_EQ(check({path("a.hex")}), 0);
    unsetenv("FILES_DOUBLE_LOG");
    std::stringstream log;
    log << std::ifstream(path("files.log")).rdbuf();
    EXPECT_NE(log.str().find("operation=2 optimise=0"), std::string::npos) << log.str();
}

TEST_F(FWCRCTest, AnEmptyFileIsRefused) {
    connect(f413);
    image("no-elements");
    EXPECT_EQ(check({path("a.hex")}), CResult::FILES_EMPTY);
    EXPECT_EQ(CResult::GetInfoStringName(abendCode), "File is empty!");
}

TEST_F(FWCRCTest, AFileThatCannotBeOpenedCostsTenTries) {
    connect(f413);
    image("FILES_ImageFromFile status=3");
    EXPECT_EQ(check({path("a.hex")}), CResult::FILES_UNABLETOOPENFILE);
    EXPECT_EQ(calls({"sleep"}), Lines(10, "sleep 1000"));
}

TEST_F(FWCRCTest, AFileOfNoKnownTypeIsRefused) {
    connect(f413);
    EXPECT_EQ(check({path("a.txt")}), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(check({}), CResult::UNKNOWN_ERROR);
}

TEST_F(FWCRCTest, CancelBetweenFiles) {
    connect(f413);
    onEvent = [&](InfoType type) {
        if (type == INFO_TYPE_INIT && events.size() > 2)
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(check({path("a.hex"), path("b.hex"), path("c.hex")}), 0);
    EXPECT_EQ(events.back(), "CANCEL");
    EXPECT_EQ(job().m_strName, "Firmware CRC Check------(b.hex)");
}

TEST_F(FWCRCTest, TheHostComputesNoCrc) {
    CFWCRC crc(nullptr);
    EXPECT_EQ(crc.GetLoadFileCRCCode({1, 2, 3}, 3), 0xFFFFFFFFu);
    EXPECT_EQ(crc.GetLoadFileCRCCode_413({1, 2, 3}, 3), 0u);
}

TEST_F(FWCRCTest, Percent) {
    CFWCRC crc(nullptr);
    crc.CalculatePercent();
    EXPECT_EQ(crc.m_ActionInfo.m_iPercent, 100);
    crc.m_iAllElementNum = 3;
    crc.m_iCurrentElementNum = 1;
    crc.m_iCurrentSzie = 77;
    crc.CalculatePercent();
    EXPECT_EQ(crc.m_ActionInfo.m_iPercent, 33);
    EXPECT_EQ(crc.m_ActionInfo.m_uiFileStatus, 77u);
}
