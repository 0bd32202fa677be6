// "-r".

#include "Console.h"

namespace {

using Calls = std::vector<std::string>;

class RunAtAddressTest : public ConsoleTest {};

TEST_F(RunAtAddressTest, Addresses) {
    const struct {
        const char *line;
        const char *address;
    } table[] = {
        {"-r", "08000000"},
        {"-r --addr 0x08004000", "08004000"},
        {"-r --addr 8004000", "08004000"},
        {"-r --addr", "08000000"},
        {"-r --addr text", "00000000"},
        // The word of the usage text has no effect.
        {"-r --a 0x08004000", "08000000"},
        // Nor has a name in capitals.
        {"-r --ADDR 0x08004000", "08000000"},
    };
    for (const auto &row : table) {
        const Outcome run = console.run(std::string("-com --pn ttyS0 ") + row.line);
        EXPECT_EQ(run.text, connectText("USART") + "Your code is running... (0x" + row.address + ")\n") << row.line;
        EXPECT_EQ(run.status, 0) << row.line;
        EXPECT_EQ(run.changes(), Calls{std::string("ZVBL_GO addr=") + row.address}) << row.line;
    }
}

TEST_F(RunAtAddressTest, DoesNotShareTheAddressOfADownload) {
    console.file("a.hex", "");
    const Outcome run = console.run("-com --pn ttyS0 -d --addr 0x08004000 --fn @/a.hex -r");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.callsOf("ZVBL_GO"), Calls{"ZVBL_GO addr=08000000"});
}

TEST_F(RunAtAddressTest, FailureSaysTheSame) {
    console.script("ZVBL_GO status=20");
    const Outcome run = console.run("-com --pn ttyS0 -r --addr 8001000");
    EXPECT_EQ(run.text, connectText("USART") + "Your code is running... (0x08001000)\n");
    EXPECT_EQ(run.status, 12);
}

TEST_F(RunAtAddressTest, ProtectedChipIsNotLeft) {
    console.script("TARGET_GetUserSystemData data=00");
    const Outcome run = console.run("-com --pn ttyS0 -r");
    EXPECT_EQ(run.status, 12);
    EXPECT_TRUE(run.changes().empty());
}

TEST_F(RunAtAddressTest, BadWord) {
    const Outcome run = console.run("-com --pn ttyS0 -r --bogus");
    EXPECT_EQ(run.text, connectText("USART") + "bad parameter \"--bogus\"\n");
    EXPECT_EQ(run.status, 12);
    EXPECT_TRUE(run.changes().empty());
}

TEST_F(RunAtAddressTest, TheWalkGoesOn) {
    const Outcome run = console.run("-com --pn ttyS0 -r -e --sec 0");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.changes(), (Calls{"ZVBL_GO addr=08000000", "ZVBL_ERASE selector=1 sector=0 size=2048"}));
}

} // namespace
