#include <cctype>
#include <numeric>

#include <gtest/gtest.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

const std::string End = ":00000001FF\n";

struct Good {
    const char *what;
    std::string content;
    Pieces pieces;
};

const Good GoodFiles[] = {
    {"a byte order mark", "\xEF\xBB\xBF:0100000055AA\n" + End, {{0, {0x55}}}},
    {"a Ctrl-Z after the end record", ":0100000055AA\n" + End + "\x1A", {{0, {0x55}}}},
    {"a Ctrl-Z on its line", ":0100000055AA\r\n:00000001FF\x1A", {{0, {0x55}}}},
    {"a block filled with Ctrl-Z", ":0100000055AA\n" + End + std::string(128, '\x1A') + "\r\n", {{0, {0x55}}}},
    {"a literal record", ":04000000DEADBEEFC4\n" + End, {{0, {0xDE, 0xAD, 0xBE, 0xEF}}}},
    {"only an end", End, {}},
    {"no line end behind the end record", ":0100000055AA\n:00000001FF", {{0, {0x55}}}},
    {"lower case", ":04000000deadbeefc4\n:00000001ff\n", {{0, {0xDE, 0xAD, 0xBE, 0xEF}}}},
    {"mixed case", ":04000000dEAdBeEfC4\n" + End, {{0, {0xDE, 0xAD, 0xBE, 0xEF}}}},
    {"CRLF", ":0100000055AA\r\n:00000001FF\r\n", {{0, {0x55}}}},
    {"blank lines and blanks at line ends", "\n:0100000055AA \t\n\r\n" + End + "\n\n", {{0, {0x55}}}},
    {"linear base", ihex(4, 0, {0x08, 0x00}) + "\n" + ihex(0, 0x1234, {1, 2}) + "\n" + End, {{0x08001234, {1, 2}}}},
    {"segment base", ihex(2, 0, {0x12, 0x34}) + "\n" + ihex(0, 0x10, {1, 2}) + "\n" + End, {{0x12350, {1, 2}}}},
    {"start records are passed over",
     ihex(3, 0, {0, 1, 2, 3}) + "\n" + ihex(5, 0, {8, 0, 1, 1}) + "\n" + ihex(0, 0, {7}) + "\n" + End,
     {{0, {7}}}},
    {"a record without data", ihex(0, 0x100, {}) + "\n" + End, {}},
    {"the longest record", ihex(0, 0, pattern(255)) + "\n" + End, {{0, pattern(255)}}},
    {"records that touch are one element", ihex(0, 4, {5, 6}) + "\n" + ihex(0, 6, {7}) + "\n" + End, {{4, {5, 6, 7}}}},
    {"so are they in falling order", ihex(0, 6, {7}) + "\n" + ihex(0, 4, {5, 6}) + "\n" + End, {{4, {5, 6, 7}}}},
    {"and with the middle last",
     ihex(0, 0, {1}) + "\n" + ihex(0, 2, {3}) + "\n" + ihex(0, 1, {2}) + "\n" + End,
     {{0, {1, 2, 3}}}},
    {"a gap makes two, by address", ihex(0, 8, {9}) + "\n" + ihex(0, 4, {5}) + "\n" + End, {{4, {5}}, {8, {9}}}},
    {"the same bytes twice", ihex(0, 0, {1, 2, 3}) + "\n" + ihex(0, 1, {2, 3, 4}) + "\n" + End, {{0, {1, 2, 3, 4}}}},
    {"one record inside another",
     ihex(0, 0, {1, 2, 3, 4}) + "\n" + ihex(0, 1, {2}) + "\n" + ihex(0, 2, {3, 4, 5}) + "\n" + End,
     {{0, {1, 2, 3, 4, 5}}}},
    {"linear data run on past 64 KB",
     ihex(4, 0, {0x08, 0x00}) + "\n" + ihex(0, 0xFFFE, {1, 2, 3, 4}) + "\n" + End,
     {{0x0800FFFE, {1, 2, 3, 4}}}},
    {"so do data without a base", ihex(0, 0xFFFE, {1, 2, 3, 4}) + "\n" + End, {{0xFFFE, {1, 2, 3, 4}}}},
    {"data in a segment wrap at its end",
     ihex(2, 0, {0x10, 0x00}) + "\n" + ihex(0, 0xFFFE, {1, 2, 3, 4}) + "\n" + End,
     {{0x10000, {3, 4}}, {0x1FFFE, {1, 2}}}},
    {"up to the last address",
     ihex(4, 0, {0xFF, 0xFF}) + "\n" + ihex(0, 0xFFFE, {1, 2}) + "\n" + End,
     {{0xFFFFFFFE, {1, 2}}}},
    {"both ends of the address space",
     ihex(4, 0, {0xFF, 0xFF}) + "\n" + ihex(0, 0xFFFF, {1}) + "\n" + ihex(4, 0, {0, 0}) + "\n" + ihex(0, 0, {2}) +
         "\n" + End,
     {{0, {2}}, {0xFFFFFFFF, {1}}}},
    {"an offset in the end record", ihex(1, 0x1234, {}) + "\n", {}},
};

struct Bad {
    const char *what;
    std::string content;
    unsigned int status;
};

const Bad BadFiles[] = {
    {"half a byte order mark", "\xEF\xBB" + End, BadFormat},
    {"a byte order mark inside", ":0100000055AA\n\xEF\xBB\xBF" + End, BadFormat},
    {"a Ctrl-Z before the end record", ":0100000055AA\n\x1A\n" + End, BadFormat},
    {"a Ctrl-Z in place of the end record", ":0100000055AA\n\x1A", BadFormat},
    {"a record after the Ctrl-Z", End + "\x1A\n" + ihex(0, 0, {1}) + "\n", BadFormat},
    {"an empty file", "", BadFormat},
    {"no end record", ihex(0, 0, {1}) + "\n", BadFormat},
    {"cut off inside a record", ihex(0, 0, {1}) + "\n:000000", BadFormat},
    {"cut off behind the mark", ihex(0, 0, {1}) + "\n:", BadFormat},
    {"cut off by one character", ":0100000055AA\n:00000001F", BadFormat},
    {"a wrong checksum", ":0100000055AB\n" + End, BadFormat},
    {"a wrong checksum in the end record", ":0100000055AA\n:00000001FE\n", BadFormat},
    {"a bad digit in the data", ":010000005GAA\n" + End, BadFormat},
    {"a bad digit in the length", ":0G00000055AA\n" + End, BadFormat},
    {"a bad digit in the offset", ":01000Z0055AA\n" + End, BadFormat},
    {"a bad digit in the checksum", ":0100000055A \n" + End, BadFormat},
    {"a digit that is no character", std::string(":01000000\x80\xC5") + "AA\n" + End, BadFormat},
    {"a null in the data", std::string(":01000000\0\0AA\n", 14) + End, BadFormat},
    {"fewer data than the length", ":0200000055A9\n" + End, BadFormat},
    {"more data than the length", ":010000005500AA\n" + End, BadFormat},
    {"two records on one line", ":0100000055AA:00000001FF\n", BadFormat},
    {"no mark", "0100000055AA\n" + End, BadFormat},
    {"text in front", "hello\n" + End, BadFormat},
    {"type 06", ihex(6, 0, {}) + "\n" + End, BadFormat},
    {"type FF", ihex(0xFF, 0, {}) + "\n" + End, BadFormat},
    {"an end record with data", ihex(1, 0, {1}) + "\n", BadFormat},
    {"a short segment base", ihex(2, 0, {1}) + "\n" + End, BadFormat},
    {"a long linear base", ihex(4, 0, {1, 2, 3}) + "\n" + End, BadFormat},
    {"a short segment start", ihex(3, 0, {1, 2}) + "\n" + End, BadFormat},
    {"a short linear start", ihex(5, 0, {1, 2}) + "\n" + End, BadFormat},
    {"data behind the end record", End + ihex(0, 0, {1}) + "\n", BadFormat},
    {"a second end record", End + End, BadFormat},
    {"text behind the end record", End + "x", BadFormat},
    {"different bytes at one address", ihex(0, 0, {1}) + "\n" + ihex(0, 0, {2}) + "\n" + End, BadFormat},
    {"different bytes in an overlap", ihex(0, 0, {1, 2, 3}) + "\n" + ihex(0, 2, {4, 5}) + "\n" + End, BadFormat},
    {"different bytes in a falling overlap", ihex(0, 2, {4, 5}) + "\n" + ihex(0, 0, {1, 2, 3}) + "\n" + End, BadFormat},
    {"different bytes inside another record", ihex(0, 0, pattern(64)) + "\n" + ihex(0, 32, {0xFF}) + "\n" + End,
     BadFormat},
    {"data past 32 bits", ihex(4, 0, {0xFF, 0xFF}) + "\n" + ihex(0, 0xFFFF, {1, 2}) + "\n" + End, BadAddressRange},
};

TEST(IntelHex, GoodFiles) {
    const TempDir dir;
    for (const Good &file : GoodFiles) {
        SCOPED_TRACE(file.what);
        Pieces pieces;
        EXPECT_EQ(load(dir, "a.hex", file.content, pieces), NoError);
        EXPECT_EQ(pieces, file.pieces);
    }
}

TEST(IntelHex, BadFiles) {
    const TempDir dir;
    for (const Bad &file : BadFiles) {
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
        EXPECT_EQ(load(dir, "a.hex", whole.substr(0, length), pieces), BadFormat) << length;
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
        EXPECT_EQ(load(dir, "a.hex", wrong + "\n" + End, pieces), BadFormat) << wrong;
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
            EXPECT_EQ(load(dir, "a.hex", wrong + "\n" + End, pieces), same ? NoError : BadFormat) << at << ' ' << c;
        }
    }
}

TEST(IntelHex, EveryValueIsReadAndWritten) {
    const TempDir dir;
    Bytes all(256);
    std::iota(all.begin(), all.end(), BYTE(0));
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), NoError);
    ASSERT_EQ(image.insert(0, 0, all), NoError);
    ASSERT_EQ(FILES_ImageToFile((dir / "o.hex").c_str(), image.get()), NoError);
    std::string expected = ihex(4, 0, {0, 0}) + "\n";
    for (unsigned at = 0; at < 256; at += 32)
        expected += ihex(0, at, Bytes(all.begin() + at, all.begin() + at + 32)) + "\n";
    EXPECT_EQ(readFile(dir / "o.hex"), expected + End);
    Pieces pieces;
    EXPECT_EQ(load(dir, "o.hex", expected + End, pieces), NoError);
    EXPECT_EQ(pieces, (Pieces{{0, all}}));
    std::string small = expected + End;
    for (char &c : small)
        c = static_cast<char>(std::tolower(c));
    EXPECT_EQ(load(dir, "o.hex", small, pieces), NoError);
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
        ASSERT_EQ(load(dir, "a.hex", std::string(shift, '\n') + content + End, pieces), NoError) << shift;
        ASSERT_EQ(pieces, (Pieces{{0, expected}})) << shift;
    }
}

TEST(IntelHex, WrittenFile) {
    const TempDir dir;
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), NoError);
    ASSERT_EQ(image.insert(0, 0x0800FFF8, pattern(40)), NoError);
    ASSERT_EQ(image.insert(1, 0x00000010, {1, 2}), NoError);
    ASSERT_EQ(FILES_ImageToFile((dir / "o.hex").c_str(), image.get()), NoError);
    const Bytes bytes = pattern(40);
    const std::string expected = ihex(4, 0, {0, 0}) + "\n" + ihex(0, 0x10, {1, 2}) + "\n" + ihex(4, 0, {8, 0}) + "\n" +
                                 ihex(0, 0xFFF8, Bytes(bytes.begin(), bytes.begin() + 8)) + "\n" + ihex(4, 0, {8, 1}) +
                                 "\n" + ihex(0, 0, Bytes(bytes.begin() + 8, bytes.end())) + "\n" + End;
    EXPECT_EQ(readFile(dir / "o.hex"), expected);
}

TEST(IntelHex, TheLastAddressesAreWritten) {
    const TempDir dir;
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), NoError);
    ASSERT_EQ(image.insert(0, 0xFFFFFFF0, pattern(16)), NoError);
    ASSERT_EQ(FILES_ImageToFile((dir / "o.hex").c_str(), image.get()), NoError);
    Pieces pieces;
    EXPECT_EQ(load(dir, "o.hex", readFile(dir / "o.hex"), pieces), NoError);
    EXPECT_EQ(pieces, (Pieces{{0xFFFFFFF0, pattern(16)}}));
}

} // namespace
