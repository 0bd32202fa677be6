// Good files with something broken in them: whatever the library answers, it answers, and what it
// takes it can hand out, cut and write.

#include <random>

#include <gtest/gtest.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

std::string goodHex() {
    std::string content;
    for (unsigned page = 0; page < 3; ++page) {
        content += ihex(page == 1 ? 2 : 4, 0, {8, static_cast<BYTE>(page)}) + "\r\n";
        for (unsigned i = 0; i < 8; ++i)
            content += ihex(0, i * 40, pattern(32, i)) + "\r\n";
    }
    return content + ihex(5, 0, {8, 0, 0, 1}) + "\r\n:00000001FF\r\n";
}

std::string goodSRecord() {
    std::string content = srec(0, 0, {'x'}) + "\n";
    for (unsigned i = 0; i < 8; ++i)
        content += srec(1 + i % 3, i * 40, pattern(32, i)) + "\n";
    return content + srec(5, 8, {}) + "\n" + srec(7, 0, {}) + "\n";
}

std::string goodMap() {
    return "; a map\n[Product]\nName=ZV32X\nPID=1234\nSerial=01\nSectorsPerSector=2\nPacketSize=0\n\n"
           "[Sector0]\nAddress=08000000\nSize=800\nCount=16\n[Sector1]\nSize=1000\nCount=4\n";
}

std::string mutate(std::string text, std::mt19937 &random) {
    const std::string digits = "0123456789ABCDEFabcdef:S\n\r =[];";
    for (unsigned n = random() % 4; n > 0 && !text.empty(); --n) {
        const std::size_t at = random() % (text.size() + 1);
        switch (random() % 6) {
        case 0: text.insert(at, 1, static_cast<char>(random())); break;
        case 1: text.insert(at, 1, digits[random() % digits.size()]); break;
        case 2: text.erase(std::min(at, text.size() - 1), random() % 40); break;
        case 3: text.insert(at, text.substr(random() % (text.size() + 1), random() % 200)); break;
        case 4: text[std::min(at, text.size() - 1)] = digits[random() % digits.size()]; break;
        default:
            text.resize(at);
            text += '\n';
            break;
        }
    }
    return text;
}

void tryImage(const TempDir &dir, const std::string &name, const std::string &content) {
    writeFile(dir / name, content);
    Handle image;
    const unsigned int status = FILES_ImageFromFile((dir / name).c_str(), image.out(), programImage);
    ASSERT_EQ(image.get() != nullptr, status == noError);
    if (status != noError) {
        ASSERT_TRUE(status == badFormat || status == badAddressRange) << status;
        return;
    }
    const Pieces before = image.pieces();
    ASSERT_EQ(FILES_ImageToFile((dir / "again.hex").c_str(), image.get()), noError);
    Handle again;
    ASSERT_EQ(FILES_ImageFromFile((dir / "again.hex").c_str(), again.out(), programImage), noError);
    ASSERT_EQ(again.pieces(), before);
    Map map(uniform(0x08000000, 64, 16));
    ASSERT_EQ(FILES_FilterImageForOperation(image.get(), map.get(), 2, 1), noError);
}

TEST(Mutation, Hex) {
    const TempDir dir;
    std::mt19937 random(1);
    tryImage(dir, "a.hex", goodHex());
    for (int i = 0; i < 600 && !HasFatalFailure(); ++i)
        tryImage(dir, "a.hex", mutate(goodHex(), random));
}

TEST(Mutation, SRecord) {
    const TempDir dir;
    std::mt19937 random(2);
    tryImage(dir, "a.s19", goodSRecord());
    for (int i = 0; i < 600 && !HasFatalFailure(); ++i)
        tryImage(dir, "a.s19", mutate(goodSRecord(), random));
}

TEST(Mutation, MapFile) {
    const TempDir dir;
    std::mt19937 random(3);
    for (int i = 0; i < 1500; ++i) {
        writeFile(dir / "a.ZVmap", mutate(goodMap(), random));
        short sectors = -1;
        short packet = -1;
        char name[256];
        BYTE perSector = 0;
        const unsigned int status =
            FILES_GetMemoryMapping((dir / "a.ZVmap").c_str(), &sectors, name, &packet, nullptr, &perSector);
        ASSERT_GE(sectors, 0);
        ASSERT_EQ(sectors > 0, status == 0);
        if (status != 0)
            continue;
        std::vector<MAPPINGSECTOR> records(static_cast<std::size_t>(sectors));
        MAPPING map{};
        map.pSectors = records.data();
        ASSERT_EQ(FILES_GetMemoryMapping((dir / "a.ZVmap").c_str(), &sectors, name, &packet, &map, &perSector), 0u);
        ASSERT_EQ(map.NbSectors, records.size());
    }
}

} // namespace
