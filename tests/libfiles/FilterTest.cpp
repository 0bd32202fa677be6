#include <memory>

#include <gtest/gtest.h>

#include "libs/files/Image.h"
#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

struct Span {
    std::uint64_t address;
    std::uint64_t length;
    bool operator==(const Span &other) const { return address == other.address && length == other.length; }
};
using Spans = std::vector<Span>;

[[maybe_unused]] std::ostream &operator<<(std::ostream &out, const Span &span) {
    return out << std::hex << "0x" << span.address << std::dec << " +" << span.length;
}

Spans spansOf(const Pieces &pieces) {
    Spans spans;
    for (const Piece &piece : pieces)
        spans.push_back({piece.address, piece.bytes.size()});
    return spans;
}

struct Cut {
    const char *what;
    std::vector<std::pair<DWORD, DWORD>> sectors;
    std::uint64_t address;
    std::size_t length;
    Spans expected;
};

const auto flashSectors = uniform(0x08000000, 2048, 4);

const Cut cuts[] = {
    {"inside one sector", flashSectors, 0x08000010, 16, {{0x08000010, 16}}},
    {"exactly one sector", flashSectors, 0x08000800, 2048, {{0x08000800, 2048}}},
    {"across a border", flashSectors, 0x080007FF, 2, {{0x080007FF, 1}, {0x08000800, 1}}},
    {"three sectors", flashSectors, 0x08000400, 4096, {{0x08000400, 1024}, {0x08000800, 2048}, {0x08001000, 1024}}},
    {"after the map at the last size",
     flashSectors,
     0x08001FFF,
     2050,
     {{0x08001FFF, 1}, {0x08002000, 2048}, {0x08002800, 1}}},
    {"far after the map", flashSectors, 0x083FF7FF, 3, {{0x083FF7FF, 1}, {0x083FF800, 2}}},
    {"into the external flash", flashSectors, 0x083FFFFF, 4098, {{0x083FFFFF, 1}, {0x08400000, 4096}, {0x08401000, 1}}},
    {"in the external flash", flashSectors, 0x08400FFF, 2, {{0x08400FFF, 1}, {0x08401000, 1}}},
    {"far above everything", flashSectors, 0x1FFFF7FF, 2049, {{0x1FFFF7FF, 2049}}},
    {"the last addresses", flashSectors, 0xFFFFEFFF, 4097, {{0xFFFFEFFF, 1}, {0xFFFFF000, 4096}}},
    {"below the map", flashSectors, 0x07FFF7FF, 2050, {{0x07FFF7FF, 1}, {0x07FFF800, 2048}, {0x08000000, 1}}},
    {"below a map of odd sectors",
     {{0x08001000, 3000}},
     0x08000000,
     4097,
     {{0x08000000, 1096}, {0x08000448, 3000}, {0x08001000, 1}}},
    {"from the first address", flashSectors, 0, 2049, {{0, 2048}, {2048, 1}}},
    {"sectors of two sizes",
     {{0x08000000, 1024}, {0x08000400, 4096}},
     0x08000000,
     9217,
     {{0x08000000, 1024}, {0x08000400, 4096}, {0x08001400, 4096}, {0x08002400, 1}}},
    {"the grid goes on from the map's end, not from a round address",
     {{0x08000000, 1024}, {0x08000400, 4096}},
     0x08002300,
     0x200,
     {{0x08002300, 0x100}, {0x08002400, 0x100}}},
    {"a hole in the map",
     {{0x08000000, 1024}, {0x08000C00, 2048}},
     0x08000000,
     0x1400,
     {{0x08000000, 1024}, {0x08000400, 1024}, {0x08000800, 1024}, {0x08000C00, 2048}}},
    {"a hole that ends inside a sector of its grid",
     {{0x08000000, 1024}, {0x08000600, 2048}},
     0x08000400,
     0x400,
     {{0x08000400, 512}, {0x08000600, 512}}},
    {"the last size does not divide the way to the external flash",
     {{0x083FD000, 0x2000}},
     0x083FF000,
     0x1001,
     {{0x083FF000, 0x1000}, {0x08400000, 1}}},
    {"no sectors", {}, 0x080007FF, 2050, {{0x080007FF, 1}, {0x08000800, 2048}, {0x08001000, 1}}},
    {"a sector of size 0", {{0x08000000, 0}}, 0x080007FF, 2, {{0x080007FF, 1}, {0x08000800, 1}}},
    {"sectors out of order",
     {{0x08000400, 1024}, {0x08000000, 1024}},
     0x08000000,
     2048,
     {{0x08000000, 1024}, {0x08000400, 1024}}},
    {"sectors that overlap",
     {{0x08000000, 2048}, {0x08000400, 1024}},
     0x08000000,
     2048,
     {{0x08000000, 1024}, {0x08000400, 1024}}},
    {"a sector that wraps is none", {{~DWORD(0) - 10, 100}}, 0x080007FF, 2, {{0x080007FF, 1}, {0x08000800, 1}}},
    {"a sector as large as can be is none",
     {{0x08000000, ~DWORD(0)}},
     0x080007FF,
     2,
     {{0x080007FF, 1}, {0x08000800, 1}}},
};

TEST(Filter, CutsAtSectorBorders) {
    for (const Cut &cut : cuts) {
        SCOPED_TRACE(cut.what);
        Handle image;
        ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
        const Bytes bytes = pattern(cut.length);
        ASSERT_EQ(image.insert(0, cut.address, bytes), noError);
        Map map(cut.sectors);
        ASSERT_EQ(FILES_FilterImageForOperation(image.get(), map.get(), 2, 0), noError);
        const Pieces pieces = image.pieces();
        EXPECT_EQ(spansOf(pieces), cut.expected);
        Bytes joined;
        for (const Piece &piece : pieces)
            joined.insert(joined.end(), piece.bytes.begin(), piece.bytes.end());
        EXPECT_EQ(joined, bytes);
    }
}

TEST(Filter, ASecondTimeChangesNothing) {
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(image.insert(0, 0x07FFFFF0, pattern(10000)), noError);
    Map map(flashSectors);
    ASSERT_EQ(FILES_FilterImageForOperation(image.get(), map.get(), 2, 0), noError);
    const Pieces once = image.pieces();
    ASSERT_EQ(FILES_FilterImageForOperation(image.get(), map.get(), 2, 0), noError);
    EXPECT_EQ(image.pieces(), once);
}

// Four sectors: data, blank, data with blank inside, blank.
Bytes patchy() {
    Bytes bytes = pattern(2048, 1);
    bytes.resize(4096, 0xFF);
    bytes.push_back(0);
    bytes.resize(6143, 0xFF);
    bytes.push_back(0);
    bytes.resize(8192, 0xFF);
    return bytes;
}

Spans optimised(const std::string &name, const Bytes &bytes, BYTE optimise = 1) {
    const TempDir dir;
    Handle made;
    EXPECT_EQ(FILES_CreateImage(made.out(), 1), noError);
    EXPECT_EQ(made.insert(0, 0x08000000, bytes), noError);
    EXPECT_EQ(FILES_ImageToFile((dir / name).c_str(), made.get()), noError);
    Handle image;
    EXPECT_EQ(FILES_ImageFromFile((dir / name).c_str(), image.out(), programImage), noError);
    Map map(flashSectors);
    EXPECT_EQ(FILES_FilterImageForOperation(image.get(), map.get(), 2, optimise), noError);
    return spansOf(image.pieces());
}

TEST(Filter, OptimiseTakesBlankElementsOutOfAddressedImages) {
    const Spans expected{{0x08000000, 2048}, {0x08001000, 2048}};
    for (const char *name : {"a.hex", "a.s19", "a.srec"})
        EXPECT_EQ(optimised(name, patchy()), expected) << name;
}

// A missing inner element would shift the sectors that are erased, a missing first one the image.
TEST(Filter, OptimiseTakesBlankElementsOnlyOffTheEndOfABinary) {
    EXPECT_EQ(optimised("a.bin", patchy()), (Spans{{0x08000000, 2048}, {0x08000800, 2048}, {0x08001000, 2048}}));
    Bytes blankFirst(2048, 0xFF);
    blankFirst.push_back(1);
    EXPECT_EQ(optimised("a.bin", blankFirst), (Spans{{0x08000000, 2048}, {0x08000800, 1}}));
}

TEST(Filter, AnImageOfNothingBut0xFFBecomesEmpty) {
    for (const char *name : {"a.bin", "a.hex", "a.s19"}) {
        EXPECT_TRUE(optimised(name, Bytes(5000, 0xFF)).empty()) << name;
        EXPECT_EQ(optimised(name, Bytes(1, 0xFF), 0).size(), 1u) << name;
    }
}

TEST(Filter, WithoutOptimiseBlankElementsStay) {
    for (const char *name : {"a.bin", "a.hex"})
        EXPECT_EQ(optimised(name, patchy(), 0).size(), 4u) << name;
}

TEST(Filter, BadParameters) {
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    Map map(flashSectors);
    EXPECT_EQ(FILES_FilterImageForOperation(nullptr, map.get(), 2, 0), badParameter);
    EXPECT_EQ(FILES_FilterImageForOperation(image.get(), nullptr, 2, 0), badParameter);
    EXPECT_EQ(FILES_FilterImageForOperation(image.get(), map.get(), 1, 0), badParameter);
    MAPPING hollow{};
    hollow.NbSectors = 4;
    EXPECT_EQ(FILES_FilterImageForOperation(image.get(), &hollow, 2, 0), badParameter);
}

TEST(Filter, AnElementThatOnlyBeginsBlankIsKept) {
    const auto isBlank = [](Bytes bytes) {
        const std::shared_ptr<BYTE> block(new BYTE[bytes.size()], std::default_delete<BYTE[]>());
        std::copy(bytes.begin(), bytes.end(), block.get());
        return files::Element{0, static_cast<std::uint32_t>(bytes.size()), block}.isBlank();
    };
    EXPECT_TRUE(isBlank({0xFF}));
    EXPECT_TRUE(isBlank({0xFF, 0xFF, 0xFF}));
    EXPECT_FALSE(isBlank({0xFF, 0xFF, 0xFE}));
    EXPECT_FALSE(isBlank({0xFF, 0}));
    EXPECT_FALSE(isBlank({0xFE, 0xFF}));
}

} // namespace
