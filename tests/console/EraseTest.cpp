// "-e".

#include "Console.h"

namespace {

using Calls = std::vector<std::string>;

class EraseTest : public ConnectedTest {};

TEST_F(EraseTest, All) {
    const Outcome run = connected("-e --all");
    EXPECT_EQ(run.text, "Erase\n\rRunning...100%\nErase successfully!\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.changes(),
              (Calls{"ZVBL_ERASE selector=FFFE sector=null size=0", "ZVBL_ERASE selector=FFFD sector=null size=0"}));
    EXPECT_TRUE(run.callsOf("sleep").empty()); // the job's end wakes the main thread
}

TEST_F(EraseTest, Sectors) {
    const Outcome run = connected("-e --sec 3-5");
    EXPECT_EQ(run.text, "Erase\n\rRunning...33%\rRunning...66%\rRunning...100%\nErase successfully!\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.changes(),
              (Calls{"ZVBL_ERASE selector=1 sector=3 size=2048", "ZVBL_ERASE selector=1 sector=4 size=2048",
                     "ZVBL_ERASE selector=1 sector=5 size=2048"}));
}

TEST_F(EraseTest, WithoutSubOptionErasesNothing) {
    const Outcome run = connected("-e");
    EXPECT_EQ(run.text, "");
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.changes().empty());
}

TEST_F(EraseTest, RangesThatErase) {
    const struct {
        const char *line;
        std::size_t sectors;
    } table[] = {{"-e --sec", 1},    {"-e --sec 0", 1},       {"-e --sec 3-3", 1},
                 {"-e --sec -5", 6}, {"-e --sec 510-511", 2}, {"-e --sec text", 1}};
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        EXPECT_EQ(run.status, 0) << row.line;
        EXPECT_EQ(run.changes().size(), row.sectors) << row.line;
    }
}

TEST_F(EraseTest, RangesThatAreRefused) {
    const struct {
        const char *line;
        const char *text;
    } table[] = {
        {"-e --sec 3", "bad parameter 3\n"},         {"-e --sec 3-1", "bad parameter 3-1\n"},
        {"-e --sec 0-512", "bad parameter 0-512\n"}, {"-e --sec 0-99999", "bad parameter 0-99999\n"},
        {"-e --sec -1-2", "bad parameter -1-2\n"},
    };
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, 51) << row.line;
        EXPECT_TRUE(run.changes().empty()) << row.line;
    }
}

TEST_F(EraseTest, SeveralInOneOptionRunInOrder) {
    const Outcome run = connected("-e --all --sec 0-1");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.changes(),
              (Calls{"ZVBL_ERASE selector=FFFE sector=null size=0", "ZVBL_ERASE selector=FFFD sector=null size=0",
                     "ZVBL_ERASE selector=1 sector=0 size=2048", "ZVBL_ERASE selector=1 sector=1 size=2048"}));
}

TEST_F(EraseTest, UnknownWordsSwallowTheirValue) {
    const Outcome run = connected("-e --ALL --all --fn --sec --sec 7-7");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.changes(), Calls{"ZVBL_ERASE selector=1 sector=7 size=2048"});
}

TEST_F(EraseTest, BadWord) {
    const Outcome run = connected("-e --bogus");
    EXPECT_EQ(run.text, "bad parameter \"--bogus\"\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.changes().empty());
}

TEST_F(EraseTest, FailureOfAll) {
    console.script("ZVBL_ERASE status=20");
    const Outcome run = connected("-e --all -r");
    EXPECT_EQ(run.text, "Erase\n\nUnknown error!\n");
    EXPECT_EQ(run.status, 48);
    EXPECT_EQ(run.changes().size(), 1U);
    EXPECT_EQ(run.calls.back(), "Interface_Close");
}

TEST_F(EraseTest, FailureOfAllWithSpim) {
    console.script("ZVBL_ERASE at=FFFC status=19");
    const Outcome run = connected("-enspim -e --all");
    EXPECT_EQ(run.text, "Enable Bank3\nRunning...\nOperation finished successfully!\nErase\n\nThe cmd not allowed!\n");
    EXPECT_EQ(run.status, 49);
}

TEST_F(EraseTest, FailureOfASectorClosesThePercentLine) {
    console.script("ZVBL_ERASE nth=3 status=5");
    const Outcome run = connected("-e --sec 0-4");
    EXPECT_EQ(run.text, "Erase\n\rRunning...20%\rRunning...40%\n"
                        "No response from the device...\n"
                        "Please verify the boot mode configuration.\n"
                        "Check the UART cable.\n"
                        "Reset the device then run again.\n");
    EXPECT_EQ(run.status, 51);
    EXPECT_EQ(run.changes().size(), 3U);
}

// One sector of very many shows each percent once.
TEST_F(EraseTest, RepeatedPercentIsPrintedOnce) {
    const Outcome run = connected("-e --sec 0-299");
    std::string expected = "Erase\n";
    int shown = 0;
    for (int done = 1; done <= 300; ++done) {
        const int percent = static_cast<int>(static_cast<double>(done) / 300.0 * 100.0);
        if (percent != shown) {
            expected += "\rRunning..." + std::to_string(percent) + "%";
            shown = percent;
        }
    }
    EXPECT_EQ(run.text, expected + "\nErase successfully!\n");
}

TEST_F(EraseTest, RangesOfTheFamiliesWithSpim) {
    const Outcome taken = connected("-enspim -e --sec 32768-32769");
    EXPECT_EQ(taken.status, 0);
    EXPECT_EQ(taken.changes(),
              (Calls{"ZVBL_EnableBank3 type=144 size=0 addr=00000000", "ZVBL_ERASE selector=1 sector=32768 size=2048",
                     "ZVBL_ERASE selector=1 sector=32769 size=2048"}));
}

TEST_F(EraseTest, RangeWithoutAnUpperBound) {
    console.script("ZVBL_ERASE status=20"); // the first one tells enough
    const Outcome run = connected("-enspim -e --sec 0-99999");
    EXPECT_EQ(run.text.substr(run.text.size() - 22), "Erase\n\nUnknown error!\n");
    EXPECT_EQ(run.status, 51);
}

// No machine has room for such a list, and no chip the sectors.
TEST_F(EraseTest, RangeThatMakesNoJob) {
    const Outcome run = connected("-enspim -e --sec 0-2000000000");
    EXPECT_EQ(lines(run.text).back(), "bad parameter 0-2000000000");
    EXPECT_EQ(run.status, 51);
    EXPECT_TRUE(run.callsOf("ZVBL_ERASE").empty());
    EXPECT_EQ(run.calls.back(), "Interface_Close");
}

TEST_F(EraseTest, RangesOfTheOtherFamiliesWithSpim) {
    console.connectTo(f415);
    const Outcome run = connected("-enspim -e --sec 0-1");
    EXPECT_EQ(lines(run.text).back(), "bad parameter 0-1");
    EXPECT_EQ(run.status, 51);
    EXPECT_TRUE(run.callsOf("ZVBL_ERASE").empty());
    EXPECT_EQ(connected("-e --sec 0-1").status, 0);
}

} // namespace
