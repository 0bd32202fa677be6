// Image files on the file library itself.

#include <gtest/gtest.h>

#include "ModelTest.h"
#include "files/CFiles.h"
#include "foundation/Result.h"

namespace {

constexpr char mapText[] = "[Product]\nName=X\nPID=12345678\nSerial=01\nSectorsPerSector=2\nPacketSize=0\n"
                           "[Sector0]\nAddress=08000000\nSize=800\nCount=4\n";

std::string content(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct Bench {
    Workplace workplace;
    std::optional<CMapping> map;
    CDevice device;

    Bench() {
        workplace.write("Map/X_8K.ZVmap", mapText);
        map.emplace("X_8K");
        device.m_CMapping = &*map;
        device.m_IFlashSize = 8;
        device.m_UiUserSystemDataLen = 4096;
    }
};

std::string firmware() {
    std::string bytes;
    for (int i = 0; i < 5000; ++i)
        bytes += static_cast<char>(i * 7 + i / 256);
    return bytes;
}

TEST(LibraryFiles, AnImageComesInElementsOfOneSector) {
    const Bench bench;
    bench.workplace.write("a.bin", firmware());
    CDevice device = bench.device;
    CProgramFile file;
    ASSERT_EQ(file.Open(bench.workplace.path("a.bin"), &device), 0);
    ASSERT_EQ(file.GetElementCount(), 3);
    EXPECT_EQ(file.m_lsElement.at(1).dwAddress, 0x08000800u);
    EXPECT_EQ(file.m_lsElement.at(2).dwDataLength, 5000u - 4096u);
    EXPECT_EQ(file.m_UiFileSize, 5000u);
}

// Each file drops its handle at its end, and most get the address of the one before.
TEST(LibraryFiles, FilesThatEndWhileTheyAreOpenLeaveTheOthersAlone) {
    const Bench bench;
    bench.workplace.write("a.bin", firmware());
    bench.workplace.write("b.bin", "short");
    CDevice device = bench.device;
    CProgramFile kept;
    ASSERT_EQ(kept.Open(bench.workplace.path("a.bin"), &device), 0);
    for (int i = 0; i < 100; ++i) {
        CProgramFile file;
        ASSERT_EQ(file.Open(bench.workplace.path(i % 2 == 0 ? "b.bin" : "a.bin"), &device), 0);
        ASSERT_EQ(file.m_UiFileSize, i % 2 == 0 ? 5u : 5000u);
        ASSERT_EQ(file.Save(bench.workplace.path("c.bin")), 0);
        ASSERT_EQ(content(bench.workplace.path("c.bin")), i % 2 == 0 ? "short" : firmware());
    }
    ASSERT_EQ(kept.Save(bench.workplace.path("c.bin")), 0);
    EXPECT_EQ(content(bench.workplace.path("c.bin")), firmware());
}

TEST(LibraryFiles, ACopySavesTheSameBytes) {
    const Bench bench;
    bench.workplace.write("a.bin", firmware());
    CDevice device = bench.device;
    CProgramFile file;
    ASSERT_EQ(file.Open(bench.workplace.path("a.bin"), &device), 0);
    CProgramFile copy(file);
    file.Close();
    ASSERT_EQ(copy.Save(bench.workplace.path("b.bin")), 0);
    EXPECT_EQ(content(bench.workplace.path("b.bin")), firmware());
}

TEST(LibraryFiles, ChosenSectorsAreWrittenAsTheyAreFilled) {
    const Bench bench;
    CDevice device = bench.device;
    CProgramFile file;
    file.SetSectorIndexsForCreate({1, 2}, 2);
    ASSERT_EQ(file.Create(&device), 0);
    for (BYTE fill = 1; PIMAGEELEMENT element = file.GetElement(); ++fill) {
        std::fill_n(element->Data, element->dwDataLength, fill);
        ASSERT_EQ(file.SetElement(), 0);
    }
    ASSERT_EQ(file.Save(bench.workplace.path("u.bin")), 0);
    EXPECT_EQ(content(bench.workplace.path("u.bin")), std::string(2048, '\x01') + std::string(2048, '\x02'));
}

TEST(LibraryFiles, AnUploadThatSelectsNothingLeavesTheOldFile) {
    const Bench bench;
    bench.workplace.write("u.bin", "old");
    CDevice device = bench.device;
    CProgramFile file;
    file.SetSectorIndexsForCreate({100}, 1);
    ASSERT_EQ(file.Create(&device), 0);
    ASSERT_EQ(file.GetElementCount(), 0);
    EXPECT_EQ(file.Save(bench.workplace.path("u.bin")), CResult::FILES_BADPARAMETER);
    EXPECT_EQ(content(bench.workplace.path("u.bin")), "old");
}

TEST(LibraryFiles, AUserSystemDataFileIsReadAsItWasWritten) {
    const Bench bench;
    CDevice device = bench.device;
    for (const char *name : {"o.bin", "o.hex", "o.s19", "o.srec"}) {
        CUserSystemDataFile written;
        ASSERT_EQ(written.Create(&device), 0);
        PIMAGEELEMENT element = written.GetElement();
        for (DWORD i = 0; i < element->dwDataLength; ++i)
            element->Data[i] = static_cast<BYTE>(i % 2 == 0 ? 0xFF : 0x00);
        element->Data[0] = 0xA5;
        ASSERT_EQ(written.SetElement(true), 0);
        ASSERT_EQ(written.Save(bench.workplace.path(name)), 0);
        CUserSystemDataFile read;
        ASSERT_EQ(read.Open(bench.workplace.path(name), nullptr), 0);
        const PIMAGEELEMENT back = read.GetElement();
        ASSERT_NE(back, nullptr) << name;
        ASSERT_EQ(back->dwDataLength, 4096u) << name;
        EXPECT_TRUE(std::equal(back->Data, back->Data + 4096, element->Data)) << name;
    }
}

} // namespace
