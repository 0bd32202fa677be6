#include "files/CFiles.h"
#include "tests/operations/OperationsTest.h"

// Which sectors a download takes its images to touch.

class DownloadSectorsTest : public OperationsTest {
protected:
    // Opens the images, all with the same elements, and lists the sectors.
    QList<int> sectors(const Chip &chip, const std::string &elements, QList<std::string> names,
                       QList<uint> addresses = {}) {
        connect(chip);
        image(elements);
        for (std::string &name : names)
            name = path(name);
        job = std::make_unique<CDownload>(&bootLoader());
        parameters.m_strDownPathFile = names;
        parameters.m_uiStartAddress = addresses;
        job->SetParameters(&parameters);
        EXPECT_EQ(job->OpenFile(), 0);
        EXPECT_EQ(job->ConfirmAddressOffset(), 0);
        return job->GetNecessarySectorIndex();
    }
    void TearDown() override { job.reset(); }

    DownloadParam parameters;
    std::unique_ptr<CDownload> job;
};

using List = QList<int>;

TEST_F(DownloadSectorsTest, AddressToSector) {
    connect(f413);
    CDownload download(&bootLoader());
    const struct {
        uint address;
        int sector;
    } cases[] = {
        {0x08000000, 0},
        {0x080007FF, 0},
        {0x08000800, 1},
        {0x083FFFFF, 2047},
        {0x07FFFFFF, -1},
        {0, -1},
        {0x08400000, 32768},
        {0x08400FFF, 32768},
        {0x08401000, 32769},
        // From here up the offset is negative as a signed number, and is divided toward zero.
        {0x88400000, 32768 - 524288},
        {0x88400001, 32768 - 524287},
    };
    for (const auto &one : cases) {
        EXPECT_EQ(download.FlashGetSectorIndex(one.address, 0), one.sector) << std::hex << one.address;
        EXPECT_EQ(download.FlashGetSectorIndex(one.address, 999), one.sector) << "the size plays no part";
    }
}

TEST_F(DownloadSectorsTest, HexByItsElements) {
    EXPECT_EQ(sectors(f413, "element address=08000800\nelement address=08001000", {"a.hex"}), (List{1, 2}));
}

TEST_F(DownloadSectorsTest, HexInSpim) {
    EXPECT_EQ(sectors(f413, "element address=08400000 length=4096\nelement address=08401000 length=4096", {"a.hex"}),
              (List{32768, 32769}));
}

TEST_F(DownloadSectorsTest, HighAddressesFirstStayFirst) {
    EXPECT_EQ(sectors(f413, "element address=08008000\nelement address=08000000", {"a.s19"}), (List{16, 0}));
}

TEST_F(DownloadSectorsTest, TwoElementsInOneSectorCountOnceAtTheFirstPlace) {
    EXPECT_EQ(sectors(f413,
                      "element address=08000800 length=16\nelement address=08000000 length=16\n"
                      "element address=08000900 length=16",
                      {"a.hex"}),
              (List{1, 0}));
}

TEST_F(DownloadSectorsTest, TwoFilesShareTheirSectors) {
    EXPECT_EQ(sectors(f413, "element address=08000800", {"a.hex", "b.hex"}), List{1});
}

TEST_F(DownloadSectorsTest, BinaryCountsElementsFromTheStartAddress) {
    EXPECT_EQ(sectors(f413, "element address=08000000\nelement address=08001000\nelement address=08008000", {"a.bin"},
                      {0x08001000}),
              (List{2, 3, 4}));
    EXPECT_EQ(job->m_uiAddressOffset, QList<uint>{0x1000});
}

TEST_F(DownloadSectorsTest, BinaryBelowFlashStartsWithMinusOne) {
    EXPECT_EQ(sectors(f413, "element address=08000000\nelement address=08000800", {"a.bin"}, {0x07FFF000}),
              (List{-1, 0}));
    EXPECT_EQ(job->m_uiAddressOffset, QList<uint>{0xFFFFF000});
}

TEST_F(DownloadSectorsTest, BinaryInSpimGoesByItsElements) {
    EXPECT_EQ(sectors(f413, "element address=08000000\nelement address=08002000", {"a.bin"}, {0x08400000}),
              (List{32768, 32770}));
}

TEST_F(DownloadSectorsTest, AnElementThatTheOffsetDoesNotLeadToSpimCountsWithoutIt) {
    EXPECT_EQ(sectors(f413, "element address=08001000\nelement address=08000800", {"a.bin"}, {0x08400000}),
              (List{32768, 1}));
}

TEST_F(DownloadSectorsTest, TheLastAddressOfFlashIsNotSpim) {
    EXPECT_EQ(
        sectors(f413, "element address=08000000 length=16\nelement address=07FFFFFF length=1", {"a.bin"}, {0x08400000}),
        (List{32768, -1}));
}

TEST_F(DownloadSectorsTest, BinaryInSpimAddsWithoutWrap) {
    // The offset is 0x00400000 below the first element, so 2^32 less it; the sum keeps its upper bits.
    EXPECT_EQ(sectors(f413, "element address=08800000 length=16\nelement address=08801000 length=16", {"a.bin"},
                      {0x08400000}),
              (List{32768, 32769}));
    EXPECT_EQ(job->m_uiAddressOffset, QList<uint>{0xFFC00000});
}

TEST_F(DownloadSectorsTest, HexAndSRecordIgnoreTheStartAddress) {
    for (const char *name : {"a.hex", "a.s19", "a.srec"}) {
        EXPECT_EQ(sectors(f413, "element address=08000800", {name}, {0x08010000}), List{1}) << name;
        EXPECT_EQ(job->m_uiAddressOffset, QList<uint>{0}) << name;
    }
}

TEST_F(DownloadSectorsTest, ASerialNumberAddsItsSector) {
    parameters.m_bWriteSN = true;
    parameters.m_uiSNAddress = 0x0800F800;
    EXPECT_EQ(sectors(f413, "element address=08000000", {"a.hex"}), (List{0, 31}));
}

TEST_F(DownloadSectorsTest, NoFilesNoSectors) {
    connect(f413);
    CDownload download(&bootLoader());
    EXPECT_EQ(download.GetNecessarySectorIndex(), List());
    EXPECT_EQ(download.ConfirmAddressOffset(), CResult::UNKNOWN_ERROR);
}

TEST_F(DownloadSectorsTest, NoMapNoSectors) {
    sectors(f413, "", {"a.hex"});
    CMapping *map = bootLoader().m_ObDevice->m_CMapping;
    bootLoader().m_ObDevice->m_CMapping = nullptr;
    EXPECT_EQ(job->GetNecessarySectorIndex(), List());
    bootLoader().m_ObDevice->m_CMapping = map;
}

TEST_F(DownloadSectorsTest, TheCursorIsRewound) {
    sectors(f413, "element address=08000000\nelement address=08000800", {"a.hex"});
    EXPECT_EQ(job->m_lsProgramFile.first()->GetElement()->dwAddress, 0x08000000u);
    EXPECT_EQ(job->m_lsProgramFile.first()->m_uiFileStatus, 2048u);
}

TEST_F(DownloadSectorsTest, TheBlockListsOfTheCallerStayAsTheyAre) {
    connect(f435);
    CDownload download(&bootLoader());
    QList<int> whole;
    for (int i = 0; i < 16; ++i)
        whole.append(i);
    for (const QList<int> &asked : {whole, QList<int>{1}}) {
        QList<int> outSectors, outBlocks;
        download.GetNecessaryBlockIndexAndSectorIndex(asked, outSectors, outBlocks, 0x10000, 4096);
        EXPECT_TRUE(outSectors.isEmpty());
        EXPECT_TRUE(outBlocks.isEmpty());
    }
}
