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
    EXPECT_EQ(FILES_CreateImage(nullptr, 1), BadParameter);
    EXPECT_EQ(FILES_CreateImageFromMapping(nullptr, &map, 0), BadParameter);
    EXPECT_EQ(FILES_CreateImageFromMapping(&image, nullptr, 0), BadParameter);
    EXPECT_EQ(FILES_DestroyImage(nullptr), BadParameter);
    EXPECT_EQ(FILES_DestroyImage(&image), BadParameter);
    EXPECT_EQ(FILES_ImageFromFile(nullptr, &image, 1), BadParameter);
    EXPECT_EQ(FILES_ImageFromFile("a.bin", nullptr, 1), BadParameter);
    EXPECT_EQ(FILES_ImageToFile("a.bin", nullptr), BadParameter);
    EXPECT_EQ(FILES_SetImageName(nullptr, "a"), BadParameter);
    EXPECT_EQ(FILES_GetImageNbElement(nullptr, &count), BadParameter);
    EXPECT_EQ(FILES_GetImageElement(nullptr, 0, &element), BadParameter);
    EXPECT_EQ(FILES_SetImageElement(nullptr, 0, 1, element), BadParameter);

    Handle made;
    ASSERT_EQ(FILES_CreateImage(made.out(), 1), NoError);
    EXPECT_EQ(FILES_ImageToFile(nullptr, made.get()), BadParameter);
    EXPECT_EQ(FILES_SetImageName(made.get(), nullptr), BadParameter);
    EXPECT_EQ(FILES_GetImageNbElement(made.get(), nullptr), BadParameter);
    EXPECT_EQ(FILES_GetImageElement(made.get(), 0, nullptr), BadParameter);
}

TEST(Image, DestroyNullsTheHandle) {
    HANDLE image = nullptr;
    ASSERT_EQ(FILES_CreateImage(&image, 1), NoError);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(FILES_DestroyImage(&image), NoError);
    EXPECT_EQ(image, nullptr);
}

TEST(Image, AFailedReadNullsTheHandle) {
    int something = 0;
    HANDLE image = &something;
    EXPECT_EQ(FILES_ImageFromFile("/nowhere/a.hex", &image, 1), UnableToOpenFile);
    EXPECT_EQ(image, nullptr);
}

TEST(Image, InsertAppendsAndMovesUp) {
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), NoError);
    EXPECT_EQ(image.insert(0, 0x20, {2}), NoError);
    EXPECT_EQ(image.insert(1, 0x30, {3}), NoError);
    EXPECT_EQ(image.insert(0, 0x10, {1}), NoError);
    EXPECT_EQ(image.insert(4, 0x40, {4}), BadParameter);
    EXPECT_EQ(image.pieces(), (Pieces{{0x10, {1}}, {0x20, {2}}, {0x30, {3}}}));
}

TEST(Image, InsertCopiesTheBytes) {
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), NoError);
    Bytes bytes{1, 2, 3};
    ASSERT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0, 3, bytes.data()}), NoError);
    bytes.assign(3, 0);
    EXPECT_EQ(image.pieces(), (Pieces{{0, {1, 2, 3}}}));
}

TEST(Image, ReplaceKeepsTheOthers) {
    const TempDir dir;
    writeFile(dir / "a.bin", std::string(6, 'a'));
    Handle image;
    ASSERT_EQ(FILES_ImageFromFile((dir / "a.bin").c_str(), image.out(), Program), NoError);
    Map map({{0x08000000, 2}, {0x08000002, 2}, {0x08000004, 2}});
    ASSERT_EQ(FILES_FilterImageForOperation(image.get(), map.get(), 2, 0), NoError);
    EXPECT_EQ(image.replace(1, 0x08000002, {'b', 'b'}), NoError);
    EXPECT_EQ(image.replace(2, 0x08000004, {'c', 'c', 'c'}), NoError);
    EXPECT_EQ(image.replace(3, 0, {1}), BadParameter);
    EXPECT_EQ(image.pieces(),
              (Pieces{{0x08000000, {'a', 'a'}}, {0x08000002, {'b', 'b'}}, {0x08000004, {'c', 'c', 'c'}}}));
}

TEST(Image, ElementsThatCannotBe) {
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), NoError);
    BYTE byte = 0;
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0, 0, &byte}), BadParameter);
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0, 1, nullptr}), BadParameter);
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0x100000000, 1, &byte}), BadAddressRange);
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0xFFFFFFFF, 2, &byte}), BadAddressRange);
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {ULONG_MAX, 1, &byte}), BadAddressRange);
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0, ULONG_MAX, &byte}), BadAddressRange);
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0, 0x10000001, &byte}), ElementsFull);
    EXPECT_TRUE(image.pieces().empty());
    EXPECT_EQ(FILES_SetImageElement(image.get(), 0, 1, {0xFFFFFFFF, 1, &byte}), NoError);
}

TEST(Image, OverlappingElementsAreNotSaved) {
    const TempDir dir;
    for (const char *name : {"o.bin", "o.hex", "o.s19"}) {
        Handle image;
        ASSERT_EQ(FILES_CreateImage(image.out(), 1), NoError);
        ASSERT_EQ(image.insert(0, 0x10, {1, 2}), NoError);
        ASSERT_EQ(image.insert(1, 0x0F, {0, 1}), NoError);
        EXPECT_EQ(FILES_ImageToFile((dir / name).c_str(), image.get()), BadAddressRange);
    }
    EXPECT_TRUE(dir.entries().empty());
}

TEST(Image, GetWithoutABufferFillsAddressAndLength) {
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), NoError);
    ASSERT_EQ(image.insert(0, 0x1234, {1, 2, 3}), NoError);
    IMAGEELEMENT element{};
    EXPECT_EQ(FILES_GetImageElement(image.get(), 0, &element), NoError);
    EXPECT_EQ(element.dwAddress, 0x1234u);
    EXPECT_EQ(element.dwDataLength, 3u);
    EXPECT_EQ(element.Data, nullptr);
    EXPECT_EQ(FILES_GetImageElement(image.get(), 1, &element), BadParameter);
}

TEST(Image, FromMappingHasOneElementPerSector) {
    Map map({{0x08000000, 1024}, {0x08000400, 2048}});
    Handle image;
    ASSERT_EQ(FILES_CreateImageFromMapping(image.out(), map.get(), 9), NoError);
    EXPECT_EQ(image.pieces(), (Pieces{{0x08000000, Bytes(1024, 0xFF)},
                                      {0x08000400, Bytes(2048, 0xFF)},
                                      {0x08400000, Bytes(4096, 0xFF)},
                                      {0x08401000, Bytes(4096, 0xFF)}}));
}

TEST(Image, FromAnEmptyMappingIsEmpty) {
    Map map({});
    Handle image;
    ASSERT_EQ(FILES_CreateImageFromMapping(image.out(), map.get(), 0), NoError);
    EXPECT_TRUE(image.pieces().empty());
}

TEST(Image, FromAMappingThatCannotBe) {
    MAPPING hollow{};
    hollow.NbSectors = 1;
    HANDLE image = nullptr;
    EXPECT_EQ(FILES_CreateImageFromMapping(&image, &hollow, 0), BadParameter);
    for (const auto &sector : std::vector<std::pair<DWORD, DWORD>>{
             {0x08000000, 0}, {0, ULONG_MAX}, {ULONG_MAX, 1}, {0xFFFFFFFF, 2}, {0x08000000, 0x10000001}}) {
        Map map({sector});
        EXPECT_EQ(FILES_CreateImageFromMapping(&image, map.get(), 0), BadAddressRange);
        EXPECT_EQ(image, nullptr);
    }
    Map map({});
    EXPECT_EQ(FILES_CreateImageFromMapping(&image, map.get(), UINT_MAX), BadAddressRange);
}

// What an upload does: the map gives the sectors, a new image takes the chosen ones in.
TEST(Image, UploadFlow) {
    const TempDir dir;
    Map map(uniform(0x08000000, 2048, 8));
    HANDLE sectors = nullptr;
    ASSERT_EQ(FILES_CreateImageFromMapping(&sectors, map.get(), 0), NoError);
    ASSERT_EQ(FILES_DestroyImage(&sectors), NoError);
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), NoError);
    ASSERT_EQ(image.insert(0, 0x08000800, pattern(2048, 1)), NoError);
    ASSERT_EQ(image.insert(1, 0x08001000, pattern(2048, 2)), NoError);
    ASSERT_EQ(FILES_ImageToFile((dir / "up.bin").c_str(), image.get()), NoError);
    Bytes expected = pattern(2048, 1);
    const Bytes second = pattern(2048, 2);
    expected.insert(expected.end(), second.begin(), second.end());
    EXPECT_EQ(readBytes(dir / "up.bin"), expected);
}

} // namespace
