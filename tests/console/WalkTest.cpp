// The walk over the command line: what ends it, with which status and which words.

#include <fstream>
#include <sstream>

#include "Console.h"

namespace {

std::string usage() {
    std::ostringstream text;
    text << std::ifstream(GOLDEN_DIR "/usage.txt", std::ios::binary).rdbuf();
    return text.str();
}

class WalkTest : public ConsoleTest {};

TEST_F(WalkTest, NoWordsShowTheUsage) {
    const Outcome run = console.run("");
    EXPECT_EQ(run.text, usage());
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.calls.empty());
}

TEST_F(WalkTest, UsageHasSixtyOneLines) {
    const std::vector<std::string> text = lines(console.run("-?").text);
    ASSERT_EQ(text.size(), 61U);
    EXPECT_EQ(text[28], "       --rate  rate\t\t I2C rate, default 400000Hz ");
    EXPECT_EQ(text[36], "     -d                     Download the conent of the specified file into flash. ");
}

TEST_F(WalkTest, QuestionMarkEndsTheWalk) {
    for (const char *line : {"-?", "-? foo", "-? -e --all"}) {
        const Outcome run = console.run(line);
        EXPECT_EQ(run.text, usage()) << line;
        EXPECT_EQ(run.status, 0) << line;
    }
}

TEST_F(WalkTest, QuestionMarkLeavesTheLinkOpen) {
    const Outcome run = console.run("-com --pn ttyS0 -? foo");
    EXPECT_EQ(run.text, connectText("USART") + usage());
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.callsOf("Interface_Close").empty());
}

TEST_F(WalkTest, QuestionMarkBehindAnActionThatIsDone) {
    const Outcome run = console.run("-com --pn ttyS0 -e --sec 0 -? -d");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.changes(), std::vector<std::string>{"ZVBL_ERASE selector=1 sector=0 size=2048"});
    EXPECT_TRUE(run.callsOf("Interface_Close").empty());
}

TEST_F(WalkTest, WordsWithoutALink) {
    const struct {
        const char *line;
        const char *text;
        int status;
    } table[] = {
        // A word that is no option: silent at the end of the line.
        {"foo", "", 1},
        {"foo -dfu", "bad parameter foo\n", 1},
        {"--v", "", 1},
        {"--v -dfu", "bad parameter --v\n", 1},
        {"-COM --pn ttyS0", "bad parameter -COM\n", 1},
        // Every action without a link is silent.
        {"-e --all", "", 2},
        {"-e", "", 2},
        {"-e --bogus", "", 2},
        {"-p --dfap", "", 2},
        {"-d --fn /a/b.hex", "", 3},
        {"-d --bogus", "", 3},
        {"-u --fn /a/b.hex", "", 4},
        {"-usd --get --fn /a/b.bin", "", 2},
        {"-o --get --fn /a/b.bin", "", 2},
        {"-enspim", "", 8},
        {"-enspim --fda", "", 8},
        {"-r", "", 12},
        {"-otp", "", 2},
    };
    for (const auto &row : table) {
        const Outcome run = console.run(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, row.status) << row.line;
        EXPECT_TRUE(run.calls.empty()) << row.line;
    }
}

TEST_F(WalkTest, EveryOptionHasItsHandler) {
    for (const char *word :
         {"-dfu", "-com", "-i2c", "-can", "-spi", "-e", "-p", "-d", "-u", "-o", "-usd", "-r", "-enspim", "-otp"})
        EXPECT_EQ(console.run(word).text.find("bad parameter"), std::string::npos) << word;
}

TEST_F(WalkTest, FirstFailureEndsTheLine) {
    console.script("ZVBL_GO status=20");
    const Outcome run = console.run("-com --pn ttyS0 -e --sec 0 -r --addr 8004000 -e --sec 1");
    EXPECT_EQ(run.status, 12);
    EXPECT_EQ(run.changes(),
              (std::vector<std::string>{"ZVBL_ERASE selector=1 sector=0 size=2048", "ZVBL_GO addr=08004000"}));
    EXPECT_EQ(run.calls.back(), "Interface_Close");
}

TEST_F(WalkTest, BadWordBehindAnActionClosesTheLink) {
    const Outcome run = console.run("-dfu foo -e --all");
    EXPECT_EQ(run.text, connectText("DFU") + "bad parameter foo\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.calls.back(), "Interface_Close");
    EXPECT_TRUE(run.changes().empty());
}

// A process that ends while the link closes has said what it says before, and nothing else.
TEST_F(WalkTest, WordsAndTheClosingOfTheLink) {
    const struct {
        const char *rules;
        const char *line;
        std::string text;
    } table[] = {
        {"Interface_Close nth=2 signal=15", "-dfu foo -e", connectText("DFU")},
        {"Interface_Close signal=15", "-com --pn ttyS0 -i2c --xyz", connectText("USART") + "I2C Connect......\n"},
        {"Interface_Close signal=15\nZVBL_Init_BL status=17", "-com --pn ttyS0",
         "USART Connect......\nUnrecognized device...Please, reset your device then try again \n"},
        {"Interface_Close signal=15\nZVBL_GET_ID id=FFFF", "-com --pn ttyS0",
         "USART Connect......\nInit Device Failed!\n"},
        {"Interface_Close signal=15", "-com --pn ttyS0 -e --sec 3", connectText("USART") + "bad parameter 3\n"},
    };
    for (const auto &row : table) {
        Console fresh;
        fresh.script(row.rules);
        const Outcome run = fresh.run(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, 128 + 15) << row.line;
    }
}

TEST_F(WalkTest, EmptyWord) {
    const Outcome run = console.runWords({"", "-dfu"});
    EXPECT_EQ(run.text, "bad parameter \n");
    EXPECT_EQ(run.status, 1);
}

TEST_F(WalkTest, WordsThatQtWouldTake) {
    const Outcome run = console.run("-qmljsdebugger=port:1 -dfu");
    EXPECT_EQ(run.text, "bad parameter -qmljsdebugger=port:1\n");
    EXPECT_EQ(run.status, 1);
}

TEST_F(WalkTest, NothingIsPrintedBehindTheNullWord) {
    const Outcome run = console.run("-com --pn ttyS0 -d --fn");
    EXPECT_EQ(run.text, connectText("USART") + "bad parameter \"");
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.calls.back(), "Interface_Close");
}

} // namespace
