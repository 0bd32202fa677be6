// What is told of files: why an image is refused, what OTP files and option bytes say, and how an OTP file is made.

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "look/Chip.h"
#include "look/Diagnosis.h"
#include "look/OptionFacts.h"
#include "look/OtpFacts.h"
#include "look/OtpPack.h"
#include "programs/FileBytes.h"
#include "programs/Status.h"

namespace {

const std::string base = ":020000040800F2\n";
const std::string record = ":0400000001020304F2\n";
const std::string end = ":00000001FF\n";

struct Refused {
    const char *name;
    std::string text;
    const char *why;
};

const Refused refused[] = {
    {"a.hex", base + ":04000000010G0304EE\n" + end, "line 2, column 13: \"G\" is no hexadecimal digit"},
    {"a.hex", base + ":0400000001020304F3\n" + end, "line 2, column 18: the checksum is F3, and F2 would be right"},
    {"a.hex", base + ":04000007010203F2\n" + end, "line 2, column 18: the record breaks off"},
    {"a.hex", base + ":0000000AF6\n" + end, "line 2, column 8: no record has this type"},
    {"a.hex", base + ":0100000400FB\n" + end, "line 2, column 8: a record of this type has 2 bytes"},
    {"a.hex", base + ":0400000001020304F2xx\n" + end, "line 2, column 20: something stands behind the record"},
    {"a.hex", base + record + "rest\n", "line 3, column 1: a record begins with \":\""},
    {"a.hex", base + record, "line 3, column 1: the file ends without an end record: it was cut off"},
    {"a.hex", end + "\r\n" + record, "line 3, column 1: it stands behind the end record"},
    {"a.hex", base + record + ":0100020007F6\n" + end, "lines 2 and 3 give address 08000002 different bytes"},
    {"a.s19", "S107080000000102030\n", "line 1, column 19: something stands behind the record"},
    {"a.s19", "S4030000FC\n", "line 1, column 2: no record has this type"},
    {"a.s19", "S1050000AABB95\nS5030002FA\nS9030000FC\n",
     "line 2, column 1: it counts other than the data records in front of it, 1"},
    {"a.elf", "x", "no format has this suffix"},
};

TEST(ImageDiagnosis, TellsWhyAndWhere) {
    for (const Refused &one : refused) {
        Section report;
        EXPECT_FALSE(isTaken(one.name, one.text, report)) << one.text;
        ASSERT_TRUE(report.json().contains("findings")) << one.text;
        EXPECT_EQ(report.json()["findings"][0]["text"], one.why) << one.text;
    }
}

TEST(ImageDiagnosis, SaysNothingOfWhatIsTaken) {
    for (const std::string &text : {base + record + end, base + record + record + end, "\xEF\xBB\xBF" + base + end}) {
        Section report;
        EXPECT_TRUE(isTaken("a.hex", text, report)) << text;
        EXPECT_TRUE(report.json().empty()) << text;
    }
}

class LookFiles : public testing::Test {
protected:
    LookFiles() {
        char pattern[] = "/tmp/zv32-files-XXXXXX";
        m_path = mkdtemp(pattern);
        std::filesystem::current_path(m_path);
        std::filesystem::create_directory_symlink(MAP_DIR, "Map");
    }
    ~LookFiles() override {
        std::filesystem::current_path("/");
        std::filesystem::remove_all(m_path);
    }

    static std::string refusalOf(const std::string &table) {
        std::ofstream("t.txt") << table;
        try {
            packOtp("t.txt", "o.zvtp", &chipNamed("ZV32M412_256K"));
        } catch (const Refusal &refusal) {
            return refusal.what();
        }
        return "";
    }

private:
    std::string m_path;
};

TEST_F(LookFiles, AnOtpFileIsMadeOfAText) {
    EXPECT_EQ(refusalOf("# lot 7\n0 \"A#\"\n\n2 0102 lock # for ever\n"), "");
    const std::string bytes = bytesOfFile("o.zvtp", 1000);
    ASSERT_EQ(bytes.size(), 120U); // three records, each with its padding
    EXPECT_EQ(bytes.substr(0, 8), std::string("\0\0\0\0A#\xFF\xFF", 8));
    EXPECT_EQ(bytes.substr(36, 2), std::string("\1\0", 2));
    EXPECT_EQ(bytes.substr(38, 4), std::string("\0\0\0\40", 4));
    EXPECT_EQ(bytes.substr(74, 2), std::string("\1\1", 2)); // not named: nothing
    EXPECT_EQ(bytes.substr(76, 6), std::string("\0\0\0\100\1\2", 6));
    EXPECT_EQ(bytes.substr(112, 2), std::string("\0\0", 2));
}

TEST_F(LookFiles, ATextThatIsNoneIsRefusedWithItsLine) {
    const struct {
        const char *table;
        const char *why;
    } table[] = {
        {"", "t.txt: no block in it"},
        {"x 01", "t.txt: line 1: a line begins with the number of a block, not with \"x\""},
        {"\n32 01", "t.txt: line 2: block 32 is not there: the last one is 31"},
        {"1 01\n1 02", "t.txt: line 2: block 1 stands here for the second time"},
        {"1 012", "t.txt: line 1: the data are pairs of hexadecimal digits, a text in quotes or \"-\""},
        {"1 \"abc", "t.txt: line 1: the text has no quote at its end"},
        {"1 01 locked", "t.txt: line 1: behind the data stands \"lock\" or nothing"},
        {"1 -", "t.txt: line 1: \"-\" without \"lock\" does nothing"},
        {"1 \"123456789012345678901234567890123\"", "t.txt: line 1: a block has 1 to 32 bytes, not 33"},
    };
    for (const auto &row : table)
        EXPECT_EQ(refusalOf(row.table), row.why);
    EXPECT_FALSE(std::filesystem::exists("o.zvtp"));
}

TEST_F(LookFiles, AnOtpFileIsToldWriteByWrite) {
    ASSERT_EQ(refusalOf("0 41\n1 - lock\n"), "");
    Section report;
    ASSERT_TRUE(tellOtp("o.zvtp", &chipNamed("ZV32M412_256K"), report));
    const Json writes = report.json()["writes"];
    ASSERT_EQ(writes.size(), 2U);
    EXPECT_EQ(writes[0]["address"], 0x1FFFF000);
    EXPECT_EQ(writes[0]["place"], "block 0");
    EXPECT_EQ(writes[1]["address"], 0x1FFFF501);
    EXPECT_EQ(writes[1]["place"], "lock of block 1");
    EXPECT_EQ(report.worst(), Mark::warning);
}

// A record's address and its place in the file both count, and nothing holds them together.
TEST_F(LookFiles, WhatAnOtpFileReachesElsewhereIsAnError) {
    const struct {
        std::string place;
        const char *name;
    } table[] = {{std::string("\xE8\x00\x10\x00", 4), "outside"}, {std::string("\0\0\0\x40", 4), "lock"}};
    for (const auto &row : table) {
        std::ofstream("x.zvtp") << row.place << std::string(32, 'x') << std::string("\0\0..", 4);
        Section report;
        ASSERT_TRUE(tellOtp("x.zvtp", &chipNamed("ZV32M412_256K"), report));
        const Json json = report.json();
        bool isTold = false;
        for (const Json &finding : json["findings"])
            isTold = isTold || (finding["name"] == row.name && finding["mark"] == "error");
        EXPECT_TRUE(isTold) << row.name;
    }
}

TEST_F(LookFiles, OptionBytesAreReadByTheLayout) {
    std::string bytes;
    for (int i = 0; i < 2048; ++i)
        bytes += std::string("\xFF\0", 2);
    bytes.replace(0, 2, "\xA5\x5A");
    bytes.replace(8, 2, "\xFE\x01");
    bytes.replace(32, 2, "\x12\x34"); // no complement
    std::ofstream("o.bin") << bytes;
    Section report;
    tellOptionFile("o.bin", chipNamed("ZV32F403A_1024K"), 0, tellOptions, report);
    const Json json = report.json();
    EXPECT_EQ(json["accessProtection"], 0xA5);
    EXPECT_EQ(json["protectedSectors"], (Json{{0, 1}}));
    EXPECT_EQ(json["bytesThatAreNotFF"][3], (Json{{"byte", 16}, {"name", "BANK3KEY0"}, {"value", 0x12}}));
    EXPECT_EQ(json["findings"][0]["text"], "bytes 16 do not stand beside their complements: the values alone count");
    std::ofstream("few.bin") << "abc";
    EXPECT_THROW(tellOptionFile("few.bin", chipNamed("ZV32F403A_1024K"), 0, tellOptions, report), Refusal);
}

} // namespace
