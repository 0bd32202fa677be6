// The chip's checksum of its sectors against one of another program.

#include <algorithm>

#include "tests/integration/LibraryTest.h"

class ChecksumTest : public LibraryTest {
protected:
    // The answer as a number; 0 and a failure for a refusal.
    std::uint32_t crc(unsigned address, unsigned short sectors) {
        BYTE bytes[4] = {};
        EXPECT_EQ(ZVBL_GetFirmwareCRC(link, address, sectors, bytes), done);
        return static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
               static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
    }
    // The status of a request that fails; what the caller holds stays as it is.
    BYTE failing(unsigned address, unsigned short sectors) {
        BYTE bytes[4] = {1, 2, 3, 4};
        const BYTE status = ZVBL_GetFirmwareCRC(link, address, sectors, bytes);
        EXPECT_EQ(Bytes(bytes, bytes + 4), (Bytes{1, 2, 3, 4})) << std::hex << address;
        return status;
    }
};

TEST_F(ChecksumTest, OfMainFlash) {
    connect("ZV32F403A_1024K");
    const Bytes image = program(3 * 2048 + 100);
    EXPECT_EQ(write(flashBase + 5 * 2048, image), done);
    EXPECT_EQ(crc(flashBase + 5 * 2048, 4), witnessCrc(filledUp(image, 4 * 2048))) << "blank cells count";
    EXPECT_EQ(crc(flashBase + 5 * 2048, 1), witnessCrc(Bytes(image.begin(), image.begin() + 2048)));
    Bytes whole(1024 * 1024, 0xFF);
    std::copy(image.begin(), image.end(), whole.begin() + 5 * 2048);
    EXPECT_EQ(crc(flashBase, 512), witnessCrc(whole));
}

TEST_F(ChecksumTest, SectorsAreOfTheChipsOwnSize) {
    for (const auto &[name, size] :
         std::map<std::string, std::size_t>{{"ZV32F421_64K", 1024}, {"ZV32F435_4032K", 4096}}) {
        Interface_Close(link);
        connect(name);
        const Bytes image = program(2 * size);
        EXPECT_EQ(write(flashBase + static_cast<unsigned>(size), image), done);
        EXPECT_EQ(crc(flashBase + static_cast<unsigned>(size), 2), witnessCrc(image)) << name;
    }
}

TEST_F(ChecksumTest, OfSpim) {
    connect("ZV32F403A_1024K");
    EXPECT_EQ(failing(spimBase, 1), refused) << "not enabled yet";
    EXPECT_EQ(ZVBL_EnableBank3(link, 0x90, 1 << 20, 0), done);
    const Bytes image = program(4096 + 1);
    EXPECT_EQ(write(spimBase + 4096, image), done);
    EXPECT_EQ(crc(spimBase + 4096, 2), witnessCrc(filledUp(image, 2 * 4096)));
    EXPECT_EQ(failing(spimBase + 255 * 4096, 2), refused) << "beyond the size that was enabled";
}

TEST_F(ChecksumTest, RefusedRanges) {
    connect("ZV32F403A_1024K");
    EXPECT_EQ(failing(flashBase, 0), badArgument);
    EXPECT_EQ(ZVBL_GetFirmwareCRC(link, flashBase, 1, nullptr), badArgument);
    EXPECT_EQ(failing(flashBase + 4, 1), refused) << "no sector starts there";
    EXPECT_EQ(failing(flashBase, 513), refused);
    EXPECT_EQ(failing(flashBase, 0x8001), refused) << "never the question for the sum of each";
    EXPECT_EQ(failing(flashBase + 511 * 2048, 2), refused);
    EXPECT_EQ(failing(flashBase + 512 * 2048, 1), refused);
    EXPECT_EQ(failing(ramBase, 1), refused);
    EXPECT_EQ(crc(flashBase + 511 * 2048, 1), witnessCrc(Bytes(2048, 0xFF))) << "the chip is still in step";
}

TEST_F(ChecksumTest, AProtectedChipTellsNothing) {
    connect("ZV32F403A_1024K");
    EXPECT_EQ(ZVBL_ACCESS_PROTECT(link), done);
    EXPECT_EQ(initAgain(), done);
    EXPECT_EQ(failing(flashBase, 1), commandRefused);
}
