#include <filesystem>

#include <gtest/gtest.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

TEST(Binary, AProgramImageStartsAtTheFlash) {
    const TempDir dir;
    Pieces pieces;
    EXPECT_EQ(load(dir, "a.bin", "abc", pieces), noError);
    EXPECT_EQ(pieces, (Pieces{{0x08000000, {'a', 'b', 'c'}}}));
}

TEST(Binary, UserSystemDataStartAtZero) {
    const TempDir dir;
    Pieces pieces;
    EXPECT_EQ(load(dir, "a.bin", std::string(4096, 'u'), pieces, userSystemDataImage), noError);
    EXPECT_EQ(pieces, (Pieces{{0, Bytes(4096, 'u')}}));
}

TEST(Binary, UserSystemDataFromHex) {
    const TempDir dir;
    Pieces pieces;
    EXPECT_EQ(load(dir, "a.hex", ihex(0, 0, pattern(48)) + "\n:00000001FF\n", pieces, userSystemDataImage), noError);
    EXPECT_EQ(pieces, (Pieces{{0, pattern(48)}}));
}

TEST(Binary, AnEmptyFileHasNoElement) {
    const TempDir dir;
    Pieces pieces;
    EXPECT_EQ(load(dir, "a.bin", "", pieces), noError);
    EXPECT_TRUE(pieces.empty());
}

// Read in pieces of 1 MB: around their borders nothing may be lost.
TEST(Binary, LengthsAroundTheReadSize) {
    const TempDir dir;
    for (const std::size_t length : {0xFFFFFu, 0x100000u, 0x100001u, 0x200000u}) {
        const Bytes bytes = pattern(length);
        Pieces pieces;
        EXPECT_EQ(load(dir, "a.bin", std::string(bytes.begin(), bytes.end()), pieces), noError);
        EXPECT_EQ(pieces, (Pieces{{0x08000000, bytes}}));
    }
}

TEST(Binary, AFileThatNoImageCanHoldIsRefused) {
    const TempDir dir;
    writeFile(dir / "a.bin", "");
    for (const std::uint64_t size : {(256ull << 20) + 1, 5ull << 30}) {
        std::filesystem::resize_file(dir / "a.bin", size); // sparse
        Handle image;
        EXPECT_EQ(FILES_ImageFromFile((dir / "a.bin").c_str(), image.out(), programImage), badAddressRange);
        EXPECT_EQ(image.get(), nullptr);
    }
}

TEST(Binary, GapsAreWrittenAs0xFF) {
    const TempDir dir;
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(image.insert(0, 0x08000008, {3, 4}), noError);
    ASSERT_EQ(image.insert(1, 0x08000004, {1, 2}), noError);
    ASSERT_EQ(FILES_ImageToFile((dir / "o.bin").c_str(), image.get()), noError);
    EXPECT_EQ(readBytes(dir / "o.bin"), (Bytes{1, 2, 0xFF, 0xFF, 3, 4}));
}

TEST(Binary, AGapLargerThanTheBuffer) {
    const TempDir dir;
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(image.insert(0, 0x08000000, {1}), noError);
    ASSERT_EQ(image.insert(1, 0x08400000, {2}), noError);
    ASSERT_EQ(FILES_ImageToFile((dir / "o.bin").c_str(), image.get()), noError);
    Bytes expected(0x400001, 0xFF);
    expected.front() = 1;
    expected.back() = 2;
    EXPECT_EQ(readBytes(dir / "o.bin"), expected);
}

TEST(Binary, AGapThatWouldFillTheDiskIsRefused) {
    const TempDir dir;
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(image.insert(0, 0, {1}), noError);
    ASSERT_EQ(image.insert(1, 0xFFFFFFFF, {2}), noError);
    EXPECT_EQ(FILES_ImageToFile((dir / "o.bin").c_str(), image.get()), badAddressRange);
    EXPECT_TRUE(dir.entries().empty());
    EXPECT_EQ(FILES_ImageToFile((dir / "o.hex").c_str(), image.get()), noError);
}

} // namespace
