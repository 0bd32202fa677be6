#include <climits>

#include <gtest/gtest.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

TEST(Image, NullPointers) {
    HANDLE image = nullptr;
    IMAGEELEMENT element{};
    unsigned int count = 0;
    MAPPING map{};
    EXPECT_EQ(FILES_CreateImage(nullptr, 1), badParameter);
    EXPECT_EQ(FILES_CreateImageFromMapping(nullptr, &map, 0), badParameter);
    EXPECT_EQ(FILES_CreateImageFromMapping(&image, nullptr, 0), badParameter);
    EXPECT_EQ(FILES_DestroyImage(nullptr), badParameter);
    EXPECT_EQ(FILES_DestroyImage(&image), badParameter);
    EXPECT_EQ(FILES_ImageFromFile(nullptr, &image, 1), badParameter);
    EXPECT_EQ(FILES_ImageFromFile("a.bin", nullptr, 1), badParameter);
    EXPECT_EQ(FILES_ImageToFile("a.bin", nullptr), badParameter);
    EXPECT_EQ(FILES_SetImageName(nullptr, "a"), badParameter);
    EXPECT_EQ(FILES_GetImageNbElement(nullptr, &count), badParameter);
    EXPECT_EQ(FILES_GetImageElement(nullptr, 0, &element), badParameter);
    EXPECT_EQ(FILES_SetImageElement(nullptr, 0, 1, element), badParameter);

    Handle made;
    ASSERT_EQ(FILES_CreateImage(made.out(), 1), noError);
    EXPECT_EQ(FILES_ImageToFile(nullptr, made.get()), badParameter);
    EXPECT_EQ(FILES_SetImageName(made.get(), nullptr), badParameter);
    EXPECT_EQ(FILES_GetImageNbElement(made.get(), nullptr), badParameter);
    EXPECT_EQ(FILES_GetImageElement(made.get(), 0, nullptr), badParameter);
}

TEST(Image, DestroyNullsTheHandle) {
    HANDLE image = nullptr;
    ASSERT_EQ(FILES_CreateImage(&image, 1), noError);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(FILES_DestroyImage(&image), noError);
    EXPECT_EQ(image, nullptr);
}

TEST(Image, AFailedReadNullsTheHandle) {
    int something = 0;
    HANDLE image = &something;
    EXPECT_EQ(FILES_ImageFromFile("/nowhere/a.hex", &image, 1), unableToOpenFile);
    EXPECT_EQ(image, nullptr);
}

TEST(Image, InsertAppendsAndMovesUp) {
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    EXPECT_EQ(image.insert(0, 0x20, {2}), noError);
    EXPECT_EQ(image.insert(1, 0x30, {3}), noError);
    EXPECT_EQ(image.insert(0, 0x10, {1}), noError);
    EXPECT_EQ(image.insert(4, 0x40, {4}), badParameter);
    EXPECT_EQ(image.pieces(), (Pieces{{0x10, {1}}, {0x20, {2}}, {0x30, {3}}}));
}

TEST(Image, InsertCopiesTheBytes) {
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    Bytes bytes{1, 2, 3};
    ASSERT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0, 3, bytes.data()}), noError);
    bytes.assign(3, 0);
    EXPECT_EQ(image.pieces(), (Pieces{{0, {1, 2, 3}}}));
}

TEST(Image, ReplaceKeepsTheOthers) {
    const TempDir dir;
    writeFile(dir / "a.bin", std::string(6, 'a'));
    Handle image;
    ASSERT_EQ(FILES_ImageFromFile((dir / "a.bin").c_str(), image.out(), programImage), noError);
    Map map({{0x08000000, 2}, {0x08000002, 2}, {0x08000004, 2}});
    ASSERT_EQ(FILES_FilterImageForOperation(image.get(), map.get(), 2, 0), noError);
    EXPECT_EQ(image.replace(1, 0x08000002, {'b', 'b'}), noError);
    EXPECT_EQ(image.replace(2, 0x08000004, {'c', 'c', 'c'}), noError);
    EXPECT_EQ(image.replace(3, 0, {1}), badParameter);
    EXPECT_EQ(image.pieces(),
              (Pieces{{0x08000000, {'a', 'a'}}, {0x08000002, {'b', 'b'}}, {0x08000004, {'c', 'c', 'c'}}}));
}

TEST(Image, ElementsThatCannotBe) {
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    BYTE byte = 0;
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0, 0, &byte}), badParameter);
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0, 1, nullptr}), badParameter);
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0x100000000, 1, &byte}), badAddressRange);
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0xFFFFFFFF, 2, &byte}), badAddressRange);
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {ULONG_MAX, 1, &byte}), badAddressRange);
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0, ULONG_MAX, &byte}), badAddressRange);
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0, 0x10000001, &byte}), elementsFull);
    EXPECT_TRUE(image.pieces().empty());
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0xFFFFFFFF, 1, &byte}), noError);
}

TEST(Image, WhatCannotBeReplacesNothing) {
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(image.insert(0, 16, {1, 2}), noError);
    EXPECT_EQ(image.replace(0, std::uint64_t(1) << 32, {3}), badAddressRange);
    EXPECT_EQ(image.replace(0, 0xFFFFFFFF, {3, 4}), badAddressRange);
    EXPECT_EQ(image.pieces(), (Pieces{{16, {1, 2}}}));
    EXPECT_EQ(image.replace(0, 0xFFFFFFFF, {3}), noError);
}

TEST(Image, NothingIsNotSaved) {
    const TempDir dir;
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    EXPECT_EQ(FILES_ImageToFile((dir / "o.bin").c_str(), image.get()), badParameter);
    EXPECT_TRUE(dir.entries().empty());
}

TEST(Image, OverlappingElementsAreNotSaved) {
    const TempDir dir;
    for (const char *name : {"o.bin", "o.hex", "o.s19"}) {
        Handle image;
        ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
        ASSERT_EQ(image.insert(0, 0x10, {1, 2}), noError);
        ASSERT_EQ(image.insert(1, 0x0F, {0, 1}), noError);
        EXPECT_EQ(FILES_ImageToFile((dir / name).c_str(), image.get()), badAddressRange);
    }
    EXPECT_TRUE(dir.entries().empty());
}

TEST(Image, GetWithoutABufferFillsAddressAndLength) {
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(image.insert(0, 0x1234, {1, 2, 3}), noError);
    IMAGEELEMENT element{};
    EXPECT_EQ(FILES_GetImageElement(image.get(), 0, &element), noError);
    EXPECT_EQ(element.dwAddress, 0x1234u);
    EXPECT_EQ(element.dwDataLength, 3u);
    EXPECT_EQ(element.Data, nullptr);
    EXPECT_EQ(FILES_GetImageElement(image.get(), 1, &element), badParameter);
}

TEST(Image, FromMappingHasOneElementPerSector) {
    Map map({{0x08000000, 1024}, {0x08000400, 2048}});
    Handle image;
    ASSERT_EQ(FILES_CreateImageFromMapping(image.out(), map.get(), 9), noError);
    EXPECT_EQ(image.pieces(), (Pieces{{0x08000000, Bytes(1024, 0xFF)},
                                      {0x08000400, Bytes(2048, 0xFF)},
                                      {0x08400000, Bytes(4096, 0xFF)},
                                      {0x08401000, Bytes(4096, 0xFF)}}));
}

TEST(Image, FromAnEmptyMappingIsEmpty) {
    Map map({});
    Handle image;
    ASSERT_EQ(FILES_CreateImageFromMapping(image.out(), map.get(), 0), noError);
    EXPECT_TRUE(image.pieces().empty());
}

TEST(Image, FromAMappingThatCannotBe) {
    MAPPING hollow{};
    hollow.NbSectors = 1;
    HANDLE image = nullptr;
    EXPECT_EQ(FILES_CreateImageFromMapping(&image, &hollow, 0), badParameter);
    for (const auto &sector : std::vector<std::pair<DWORD, DWORD>>{
             {0x08000000, 0}, {0, ULONG_MAX}, {ULONG_MAX, 1}, {0xFFFFFFFF, 2}, {0x08000000, 0x10000001}}) {
        Map map({sector});
        EXPECT_EQ(FILES_CreateImageFromMapping(&image, map.get(), 0), badAddressRange);
        EXPECT_EQ(image, nullptr);
    }
    Map map({});
    EXPECT_EQ(FILES_CreateImageFromMapping(&image, map.get(), UINT_MAX), badAddressRange);
}

// What an upload does: the map gives the sectors, a new image takes the chosen ones in.
TEST(Image, UploadFlow) {
    const TempDir dir;
    Map map(uniform(0x08000000, 2048, 8));
    HANDLE sectors = nullptr;
    ASSERT_EQ(FILES_CreateImageFromMapping(&sectors, map.get(), 0), noError);
    ASSERT_EQ(FILES_DestroyImage(&sectors), noError);
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(image.insert(0, 0x08000800, pattern(2048, 1)), noError);
    ASSERT_EQ(image.insert(1, 0x08001000, pattern(2048, 2)), noError);
    ASSERT_EQ(FILES_ImageToFile((dir / "up.bin").c_str(), image.get()), noError);
    Bytes expected = pattern(2048, 1);
    const Bytes second = pattern(2048, 2);
    expected.insert(expected.end(), second.begin(), second.end());
    EXPECT_EQ(readBytes(dir / "up.bin"), expected);
}

} // namespace
