#include "device/Device.h"

#include <QDir>

#include "ModelTest.h"

namespace {

std::string mapFile(const std::string &pid, const std::string &serial, const std::string &name,
                    const std::string &size = "800", const std::string &sectorsPerBit = "2") {
    return "[Product]\nPID=" + pid + "\nSerial=" + serial + "\nName=" + name + "\nSectorsPerSector=" + sectorsPerBit +
           "\n[Sector0]\nSize=" + size + "\n";
}

TEST(Device, ABareDescriptionIsZeroAndEmpty) {
    const CDevice device;
    EXPECT_EQ(device.m_CMapping, nullptr);
    EXPECT_EQ(device.m_StrPID + device.m_StrSerial + device.m_StrBID + device.m_StrName + device.m_StrTarget, "");
    EXPECT_EQ(device.m_IFlashSize, 0);
    EXPECT_EQ(device.m_ISectorSize, 0u);
    EXPECT_EQ(device.m_BSectorsPerBit, 0);
    EXPECT_EQ(device.m_UiUserSystemDataAddress, 0u);
    EXPECT_EQ(device.m_UiUserSystemDataLen, 0u);
    EXPECT_EQ(device.m_UiFlashSizeAdd, 0u);
    EXPECT_EQ(device.m_BlockSize, 0u);
    EXPECT_FALSE(device.m_haveBank3);
    EXPECT_EQ(device.m_Bank3Type, 0);
    EXPECT_EQ(device.m_Bank3Szie, 0u);
    EXPECT_EQ(device.m_Bank3FlashDA, 0u);
    EXPECT_FALSE(device.m_Nank3RemapFlag);
}

TEST(Device, OfNoChipHasAnEmptyMap) {
    const Workplace workplace;
    const Described device;
    ASSERT_NE(device.m_CMapping, nullptr);
    EXPECT_EQ(device.m_CMapping->m_StrMapFile, ".ZVmap");
    EXPECT_EQ(device.m_UiFlashSizeAddress, 0x1FFFF7E0u);
    EXPECT_EQ(device.m_StrSubName, "");
}

TEST(Device, TakesItsFactsFromTheMapFile) {
    const Workplace workplace;
    workplace.write("Map/ZV32F403A_1024K.ZVmap", mapFile("70050347", "07", "ZV32F403A"));
    const FilesDouble files(workplace, "map sectors=512 size=2048 packet=16\n");
    const Described device("70050347", "07", 1024);
    EXPECT_EQ(device.m_StrPID, "70050347");
    EXPECT_EQ(device.m_StrSerial, "07");
    EXPECT_EQ(device.m_StrBID, "NA");
    EXPECT_EQ(device.m_StrName, "ZV32F403A");
    EXPECT_EQ(device.m_StrTarget, "ZV32F403A_1024K");
    EXPECT_EQ(device.m_IFlashSize, 1024);
    EXPECT_EQ(device.m_ISectorSize, 2048u);
    EXPECT_EQ(device.m_BSectorsPerBit, 2);
    EXPECT_EQ(device.m_UiUserSystemDataAddress, 0x1FFFF800u);
    EXPECT_EQ(device.m_UiUserSystemDataLen, 4096u);
    EXPECT_EQ(device.m_UiFlashSizeAdd, 0x1FFFF7E0u);
    EXPECT_EQ(device.m_BlockSize, 0u);
    EXPECT_EQ(device.m_CMapping->GetSectorNums(), 512);
    EXPECT_EQ(device.m_CMapping->GetPacketSize(), 16);
}

struct FamilyRow {
    const char *serial;
    unsigned int userSystemData;
    unsigned int block;
};

TEST(Device, BlocksAndOptionBytesGoByTheFamily) {
    const FamilyRow rows[] = {{"0D", 0x1FFFC000, 0x10000}, {"0E", 0x1FFFC000, 0x10000}, {"0C", 0x1FFFF800, 0},
                              {"0F", 0x1FFFF800, 0},       {"01", 0x1FFFF800, 0},       {"13", 0x1FFFF800, 0}};
    for (const FamilyRow &row : rows) {
        const Workplace workplace;
        workplace.write("Map/A.ZVmap", mapFile("12345678", row.serial, "A"));
        const Described device("12345678", row.serial, 64);
        EXPECT_EQ(device.m_UiUserSystemDataAddress, row.userSystemData) << row.serial;
        EXPECT_EQ(device.m_BlockSize, row.block) << row.serial;
    }
}

TEST(Device, WithoutAMatchIsFinishedAllTheSame) {
    const Workplace workplace;
    workplace.write("Map/A.ZVmap", mapFile("11111111", "0D", "A"));
    const Described device("22222222", "0D", 64);
    EXPECT_EQ(device.m_StrPID, "");
    EXPECT_EQ(device.m_StrSerial, "");
    EXPECT_EQ(device.m_StrBID, "");
    EXPECT_EQ(device.m_IFlashSize, 0);
    EXPECT_EQ(device.m_StrTarget, "_0K");
    EXPECT_EQ(device.m_CMapping->m_StrMapFile, "_0K.ZVmap");
    EXPECT_EQ(device.m_UiUserSystemDataAddress, 0x1FFFF800u);
    EXPECT_EQ(device.m_UiUserSystemDataLen, 4096u);
}

TEST(Device, OfTwoMatchingFilesTheFirstByNameTells) {
    const Workplace workplace;
    workplace.write("Map/b.ZVmap", mapFile("12345678", "01", "Second", "1000", "1"));
    workplace.write("Map/a.ZVmap", mapFile("12345678", "01", "First", "400", "4"));
    const Described device("12345678", "01", 64);
    EXPECT_EQ(device.m_StrName, "First");
    EXPECT_EQ(device.m_ISectorSize, 1024u);
    EXPECT_EQ(device.m_BSectorsPerBit, 4);
}

struct MatchRow {
    const char *pids;
    const char *serials;
    const char *pid;
    const char *serial;
    bool matches;
};

const MatchRow matchRows[] = {
    {"70050347", "07", "70050347", "07", true},
    {"70050347", "07", "70050348", "07", false},
    {"70050347", "07", "70050347", "08", false},
    {"70050347 70050348", "07", "70050348", "07", true}, // two PIDs in one value
    {"\"70050347, 70050348\"", "07", "70050347", "07", true},
    {"\"70050347, 70050348\"", "07", "70050348", "07", true},
    {"70050347, 70050348", "07", "70050347", "07", false}, // a list, which has no text
    {"70050347", "07 0D", "70050347", "0D", true},
    {"70050347", "0d", "70050347", "0D", false}, // by exact case
    {"7005034a", "07", "7005034A", "07", false},
    {"70050347", "07", "0503", "07", true}, // any part of it
    {"70050347", "07", "", "", true},       // no text is part of every text
};

TEST(Device, MatchesByPartOfTheText) {
    for (const MatchRow &row : matchRows) {
        const Workplace workplace;
        workplace.write("Map/A.ZVmap", mapFile(row.pids, row.serials, "A"));
        Described device;
        EXPECT_EQ(device.IsDevicePID(row.pid, row.serial), row.matches) << row.pids << " " << row.pid;
        const Described described(row.pid, row.serial, 64);
        EXPECT_EQ(described.m_StrName, row.matches ? "A" : "") << row.pids << " " << row.pid;
    }
}

TEST(Device, AMapThatIsNotPlainMatchesByBothTextsToo) {
    const Workplace workplace;
    const std::string comment = "; not plain\n";
    workplace.write("Map/A.ZVmap", comment + mapFile("70050347", "08", "OtherSeries"));
    workplace.write("Map/B.ZVmap", comment + mapFile("70050348", "07", "OtherChip"));
    workplace.write("Map/C.ZVmap", comment + mapFile("70050347", "07", "Chip"));
    const FilesDouble files(workplace);
    EXPECT_EQ(Described("70050347", "07", 1).m_StrName, "Chip");
}

TEST(Device, OnlyMapFilesCount) {
    const Workplace workplace;
    workplace.write("Map/A.ZVmap.txt", mapFile("12345678", "01", "A"));
    std::filesystem::create_directory("Map/B.ZVmap");
    Described device;
    EXPECT_FALSE(device.IsDevicePID("12345678", "01"));
}

TEST(Device, WithoutAMapDirectoryEveryChipIsUnknown) {
    const Workplace workplace;
    std::filesystem::remove("Map");
    Described device;
    EXPECT_FALSE(device.IsDevicePID("", ""));
    EXPECT_EQ(CDeviceManager().GetDevice("12345678", "01", 64), nullptr);
    EXPECT_EQ(CDeviceManager().GetDevice("", "01", 64), nullptr);
}

TEST(Device, AMissingKeyIsEmptyOrZero) {
    const Workplace workplace;
    workplace.write("Map/A.ZVmap", "[Product]\nPID=12345678\nSerial=01\n");
    Described device("12345678", "01", 64);
    EXPECT_EQ(device.m_StrName, "");
    EXPECT_EQ(device.m_ISectorSize, 0u);
    EXPECT_EQ(device.m_BSectorsPerBit, 0);
    EXPECT_EQ(device.m_StrTarget, "_64K");
    EXPECT_EQ(device.ZVmapReadValue("Product", "Name", "./Map/A.ZVmap"), "");
    EXPECT_EQ(device.ZVmapReadValue("Product", "PID", "./Map/A.ZVmap"), "12345678");
}

TEST(Device, SizesAreHexadecimalAndBitsADecimalByte) {
    const Workplace workplace;
    workplace.write("Map/A.ZVmap", mapFile("12345678", "01", "A", "0x1000", "260"));
    const Described device("12345678", "01", 64);
    EXPECT_EQ(device.m_ISectorSize, 4096u);
    EXPECT_EQ(device.m_BSectorsPerBit, 4);
}

TEST(Device, HooksLeaveTheMapFilesAlone) {
    const Workplace workplace;
    workplace.write("Map/A.ZVmap", "");
    Described device;
    device.ReleaseSpecialMCUZVMap("./Map");
    device.DeleteSpecialMCUZVMap("./Map");
    EXPECT_EQ(QDir("./Map").entryList(QDir::Files).count(), 1);
}

TEST(DeviceManager, AFlashSizeWithoutAFileGivesADescriptionWithoutSectors) {
    const Workplace workplace;
    workplace.write("Map/A_64K.ZVmap", mapFile("12345678", "01", "A"));
    const FilesDouble files(workplace);
    CDeviceManager manager;
    const CDevice *device = manager.GetDevice("12345678", "01", 128);
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->m_StrTarget, "A_128K");
    EXPECT_EQ(device->m_CMapping->GetSectorNums(), -1);
}

TEST(DeviceManager, HandsOutTheSameDescriptionWithoutReadingAgain) {
    const Workplace workplace;
    workplace.write("Map/A_64K.ZVmap", mapFile("12345678", "01", "A"));
    FilesDouble files(workplace);
    CDeviceManager manager;
    const CDevice *first = manager.GetDevice("12345678", "01", 64);
    ASSERT_NE(first, nullptr);
    files.calls();
    std::filesystem::remove_all("Map");
    EXPECT_EQ(manager.GetDevice("12345678", "01", 64), first);
    EXPECT_TRUE(files.calls().empty());
}

TEST(DeviceManager, AnotherFlashSizeIsAnotherDescription) {
    const Workplace workplace;
    workplace.write("Map/A_64K.ZVmap", mapFile("12345678", "01", "A"));
    const FilesDouble files(workplace);
    CDeviceManager manager;
    const CDevice *small = manager.GetDevice("12345678", "01", 64);
    const CDevice *large = manager.GetDevice("12345678", "01", 128);
    ASSERT_NE(large, nullptr);
    EXPECT_NE(small, large);
    EXPECT_EQ(manager.m_lsCDevice.count(), 2);
    // By exact text: a part of the PID is a new question.
    EXPECT_NE(manager.GetDevice("1234", "01", 64), small);
    EXPECT_EQ(manager.m_lsCDevice.count(), 3);
}

TEST(DeviceManager, AnUnknownChipIsNullAndNotKept) {
    const Workplace workplace;
    workplace.write("Map/A_64K.ZVmap", mapFile("12345678", "01", "A"));
    CDeviceManager manager;
    EXPECT_EQ(manager.GetDevice("12345678", "02", 64), nullptr);
    EXPECT_EQ(manager.GetDevice("87654321", "01", 64), nullptr);
    EXPECT_TRUE(manager.m_lsCDevice.isEmpty());
}

TEST(DeviceManager, ADescriptionOutlivesItsManager) {
    const Workplace workplace;
    workplace.write("Map/A_64K.ZVmap", mapFile("12345678", "01", "A"));
    const FilesDouble files(workplace);
    const CDevice *device = nullptr;
    {
        CDeviceManager manager;
        device = manager.GetDevice("12345678", "01", 64);
    }
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->m_StrName, "A");
    EXPECT_EQ(device->m_CMapping->GetSectorNums(), 4);
}

TEST(DeviceManager, KnowsTheFlashSizeRegisterOfAKnownChipOnly) {
    const Workplace workplace;
    workplace.write("Map/A_64K.ZVmap", mapFile("12345678", "01", "A"));
    const FilesDouble files(workplace);
    CDeviceManager manager;
    EXPECT_EQ(manager.GetFlashSizeAddress("12345678", "01", 64), 0x1FFFF7E0u);
    EXPECT_EQ(manager.GetFlashSizeAddress("99999999", "01", 64), 0u);
}

} // namespace
