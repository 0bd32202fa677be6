#include <cctype>
#include <numeric>

#include <gtest/gtest.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

const std::string endRecord = ":00000001FF\n";

struct Good {
    const char *what;
    std::string content;
    Pieces pieces;
};

const Good goodFiles[] = {
    {"a byte order mark", "\xEF\xBB\xBF:0100000055AA\n" + endRecord, {{0, {0x55}}}},
    {"a Ctrl-Z after the end record", ":0100000055AA\n" + endRecord + "\x1A", {{0, {0x55}}}},
    {"a Ctrl-Z on its line", ":0100000055AA\r\n:00000001FF\x1A", {{0, {0x55}}}},
    {"a block filled with Ctrl-Z", ":0100000055AA\n" + endRecord + std::string(128, '\x1A') + "\r\n", {{0, {0x55}}}},
    {"a literal record", ":04000000DEADBEEFC4\n" + endRecord, {{0, {0xDE, 0xAD, 0xBE, 0xEF}}}},
    {"only an end", endRecord, {}},
    {"no line end after the end record", ":0100000055AA\n:00000001FF", {{0, {0x55}}}},
    {"lower case", ":04000000deadbeefc4\n:00000001ff\n", {{0, {0xDE, 0xAD, 0xBE, 0xEF}}}},
    {"mixed case", ":04000000dEAdBeEfC4\n" + endRecord, {{0, {0xDE, 0xAD, 0xBE, 0xEF}}}},
    {"CRLF", ":0100000055AA\r\n:00000001FF\r\n", {{0, {0x55}}}},
    {"blank lines and blanks at line ends", "\n:0100000055AA \t\n\r\n" + endRecord + "\n\n", {{0, {0x55}}}},
    {"linear base",
     ihex(4, 0, {0x08, 0x00}) + "\n" + ihex(0, 0x1234, {1, 2}) + "\n" + endRecord,
     {{0x08001234, {1, 2}}}},
    {"segment base", ihex(2, 0, {0x12, 0x34}) + "\n" + ihex(0, 0x10, {1, 2}) + "\n" + endRecord, {{0x12350, {1, 2}}}},
    {"start records are passed over",
     ihex(3, 0, {0, 1, 2, 3}) + "\n" + ihex(5, 0, {8, 0, 1, 1}) + "\n" + ihex(0, 0, {7}) + "\n" + endRecord,
     {{0, {7}}}},
    {"a record without data", ihex(0, 0x100, {}) + "\n" + endRecord, {}},
    {"the longest record", ihex(0, 0, pattern(255)) + "\n" + endRecord, {{0, pattern(255)}}},
    {"records that touch are one element",
     ihex(0, 4, {5, 6}) + "\n" + ihex(0, 6, {7}) + "\n" + endRecord,
     {{4, {5, 6, 7}}}},
    {"so are they in falling order", ihex(0, 6, {7}) + "\n" + ihex(0, 4, {5, 6}) + "\n" + endRecord, {{4, {5, 6, 7}}}},
    {"and with the middle last",
     ihex(0, 0, {1}) + "\n" + ihex(0, 2, {3}) + "\n" + ihex(0, 1, {2}) + "\n" + endRecord,
     {{0, {1, 2, 3}}}},
    {"a gap makes two, by address", ihex(0, 8, {9}) + "\n" + ihex(0, 4, {5}) + "\n" + endRecord, {{4, {5}}, {8, {9}}}},
    {"the same bytes twice",
     ihex(0, 0, {1, 2, 3}) + "\n" + ihex(0, 1, {2, 3, 4}) + "\n" + endRecord,
     {{0, {1, 2, 3, 4}}}},
    {"one record inside another",
     ihex(0, 0, {1, 2, 3, 4}) + "\n" + ihex(0, 1, {2}) + "\n" + ihex(0, 2, {3, 4, 5}) + "\n" + endRecord,
     {{0, {1, 2, 3, 4, 5}}}},
    {"linear data run on past 64 KB",
     ihex(4, 0, {0x08, 0x00}) + "\n" + ihex(0, 0xFFFE, {1, 2, 3, 4}) + "\n" + endRecord,
     {{0x0800FFFE, {1, 2, 3, 4}}}},
    {"so do data without a base", ihex(0, 0xFFFE, {1, 2, 3, 4}) + "\n" + endRecord, {{0xFFFE, {1, 2, 3, 4}}}},
    {"data in a segment wrap at its end",
     ihex(2, 0, {0x10, 0x00}) + "\n" + ihex(0, 0xFFFE, {1, 2, 3, 4}) + "\n" + endRecord,
     {{0x10000, {3, 4}}, {0x1FFFE, {1, 2}}}},
    {"up to the last address",
     ihex(4, 0, {0xFF, 0xFF}) + "\n" + ihex(0, 0xFFFE, {1, 2}) + "\n" + endRecord,
     {{0xFFFFFFFE, {1, 2}}}},
    {"both ends of the address space",
     ihex(4, 0, {0xFF, 0xFF}) + "\n" + ihex(0, 0xFFFF, {1}) + "\n" + ihex(4, 0, {0, 0}) + "\n" + ihex(0, 0, {2}) +
         "\n" + endRecord,
     {{0, {2}}, {0xFFFFFFFF, {1}}}},
    {"an offset in the end record", ihex(1, 0x1234, {}) + "\n", {}},
};

struct Bad {
    const char *what;
    std::string content;
    unsigned int status;
};

const Bad badFiles[] = {
    {"half a byte order mark", "\xEF\xBB" + endRecord, badFormat},
    {"a byte order mark inside", ":0100000055AA\n\xEF\xBB\xBF" + endRecord, badFormat},
    {"a Ctrl-Z before the end record", ":0100000055AA\n\x1A\n" + endRecord, badFormat},
    {"a Ctrl-Z in place of the end record", ":0100000055AA\n\x1A", badFormat},
    {"a record after the Ctrl-Z", endRecord + "\x1A\n" + ihex(0, 0, {1}) + "\n", badFormat},
    {"an empty file", "", badFormat},
    {"no end record", ihex(0, 0, {1}) + "\n", badFormat},
    {"cut off inside a record", ihex(0, 0, {1}) + "\n:000000", badFormat},
    {"cut off after the mark", ihex(0, 0, {1}) + "\n:", badFormat},
    {"cut off by one character", ":0100000055AA\n:00000001F", badFormat},
    {"a wrong checksum", ":0100000055AB\n" + endRecord, badFormat},
    {"a wrong checksum in the end record", ":0100000055AA\n:00000001FE\n", badFormat},
    {"a bad digit in the data", ":010000005GAA\n" + endRecord, badFormat},
    {"a bad digit in the length", ":0G00000055AA\n" + endRecord, badFormat},
    {"a bad digit in the offset", ":01000Z0055AA\n" + endRecord, badFormat},
    {"a bad digit in the checksum", ":0100000055A \n" + endRecord, badFormat},
    {"a digit that is no character", std::string(":01000000\x80\xC5") + "AA\n" + endRecord, badFormat},
    {"a null in the data", std::string(":01000000\0\0AA\n", 14) + endRecord, badFormat},
    {"fewer data than the length", ":0200000055A9\n" + endRecord, badFormat},
    {"more data than the length", ":010000005500AA\n" + endRecord, badFormat},
    {"two records on one line", ":0100000055AA:00000001FF\n", badFormat},
    {"no mark", "0100000055AA\n" + endRecord, badFormat},
    {"another mark", "S0100000055AA\n" + endRecord, badFormat},
    {"text before the records", "hello\n" + endRecord, badFormat},
    {"type 06", ihex(6, 0, {}) + "\n" + endRecord, badFormat},
    {"type FF", ihex(0xFF, 0, {}) + "\n" + endRecord, badFormat},
    {"an end record with data", ihex(1, 0, {1}) + "\n", badFormat},
    {"a short segment base", ihex(2, 0, {1}) + "\n" + endRecord, badFormat},
    {"a long linear base", ihex(4, 0, {1, 2, 3}) + "\n" + endRecord, badFormat},
    {"a short segment start", ihex(3, 0, {1, 2}) + "\n" + endRecord, badFormat},
    {"a short linear start", ihex(5, 0, {1, 2}) + "\n" + endRecord, badFormat},
    {"data after the end record", endRecord + ihex(0, 0, {1}) + "\n", badFormat},
    {"a second end record", endRecord + endRecord, badFormat},
    {"text after the end record", endRecord + "x", badFormat},
    {"different bytes at one address", ihex(0, 0, {1}) + "\n" + ihex(0, 0, {2}) + "\n" + endRecord, badFormat},
    {"different bytes in an overlap", ihex(0, 0, {1, 2, 3}) + "\n" + ihex(0, 2, {4, 5}) + "\n" + endRecord, badFormat},
    {"different bytes in a falling overlap", ihex(0, 2, {4, 5}) + "\n" + ihex(0, 0, {1, 2, 3}) + "\n" + endRecord,
     badFormat},
    {"different bytes inside another record", ihex(0, 0, pattern(64)) + "\n" + ihex(0, 32, {0xFF}) + "\n" + endRecord,
     badFormat},
    {"data past 32 bits", ihex(4, 0, {0xFF, 0xFF}) + "\n" + ihex(0, 0xFFFF, {1, 2}) + "\n" + endRecord,
     badAddressRange},
};

TEST(IntelHex, goodFiles) {
    const TempDir dir;
    for (const Good &file : goodFiles) {
        SCOPED_TRACE(file.what);
        Pieces pieces;
        EXPECT_EQ(load(dir, "a.hex", file.content, pieces), noError);
        EXPECT_EQ(pieces, file.pieces);
    }
}

TEST(IntelHex, badFiles) {
    const TempDir dir;
    for (const Bad &file : badFiles) {
        SCOPED_TRACE(file.what);
        Pieces pieces;
        EXPECT_EQ(load(dir, "a.hex", file.content, pieces), file.status);
        EXPECT_TRUE(pieces.empty());
    }
}

// Whatever of it is missing, a cut-off file must never be programmed.
TEST(IntelHex, EveryCutOffFileIsRefused) {
    const TempDir dir;
    const std::string whole = ihex(4, 0, {8, 0}) + "\n" + ihex(0, 0, pattern(16)) + "\n" + ":00000001FF";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        Pieces pieces;
        EXPECT_EQ(load(dir, "a.hex", whole.substr(0, length), pieces), badFormat) << length;
    }
}

// A checksum tells any single wrong digit.
TEST(IntelHex, EveryWrongDigitIsRefused) {
    const TempDir dir;
    const std::string record = ihex(0, 0x1230, pattern(8));
    for (std::size_t at = 1; at < record.size(); ++at) {
        std::string wrong = record;
        wrong[at] = wrong[at] == '0' ? '1' : '0';
        Pieces pieces;
        EXPECT_EQ(load(dir, "a.hex", wrong + "\n" + endRecord, pieces), badFormat) << wrong;
    }
}

// Digits are decoded in blocks and what is left over one by one: no character slips through either.
TEST(IntelHex, EveryCharacterThatIsNoDigitIsRefused) {
    const TempDir dir;
    const std::string record = ihex(0, 0, pattern(40));
    for (const std::size_t at : {9u, 24u, 25u, 41u, 72u, 88u, 90u}) {
        for (int c = 0; c < 256; ++c) {
            std::string wrong = record;
            wrong[at] = static_cast<char>(c);
            const bool same = std::tolower(c) == std::tolower(record[at]);
            Pieces pieces;
            EXPECT_EQ(load(dir, "a.hex", wrong + "\n" + endRecord, pieces), same ? noError : badFormat)
                << at << ' ' << c;
        }
    }
}

TEST(IntelHex, EveryValueIsReadAndWritten) {
    const TempDir dir;
    Bytes all(256);
    std::iota(all.begin(), all.end(), BYTE(0));
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(image.insert(0, 0, all), noError);
    ASSERT_EQ(FILES_ImageToFile((dir / "o.hex").c_str(), image.get()), noError);
    std::string expected = ihex(4, 0, {0, 0}) + "\n";
    for (unsigned at = 0; at < 256; at += 32)
        expected += ihex(0, at, Bytes(all.begin() + at, all.begin() + at + 32)) + "\n";
    EXPECT_EQ(readFile(dir / "o.hex"), expected + endRecord);
    Pieces pieces;
    EXPECT_EQ(load(dir, "o.hex", expected + endRecord, pieces), noError);
    EXPECT_EQ(pieces, (Pieces{{0, all}}));
    std::string small = expected + endRecord;
    for (char &c : small)
        c = static_cast<char>(std::tolower(c));
    EXPECT_EQ(load(dir, "o.hex", small, pieces), noError);
    EXPECT_EQ(pieces, (Pieces{{0, all}}));
}

// The file is read through a window of 256 KB: records have to survive its border wherever it falls.
TEST(IntelHex, RecordsAcrossTheWindow) {
    const TempDir dir;
    std::string content;
    Bytes expected;
    for (unsigned i = 0; i < 3600; ++i) {
        const Bytes data = pattern(32, i);
        if (i % 2048 == 0)
            content += ihex(4, 0, {0, static_cast<BYTE>(i / 2048)}) + "\n";
        content += ihex(0, i * 32 % 0x10000, data) + "\n";
        expected.insert(expected.end(), data.begin(), data.end());
    }
    ASSERT_GT(content.size(), 256u * 1024);
    for (unsigned shift = 0; shift < 90; ++shift) {
        Pieces pieces;
        ASSERT_EQ(load(dir, "a.hex", std::string(shift, '\n') + content + endRecord, pieces), noError) << shift;
        ASSERT_EQ(pieces, (Pieces{{0, expected}})) << shift;
    }
}

TEST(IntelHex, WrittenFile) {
    const TempDir dir;
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(image.insert(0, 0x0800FFF8, pattern(40)), noError);
    ASSERT_EQ(image.insert(1, 0x00000010, {1, 2}), noError);
    ASSERT_EQ(FILES_ImageToFile((dir / "o.hex").c_str(), image.get()), noError);
    const Bytes bytes = pattern(40);
    const std::string expected = ihex(4, 0, {0, 0}) + "\n" + ihex(0, 0x10, {1, 2}) + "\n" + ihex(4, 0, {8, 0}) + "\n" +
                                 ihex(0, 0xFFF8, Bytes(bytes.begin(), bytes.begin() + 8)) + "\n" + ihex(4, 0, {8, 1}) +
                                 "\n" + ihex(0, 0, Bytes(bytes.begin() + 8, bytes.end())) + "\n" + endRecord;
    EXPECT_EQ(readFile(dir / "o.hex"), expected);
}

TEST(IntelHex, TheLastAddressesAreWritten) {
    const TempDir dir;
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(image.insert(0, 0xFFFFFFF0, pattern(16)), noError);
    ASSERT_EQ(FILES_ImageToFile((dir / "o.hex").c_str(), image.get()), noError);
    Pieces pieces;
    EXPECT_EQ(load(dir, "o.hex", readFile(dir / "o.hex"), pieces), noError);
    EXPECT_EQ(pieces, (Pieces{{0xFFFFFFF0, pattern(16)}}));
}

} // namespace
