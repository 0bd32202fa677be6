#include "line/plan/Plan.h"

#include <set>

#include "programs/FileBytes.h"
#include "tests/line/LineFiles.h"

namespace {

class PlanTest : public LineFiles {
protected:
    Plan planFrom(const std::string &jobFile) const {
        const Job read = readJob(jobFile);
        const Chip chip(read.chip, read.chipPlace);
        return planOf(read, chip, imageOf(read, chip));
    }
    Plan plan(const std::string &text) const {
        write("job.toml", text);
        return planFrom(path("job.toml"));
    }
    // A job with these tables.
    std::string onChipWithOtp(const std::string &tables) const {
        std::string text = with("ZV32F403A_1024K", "ZV32F457_1024K");
        return text.insert(text.find("[finish]"), tables);
    }
};

// One change for each value of a job.
const char *const changes[][2] = {
    {"name = \"ZX100\"", "name = \"ZX101\""},
    {"1000\n", "1001\n"},
    {"ZV32F403A_1024K", "ZV32F457_1024K"},
    {"[image]", "protected = \"erase\"\n[image]"},
    {"[image]", "again = \"make\"\n[image]"},
    {"crc", "read"},
    {"crc", "both"},
    {"0x080FF800", "0x080FF804"},
    {"series = \"ZX100\"\nas = \"u32le\"", "series = \"ZX100\"\nas = \"u32be\""},
    {"value = \"number\"\nseries = \"ZX100\"", "value = \"time\""},
    {"value = \"number\"\nseries = \"ZX100\"\nas = \"u32le\"", "value = \"uid\"\nas = \"hex\""},
    {"value = \"number\"\nseries = \"ZX100\"\nas = \"u32le\"", "value = \"order\"\nas = \"ascii\"\nsize = 8"},
    {"value = \"number\"\nseries = \"ZX100\"\nas = \"u32le\"", "value = \"text\"\ntext = \"0A\"\nas = \"hex\""},
    {"value = \"number\"\nseries = \"ZX100\"\nas = \"u32le\"", "value = \"text\"\ntext = \"0B\"\nas = \"hex\""},
    {"ZX-{number:06}", "ZX-{number:07}"},
    {"size = 16", "size = 17"},
    {"value = \"number\"\nseries = \"ZX100\"", "value = \"supply\"\nsupply = \"mac\""},
    {"value = \"number\"\nseries = \"ZX100\"", "value = \"supply\"\nsupply = \"other\""},
    {"[finish]", "[options]\nssb = 0xFE\n[finish]"},
    {"[finish]", "[options]\nssb = 0xFD\n[finish]"},
    {"[finish]", "[options]\ndata = { 0 = 0xFE }\n[finish]"},
    {"[finish]", "[options]\ndata = { 1 = 0xFE }\n[finish]"},
    {"[finish]", "[options]\nprotect = \"0-7\"\n[finish]"},
    {"[finish]", "[options]\nprotect = \"0-6\"\n[finish]"},
    {"\"on\"", "\"high\""},
    {"\"on\"", "\"leave\""},
    {"\"on\"\nrun = false", "\"leave\"\nrun = true"},
};

// The same of OTP memory, which the chip of the job lacks.
const char *const otpTables[] = {
    "[[otp]]\nblock = 3\nlock = true\n",
    "[[otp]]\nblock = 3\nhex = \"00112233\"\n",
    "[[otp]]\nblock = 3\nhex = \"00112233\"\nlock = true\n",
    "[[otp]]\nblock = 3\nhex = \"00112234\"\nlock = true\n",
    "[[otp]]\nblock = 4\nhex = \"00112233\"\nlock = true\n",
};

} // namespace

TEST_F(PlanTest, TellsAllOfIt) {
    EXPECT_EQ(plan(job).text, R"(plan 1
name         "ZX100"
quantity     1000
chip         ZV32F403A_1024K, a protected one is refused
again        refuse
image        sha256 )" + sha256Of(":020000040800F2\n:0400000001020304F2\n:00000001FF\n") +
                                  R"( 4 bytes 08000000-08000003
unit         080FF800 4 number "ZX100" u32le
unit         080FF810 16 text "ZX100" "ZX-{number:06}" ascii
erase        sectors 0, 511
verify       crc
access       on (can be removed; removal erases the flash)
run          no
irreversible nothing
)");
    EXPECT_EQ(plan(job).hash, sha256Of(plan(job).text));
    EXPECT_FALSE(plan(job).irreversible);
    EXPECT_TRUE(plan(with("\"on\"", "\"high\"")).irreversible);
}

// Of a chip that has OTP memory.
TEST_F(PlanTest, TellsWhatIsForEver) {
    const auto told = [this](const std::string &tables) { return plan(onChipWithOtp(tables)).text; };
    const auto tells = [](const std::string &text, const std::string &lines) { return text.find(lines) != text.npos; };
    EXPECT_TRUE(tells(told("[[otp]]\nblock = 127\nhex = \"00fFa512\"\n"), "\notp          block 127 00ffa512\n"));
    EXPECT_TRUE(tells(told("[[otp]]\nblock = 127\nhex = \"00fFa512\"\n"), "\nirreversible otp\n"));
    EXPECT_TRUE(tells(told("[[otp]]\nblock = 3\nlock = true\n[[otp]]\nblock = 1\nhex = \"00000000\"\n"),
                      "\notp          block 1 00000000\notp          block 3 locked\n"));
    EXPECT_TRUE(
        tells(told("[[otp]]\nblock = 3\nhex = \"00000000\"\nlock = true\n"), "\nirreversible otp, otp locks\n"));
}

// In the chip's order, whatever the file's is.
TEST_F(PlanTest, TellsOptionBytes) {
    const std::string options =
        "[options]\nprotect = \"9, 0-1,1-2\"\neopb0 = 1\ndata = { 7 = 2, 0 = 0x0a }\nssb = 255\n";
    const std::string text = plan(with("[finish]", options + "[finish]")).text;
    EXPECT_NE(text.find("\noptions      ssb=FF data0=0A eopb0=01 data7=02 protect=0-2, 9\n"), text.npos) << text;
}

TEST_F(PlanTest, EveryValueAndEveryByteOfTheImageChangesTheHash) {
    std::set<std::string> hashes = {plan(job).hash};
    for (const auto &change : changes)
        EXPECT_TRUE(hashes.insert(plan(with(change[0], change[1])).hash).second) << change[1];
    for (const char *tables : otpTables)
        EXPECT_TRUE(hashes.insert(plan(onChipWithOtp(tables)).hash).second) << tables;
    write("fw.hex", ":020000040800F2\n:0400000001020305F1\n:00000001FF\n");
    EXPECT_TRUE(hashes.insert(plan(job).hash).second);
    write("fw.hex", ":020000040800F2\n:0400000001020305f1\n:00000001FF\n");
    EXPECT_TRUE(hashes.insert(plan(job).hash).second);
}

TEST_F(PlanTest, PathsOrderAndRemarksChangeNothing) {
    const std::string hash = plan(job).hash;
    std::filesystem::create_directory(path("sub"));
    std::filesystem::copy(path("fw.hex"), path("sub/other.hex"));
    EXPECT_EQ(plan(with("fw.hex", "sub/other.hex")).hash, hash);
    EXPECT_EQ(plan("# a remark\n" + job).hash, hash);
    std::filesystem::rename(path("job.toml"), path("sub.toml"));
    EXPECT_EQ(planFrom(path("sub.toml")).hash, hash);
    const std::size_t first = job.find("[[unit]]");
    const std::size_t second = job.find("[[unit]]", first + 1);
    const std::size_t finish = job.find("[finish]");
    EXPECT_EQ(plan(job.substr(0, first) + job.substr(second, finish - second) + job.substr(first, second - first) +
                   job.substr(finish))
                  .hash,
              hash);
}
