#include "tests/operations/ProjectTest.h"

using List = QList<int>;

class ProjectPartsTest : public ProjectTest {};

TEST_F(ProjectPartsTest, Chunks) {
    connect(f413);
    const struct {
        uint size;
        Lines lengths;
    } cases[] = {{1, {"1"}}, {1024, {"1024"}}, {1025, {"1024", "1"}}, {3000, {"1024", "1024", "952"}}};
    for (const auto &one : cases) {
        EXPECT_EQ(download({file({part(0x08000010, one.size)})}), 0);
        const Lines sent = calls({"ZVBL_DNLOAD"});
        ASSERT_EQ(sent.size(), one.lengths.size()) << one.size;
        for (std::size_t i = 0; i < sent.size(); ++i) {
            EXPECT_NE(sent[i].find(" len=" + one.lengths[i] + " "), std::string::npos) << sent[i];
            const QString expected = QString("%1").arg(0x08000010 + 1024 * i, 8, 16, QChar('0'));
            EXPECT_EQ(address(sent[i]), expected.toUpper().toStdString());
        }
    }
    EXPECT_EQ(download({file({part(0x08000000, 65536)})}), 0);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}).size(), 64u);
}

TEST_F(ProjectPartsTest, TheChunksCarryTheirBytes) {
    connect(f413);
    HEXFILEPARTINFO one = part(0x08000000, 1028);
    for (BYTE i = 0; i < 4; ++i)
        one.pData[1024 + i] = i;
    EXPECT_EQ(download({file({one})}), 0);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"})[1], "ZVBL_DNLOAD h=1001 addr=08000400 len=4 data=00010203 optimise=0");
}

TEST_F(ProjectPartsTest, PartsToSectors) {
    connect(f413);
    EXPECT_EQ(sectors({part(0x08000000 + 2048 - 16, 32)}), (List{0, 1})) << "across a border";
    EXPECT_EQ(sectors({part(0x08000800, 2048)}), List{1});
    EXPECT_EQ(sectors({part(0x08000800, 2049)}), (List{1, 2}));
    EXPECT_EQ(sectors({part(0x08400000, 16)}), List{32768});
    EXPECT_EQ(sectors({part(0x08401000, 4097)}), (List{32769, 32770}));
    EXPECT_EQ(sectors({part(0x1FFFFFF0, 16)}).size(), 1) << "the last below RAM";
    EXPECT_EQ(sectors({part(0x20000000, 16)}), List());
    EXPECT_EQ(sectors({part(0x08000000, 16), part(0x08000100, 16), part(0x08000800, 4)}), (List{0, 0, 1}))
        << "a shared sector stands twice";
}

TEST_F(ProjectPartsTest, AddressToSector) {
    connect(f413);
    CDownloadProject project(&bootLoader());
    EXPECT_EQ(project.FlashGetSectorIndex(0x08000800, 0), 1);
    EXPECT_EQ(project.FlashGetSectorIndex(0x07FFFFFF, 0), -1);
    EXPECT_EQ(project.FlashGetSectorIndex(0x08401000, 999), 32769);
}

TEST_F(ProjectPartsTest, ASharedSectorIsErasedTwice) {
    connect(f413);
    EXPECT_EQ(download({file({part(0x08000000, 16), part(0x08000100, 16)})}), 0);
    EXPECT_EQ(calls({"ZVBL_ERASE"}), Lines(2, "ZVBL_ERASE h=1001 selector=1 sector=0 size=2048"));
}

TEST_F(ProjectPartsTest, APartThatClaimsMoreThanItHoldsIsRefused) {
    connect(f413);
    EXPECT_EQ(download({file({part(0x08000000, 65537)})}), CResult::PROGRAM_INPUT_PARAMS_ERROR);
    EXPECT_EQ(library.log(), "");
}

TEST_F(ProjectPartsTest, NothingToWrite) {
    connect(f413);
    EXPECT_EQ(download({file({part(0x20000000, 16)})}), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(calls({"ZVBL_ERASE", "ZVBL_DNLOAD"}), Lines());
    EXPECT_EQ(download({}), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(events, Lines{"ABEND"});
}

TEST_F(ProjectPartsTest, CancelBetweenChunks) {
    connect(f413);
    onEvent = [&](InfoType) {
        if (calls({"ZVBL_DNLOAD"}).size() == 2)
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(download({file({part(0x08000000, 8192)})}), 0);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}).size(), 2u);
    EXPECT_EQ(events.back(), "CANCEL");
}
