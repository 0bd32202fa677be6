#include "line/job/Job.h"

#include <sys/stat.h>

#include "line/plan/Chip.h"
#include "line/plan/Plan.h"
#include "line/plan/UnitImage.h"
#include "programs/Status.h"
#include "tests/line/LineFiles.h"

namespace {

struct Mistake {
    const char *old;
    const char *other;
    const char *told; // behind the name of the job file
};

const Mistake mistakes[] = {
    {"format = 1", "format = 2", ":1: format: is not within 1 and 1"},
    {"name = \"ZX100\"", "name = \"\"", ":2: name: is empty, or holds control characters"},
    {"name = \"ZX100\"", "name = \"a\\u001b[2J\"", ":2: name: is empty, or holds control characters"},
    {"name = \"ZX100\"", "name = \"a\\u009b2J\"", ":2: name: is empty, or holds control characters"},
    {"name = \"ZX100\"", "name = \"a\\u202e2\"", ":2: name: is empty, or holds control characters"},
    {"quantity = 1000", "quantity = \"1000\"", ":3: quantity: must be a whole number, and is a text"},
    {"quantity = 1000", "quantity = 0", ":3: quantity: is not within 1 and 1000000000"},
    {"quantity = 1000", "number = 3", ":1: quantity: is missing"},
    {"quantity = 1000", "quantity = 1000\nextra = 1", ":4: extra: no such key"},
    {"quantity = 1000", "quantity = 1000 # \x01", ":3: Error while parsing comment:"},
    {"[chip]", "[chips]", ":1: chip: is missing"},
    {"[chip]", "[chip", ":4: Error while parsing table header:"},
    {"ZV32F403A_1024K", "ZV32F403A", ":5: chip.name: no map file of such a chip in"},
    {"ZV32F403A_1024K", "../Map/ZV32F403A_1024K", ":5: chip.name: no map file of such a chip in"},
    {"[image]", "protected = \"often\"\n[image]", ":6: chip.protected: is none of \"erase\", \"refuse\""},
    {"\"fw.hex\"", "7", ":7: image.file: must be a text, and is a whole number"},
    {"\"fw.hex\"", "\"../fw.hex\"", ":7: image.file: ../fw.hex: must name a file in or below the directory of the job"},
    {"\"fw.hex\"", "\"/fw.hex\"", ":7: image.file: /fw.hex: must name a file in or below the directory of the job"},
    {"\"fw.hex\"", "\"./fw.hex\"", ":7: image.file: ./fw.hex: must name a file in or below the directory of the job"},
    {"\"fw.hex\"", "\"link.hex\"", ":7: image.file: link.hex: a symbolic link, and no regular file"},
    {"\"fw.hex\"", "\"up/fw.hex\"", ":7: image.file: up/fw.hex: goes through what is no directory"},
    {"\"fw.hex\"", "\"fifo.hex\"", ":7: image.file: fifo.hex: not a regular file"},
    {"\"fw.hex\"", "\"huge.hex\"", ":7: image.file: huge.hex: larger than 67108864 bytes"},
    {"\"fw.hex\"", "\"none.hex\"", ":7: image.file: none.hex: No such file or directory"},
    {"\"fw.hex\"", "\"job.toml\"", ":7: image.file: job.toml: is no .hex, .s19, .srec or .bin file"},
    {"\"fw.hex\"", "\"digit.hex\"", ":7: image.file: digit.hex: line 2: a digit, the length, the type or the sum"},
    {"\"fw.hex\"", "\"sum.hex\"", ":7: image.file: sum.hex: line 3: a digit, the length, the type or the sum"},
    {"\"fw.hex\"", "\"end.hex\"", ":7: image.file: end.hex: has no end record, or two values for one address"},
    {"\"fw.hex\"", "\"past.hex\"",
     ":7: image.file: past.hex: 080FFFFE-08100001 is not within the flash, 08000000-080FFFFF"},
    {"\"fw.hex\"", "\"empty.hex\"", ":7: image.file: empty.hex: holds no data"},
    {"\"crc\"", "\"maybe\"", ":8: image.verify: is none of \"both\", \"crc\", \"read\""},
    {"verify = \"crc\"", "", ":6: image.verify: is missing"},
    {"0x080FF800", "0x100000000", ":10: unit[0].at: is not within 0 and 4294967295"},
    {"0x080FF800", "0xFFFFFFFE", ":10: unit[0].at: reaches past the addresses of 32 bits"},
    {"0x080FF800", "0x08100000", ":10: unit[0].at: 08100000-08100003 is not within the flash, 08000000-080FFFFF"},
    {"0x080FF800", "true", ":10: unit[0].at: must be a whole number, and is true or false"},
    {"0x080FF810", "0x080FF803", ":15: unit[1].at: overlaps unit[0].at of line 10"},
    {"\"number\"", "\"serial\"", ":11: unit[0].value: is none of"},
    {"\"u32le\"", "\"hex\"", ":13: unit[0].as: is no form of number"},
    {"\"u32le\"", "\"u32le\"\nsize = 4", ":14: unit[0].size: no such key"},
    {"ZX-{number:06}", "ZX-{numbers}", ":17: unit[1].text: {numbers} is none of"},
    {"ZX-{number:06}", "ZX-{number:06", ":17: unit[1].text: holds a { without a } behind it"},
    {"ZX-{number:06}", "ZX-}{number}", ":17: unit[1].text: holds a } without a { in front of it"},
    {"ZX-{number:06}", "\u00e4{number}", ":17: unit[1].text: holds what is no printable ASCII character"},
    {"size = 16", "size = 8", ":20: unit[1].size: is less than the 9 characters of the shortest"},
    {"series = \"ZX100\"\nas = \"ascii\"", "series = \"B\"\nas = \"ascii\"", ":15: unit[1].at: takes its number from"},
    {"\"on\"", "\"off\"", ":22: finish.access: is none of"},
    {"false", "\"no\"", ":23: finish.run: must be true or false, and is a text"},
    {"false", "true", ":23: finish.run: the bootloader of a protected chip starts nothing"},
    {"as = \"u32le\"", "as = \"u32le\"\nsupply = \"mac\"", ":14: unit[0].supply: no such key"},
    {"value = \"number\"\nseries = \"ZX100\"", "value = \"supply\"", ":9: unit[0].supply: is missing"},
    {"value = \"number\"\nseries = \"ZX100\"\nas = \"u32le\"", "value = \"supply\"\nsupply = \"mac\"\nas = \"hex\"",
     ":9: unit[0].size: is missing"},
    {"[finish]", "[options]\nfap = 0xA5\n[finish]", ":22: options.fap: is set by finish.access"},
    {"[finish]", "[options]\nepp = { 0 = 0xFE }\n[finish]", ":22: options.epp: is set by options.protect"},
    {"[finish]", "[options]\nssb = 0x100\n[finish]", ":22: options.ssb: is not within 0 and 255"},
    {"[finish]", "[options]\nssb1 = 0xFE\n[finish]", ":22: options.ssb1: no option byte of this chip is called ssb1"},
    {"[finish]", "[options]\ndata = { 8 = 1 }\n[finish]", ":22: options.data.8: no option byte of this chip is called"},
    {"[finish]", "[options]\ndata = { 00 = 1 }\n[finish]",
     ":22: options.data.00: no option byte of this chip is called"},
    {"[finish]", "[options]\ndata = 1\n[finish]", ":22: options.data: no option byte of this chip is called data"},
    {"[finish]", "[options]\nssb = { 0 = 1 }\n[finish]",
     ":22: options.ssb.0: no option byte of this chip is called ssb0"},
    {"[finish]", "[options]\nprotect = \"0-\"\n[finish]", ":22: options.protect: must be numbers of sectors, such as"},
    {"[finish]", "[options]\nprotect = \"3-1\"\n[finish]", ":22: options.protect: names no sectors: \"3-1\""},
    {"[finish]", "[options]\nprotect = \"1,,2\"\n[finish]",
     ":22: options.protect: must be numbers of sectors, such as"},
    {"[finish]", "[options]\nprotect = \"99999\"\n[finish]", ":22: options.protect: names no sectors: \"99999\""},
    {"[finish]", "[options]\nprotect = \"0-512\"\n[finish]",
     ":22: options.protect: the last sector of this chip is 511"},
    {"[finish]", "[[otp]]\nblock = 0\nlock = true\n[finish]", ":22: otp[0].block: this chip has no OTP memory"},
    {"[finish]", "[[otp]]\nblock = 0\n[finish]", ":22: otp[0].block: is neither written nor locked"},
    {"[finish]", "[[otp]]\nblock = 0\nhex = \"0011\"\n[finish]",
     ":23: otp[0].hex: must be the hexadecimal digits of 4, 8"},
    {"[finish]", "[[otp]]\nblock = 0\nhex = \"0011223G\"\n[finish]",
     ":23: otp[0].hex: must be the hexadecimal digits of 4"},
    {"[finish]", "[[otp]]\nblock = 1\nlock = true\n[[otp]]\nblock = 1\nlock = true\n[finish]",
     ":25: otp[1].block: is the block of line 22 again"},
    {"run = false", "runs = false", ":23: finish.runs: no such key"},
};

class JobTest : public LineFiles {
protected:
    JobTest() {
        write("digit.hex", ":020000040800F2\n:0400000001G20304F2\n:00000001FF\n");
        write("sum.hex", ":020000040800F2\n:0400000001020304F2\n:0400040001020304EF\n:00000001FF\n");
        write("end.hex", ":020000040800F2\n:0400000001020304F2\n");
        write("past.hex", ":02000004080FE3\n:04FFFE0001020304F5\n:00000001FF\n");
        write("empty.hex", ":00000001FF\n");
        write("huge.hex", "");
        std::filesystem::resize_file(path("huge.hex"), 1 << 30);
        std::filesystem::create_symlink("fw.hex", path("link.hex"));
        std::filesystem::create_directory_symlink(".", path("up"));
        mkfifo(path("fifo.hex").c_str(), 0600);
    }

    // What is told of the job; empty for one that is taken.
    std::string told(const std::string &text) const {
        write("job.toml", text);
        try {
            const Job read = readJob(path("job.toml"));
            const Chip chip(read.chip, read.chipPlace);
            planOf(read, chip, imageOf(read, chip));
            return {};
        } catch (const Refusal &refusal) {
            EXPECT_EQ(refusal.status, notAcceptable);
            return refusal.what();
        }
    }
};

} // namespace

TEST_F(JobTest, TakesWhatIsRight) {
    EXPECT_EQ(told(job), "");
    EXPECT_EQ(told(with("fw.hex", "below/fw.hex")).substr(path("job.toml").size()),
              ":7: image.file: below/fw.hex: No such file or directory");
    std::filesystem::create_directory(path("below"));
    std::filesystem::copy(path("fw.hex"), path("below/fw.hex"));
    EXPECT_EQ(told(with("fw.hex", "below/fw.hex")), "");
}

TEST_F(JobTest, TellsFileLineAndKeyOfEveryMistake) {
    for (const Mistake &mistake : mistakes) {
        const std::string wanted = path("job.toml") + mistake.told;
        EXPECT_EQ(told(with(mistake.old, mistake.other)).substr(0, wanted.size()), wanted);
    }
}

TEST_F(JobTest, IsARegularFileItself) {
    std::filesystem::create_symlink("job.toml", path("link.toml"));
    EXPECT_THROW(readJob(path("link.toml")), Refusal);
    EXPECT_THROW(readJob(path("fifo.hex")), Refusal);
    EXPECT_THROW(readJob(path("none.toml")), Refusal);
    EXPECT_THROW(readJob(path("")), Refusal);
    EXPECT_THROW(readJob(path("none/job.toml")), Refusal);
}
