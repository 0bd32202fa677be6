// "-enspim".

#include "Console.h"

namespace {

using Calls = std::vector<std::string>;

class SpimTest : public ConnectedTest {};

const std::string enabled = "Enable Bank3\nRunning...\nOperation finished successfully!\n";

TEST_F(SpimTest, Values) {
    const struct {
        const char *line;
        Calls changes;
    } table[] = {
        // The type of the usage text's default is not the one that goes out.
        {"-enspim", {"ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        {"-enspim --ft 1 --fs 16", {"ZVBL_EnableBank3 type=145 size=16777216 addr=00000000"}},
        {"-enspim --ft 2", {"ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        {"-enspim --ft 0", {"ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        {"-enspim --ft 257", {"ZVBL_EnableBank3 type=145 size=0 addr=00000000"}}, // cut to a byte
        {"-enspim --ft 1x", {"ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        {"-enspim --fs abc", {"ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        {"-enspim --fs 16MB", {"ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        {"-enspim --fs -1", {"ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        {"-enspim --fda 1000", {"ZVBL_EnableBank3 type=144 size=0 addr=00001000"}},
        {"-enspim --fda 0x8401000", {"ZVBL_EnableBank3 type=144 size=0 addr=08401000"}},
        {"-enspim --remap 1", {"ZVBL_SPIMREMAP remap=1", "ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        {"-enspim --remap 5", {"ZVBL_SPIMREMAP remap=1", "ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        {"-enspim --remap 0", {"ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        {"-enspim --remap on", {"ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        // A trailing sub-option reads as 0.
        {"-enspim --ft", {"ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        {"-enspim --fs", {"ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        {"-enspim --remap", {"ZVBL_EnableBank3 type=144 size=0 addr=00000000"}},
        // Other words, and names in capitals, swallow their value.
        {"-enspim --v --fs --FS 9 --ft 1", {"ZVBL_EnableBank3 type=145 size=0 addr=00000000"}},
    };
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        EXPECT_EQ(run.text, enabled) << row.line;
        EXPECT_EQ(run.status, 0) << row.line;
        EXPECT_EQ(run.changes(), row.changes) << row.line;
    }
}

TEST_F(SpimTest, RemapIsForUsartOnly) {
    for (const char *link : {"-dfu", "-i2c", "-can", "-spi"}) {
        const Outcome run = console.run(std::string(link) + " -enspim --remap 1");
        EXPECT_EQ(run.status, 0) << link;
        EXPECT_TRUE(run.callsOf("ZVBL_SPIMREMAP").empty()) << link;
    }
}

TEST_F(SpimTest, TrailingFlashDA) {
    const Outcome run = connected("-enspim --fs 16 --fda");
    EXPECT_EQ(run.text, "bad parameter \"");
    EXPECT_EQ(run.status, 8);
    EXPECT_TRUE(run.changes().empty());
}

TEST_F(SpimTest, ScanForAUserSystemDataFile) {
    const struct {
        const char *line;
        const char *text;
        int status;
    } table[] = {
        // The scan runs into the end of the line.
        {"-enspim --fda 1000 -usd", "bad parameter \"1000\"\n", 8},
        {"-enspim --fda 1000 -usd --set", "bad parameter \"1000\"\n", 8},
        // FLASH_DA 0 scans nothing.
        {"-enspim --fda 0 -usd", enabled.c_str(), 0},
        // The only form that matches stores no usable name: nothing is loaded.
        {"-enspim --fda 1000 -usd --v --set", "bad parameter \"1000\"\n", 8},
    };
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, row.status) << row.line;
        EXPECT_TRUE(run.callsOf("TARGET_SetUserSystemData").empty()) << row.line;
    }
    const Outcome run = connected("-enspim --fda 1000 -usd --v --set --fn @/a.bin");
    EXPECT_EQ(run.callsOf("ZVBL_EnableBank3").size(), 1U);
    EXPECT_TRUE(run.callsOf("TARGET_SetUserSystemData").empty());
}

TEST_F(SpimTest, BadWord) {
    const Outcome run = connected("-enspim --bogus");
    EXPECT_EQ(run.text, "bad parameter \"--bogus\"\n");
    EXPECT_EQ(run.status, 8);
    EXPECT_TRUE(run.changes().empty());
}

TEST_F(SpimTest, FailureOfTheJob) {
    console.script("ZVBL_EnableBank3 status=19");
    const Outcome run = connected("-enspim --fs 16 -e --all");
    EXPECT_EQ(run.text, "Enable Bank3\nRunning...\n\nThe cmd not allowed!\n");
    EXPECT_EQ(run.status, 8);
    EXPECT_EQ(run.calls.back(), "Interface_Close");
}

} // namespace
