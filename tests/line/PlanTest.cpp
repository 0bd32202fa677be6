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
};

// One change for each value of a job.
const char *const changes[][2] = {
    {"name = \"ZX100\"", "name = \"ZX101\""},
    {"1000\n", "1001\n"},
    {"ZV32F403A_1024K", "ZV32F457_1024K"},
    {"[image]", "protected = \"erase\"\n[image]"},
    {"[image]", "again = \"make\"\n[image]"},
    {"crc", "read"},
    {"0x080FF800", "0x080FF804"},
    {"series = \"ZX100\"\nas = \"u32le\"", "series = \"ZX100\"\nas = \"u32be\""},
    {"value = \"number\"\nseries = \"ZX100\"", "value = \"time\""},
    {"ZX-{number:06}", "ZX-{number:07}"},
    {"size = 16", "size = 17"},
    {"\"on\"", "\"high\""},
    {"\"on\"", "\"leave\""},
    {"\"on\"\nrun = false", "\"leave\"\nrun = true"},
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

TEST_F(PlanTest, EveryValueAndEveryByteOfTheImageChangesTheHash) {
    std::set<std::string> hashes = {plan(job).hash};
    for (const auto &change : changes)
        EXPECT_TRUE(hashes.insert(plan(with(change[0], change[1])).hash).second) << change[1];
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
