#include <gtest/gtest.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

const std::string headRecord = "S0030000FC\n";
const std::string endRecord = "S9030000FC\n";

struct Good {
    const char *what;
    std::string content;
    Pieces pieces;
};

const Good goodFiles[] = {
    {"a byte order mark", "\xEF\xBB\xBF" + srec(1, 0, {1}) + "\n" + endRecord, {{0, {1}}}},
    {"a Ctrl-Z after the end record", srec(1, 0, {1}) + "\n" + endRecord + "\x1A\x1A\n", {{0, {1}}}},
    {"a Ctrl-Z after a right count", srec(1, 0, {1}) + "\n" + srec(5, 1, {}) + "\x1A", {{0, {1}}}},
    {"a literal record", "S107000001020304EE\nS9030000FC\n", {{0, {1, 2, 3, 4}}}},
    {"only an end", endRecord, {}},
    {"no line end after the end record", "S104000055A6\nS9030000FC", {{0, {0x55}}}},
    {"lower case digits", "S1070000deadbeefc0\nS9030000fc\n", {{0, {0xDE, 0xAD, 0xBE, 0xEF}}}},
    {"CRLF", "S104000055A6\r\nS9030000FC\r\n", {{0, {0x55}}}},
    {"a header with a name", srec(0, 0, {'a', 'b'}) + "\n" + srec(1, 0, {1}) + "\n" + endRecord, {{0, {1}}}},
    {"S1", srec(1, 0xFFFF, {1}) + "\n" + endRecord, {{0xFFFF, {1}}}},
    {"S2", srec(2, 0x123456, {1}) + "\n" + srec(8, 0, {}) + "\n", {{0x123456, {1}}}},
    {"S3", srec(3, 0x08001234, {1}) + "\n" + srec(7, 0x08000000, {}) + "\n", {{0x08001234, {1}}}},
    {"S1, S2 and S3 in one file",
     srec(3, 2, {3}) + "\n" + srec(2, 1, {2}) + "\n" + srec(1, 0, {1}) + "\n" + endRecord,
     {{0, {1, 2, 3}}}},
    {"the longest S1", srec(1, 0, pattern(252)) + "\n" + endRecord, {{0, pattern(252)}}},
    {"the longest S3", srec(3, 0, pattern(250)) + "\n" + endRecord, {{0, pattern(250)}}},
    {"S1 data past 16 bits", srec(1, 0xFFFF, {1, 2}) + "\n" + endRecord, {{0xFFFF, {1, 2}}}},
    {"a record without data", srec(1, 0, {}) + "\n" + endRecord, {}},
    {"S5 counts the data records",
     headRecord + srec(1, 0, {1}) + "\n" + srec(1, 1, {2}) + "\n" + srec(5, 2, {}) + "\n" + endRecord,
     {{0, {1, 2}}}},
    {"so does S6", srec(1, 0, {1}) + "\n" + srec(6, 1, {}) + "\n" + endRecord, {{0, {1}}}},
    {"a right count is an end, as some writers have no other",
     headRecord + srec(1, 0, {1}) + "\n" + srec(5, 1, {}) + "\n",
     {{0, {1}}}},
    {"data after a count", srec(5, 0, {}) + "\n" + srec(1, 0, {1}) + "\n" + endRecord, {{0, {1}}}},
    {"S5 of none", srec(5, 0, {}) + "\n" + endRecord, {}},
    {"the same bytes twice", srec(1, 0, {1, 2}) + "\n" + srec(1, 1, {2, 3}) + "\n" + endRecord, {{0, {1, 2, 3}}}},
    {"up to the last address", srec(3, 0xFFFFFFFE, {1, 2}) + "\n" + endRecord, {{0xFFFFFFFE, {1, 2}}}},
};

struct Bad {
    const char *what;
    std::string content;
    unsigned int status;
};

const Bad badFiles[] = {
    {"a Ctrl-Z before the end record", srec(1, 0, {1}) + "\n\x1A\n" + endRecord, badFormat},
    {"a record after a count and a Ctrl-Z", srec(5, 0, {}) + "\n\x1A\n" + srec(1, 0, {1}) + "\n" + endRecord,
     badFormat},
    {"an empty file", "", badFormat},
    {"no end record", headRecord + srec(1, 0, {1}) + "\n", badFormat},
    {"a wrong count is no end", srec(1, 0, {1}) + "\n" + srec(5, 2, {}) + "\n", badFormat},
    {"a count is no end for data after it", srec(1, 0, {1}) + "\n" + srec(5, 1, {}) + "\n" + srec(1, 1, {2}) + "\n",
     badFormat},
    {"a wrong checksum", "S104000055A7\n" + endRecord, badFormat},
    {"a wrong checksum in the end record", "S9030000FD\n", badFormat},
    {"a wrong checksum in the header", "S0030000FD\n" + endRecord, badFormat},
    {"a bad digit in the data", "S10400005GA6\n" + endRecord, badFormat},
    {"a bad digit in the address", "S1040X0055A6\n" + endRecord, badFormat},
    {"a bad digit in the count", "S1G4000055A6\n" + endRecord, badFormat},
    {"a type that is no digit", "SA04000055A6\n" + endRecord, badFormat},
    {"a small mark", "s104000055A6\n" + endRecord, badFormat},
    {"S4", "S4030000FC\n" + endRecord, badFormat},
    {"a count that is too small for the address", "S10200FD\n" + endRecord, badFormat},
    {"a count of 0", "S100FF\n" + endRecord, badFormat},
    {"fewer data than the count", "S105000055A5\n" + endRecord, badFormat},
    {"more data than the count", "S10400005500A6\n" + endRecord, badFormat},
    {"two records on one line", "S104000055A6S9030000FC\n", badFormat},
    {"S5 counts wrong", srec(1, 0, {1}) + "\n" + srec(5, 2, {}) + "\n" + endRecord, badFormat},
    {"S6 counts wrong", srec(1, 0, {1}) + "\n" + srec(6, 0, {}) + "\n" + endRecord, badFormat},
    {"S5 with data", srec(5, 0, {1}) + "\n" + endRecord, badFormat},
    {"S9 with data", srec(9, 0, {1}) + "\n", badFormat},
    {"S7 too short", "S7030000FC\n", badFormat},
    {"data after the end record", endRecord + srec(1, 0, {1}) + "\n", badFormat},
    {"a second end record", endRecord + endRecord, badFormat},
    {"text after the end record", endRecord + "x", badFormat},
    {"different bytes at one address", srec(1, 0, {1}) + "\n" + srec(1, 0, {2}) + "\n" + endRecord, badFormat},
    {"data past 32 bits", srec(3, 0xFFFFFFFF, {1, 2}) + "\n" + endRecord, badAddressRange},
};

TEST(SRecord, goodFiles) {
    const TempDir dir;
    for (const Good &file : goodFiles)
        for (const char *name : {"a.s19", "a.srec"}) {
            SCOPED_TRACE(file.what);
            Pieces pieces;
            EXPECT_EQ(load(dir, name, file.content, pieces), noError);
            EXPECT_EQ(pieces, file.pieces);
        }
}

TEST(SRecord, badFiles) {
    const TempDir dir;
    for (const Bad &file : badFiles) {
        SCOPED_TRACE(file.what);
        Pieces pieces;
        EXPECT_EQ(load(dir, "a.s19", file.content, pieces), file.status);
        EXPECT_TRUE(pieces.empty());
    }
}

TEST(SRecord, EveryCutOffFileIsRefused) {
    const TempDir dir;
    const std::string whole = headRecord + srec(3, 0x08000000, pattern(16)) + "\nS9030000FC";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        Pieces pieces;
        EXPECT_EQ(load(dir, "a.s19", whole.substr(0, length), pieces), badFormat) << length;
    }
}

TEST(SRecord, EveryWrongDigitIsRefused) {
    const TempDir dir;
    const std::string record = srec(3, 0x08001230, pattern(8));
    for (std::size_t at = 2; at < record.size(); ++at) {
        std::string wrong = record;
        wrong[at] = wrong[at] == '0' ? '1' : '0';
        Pieces pieces;
        EXPECT_EQ(load(dir, "a.s19", wrong + "\n" + endRecord, pieces), badFormat) << wrong;
    }
}

TEST(SRecord, WrittenFile) {
    const TempDir dir;
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(FILES_SetImageName(image.get(), "/some/where/app.hex"), noError);
    ASSERT_EQ(image.insert(0, 0x08000000, pattern(40)), noError);
    ASSERT_EQ(FILES_ImageToFile((dir / "o.srec").c_str(), image.get()), noError);
    const Bytes bytes = pattern(40);
    const std::string expected = srec(0, 0, {'a', 'p', 'p', '.', 'h', 'e', 'x'}) + "\n" +
                                 srec(3, 0x08000000, Bytes(bytes.begin(), bytes.begin() + 32)) + "\n" +
                                 srec(3, 0x08000020, Bytes(bytes.begin() + 32, bytes.end())) + "\n" + srec(7, 0, {}) +
                                 "\n";
    EXPECT_EQ(readFile(dir / "o.srec"), expected);
}

} // namespace
