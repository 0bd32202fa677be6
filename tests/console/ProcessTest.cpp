// The program as a process: signals, output that goes nowhere, names in any encoding.

#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

#include "Console.h"

namespace {

class ProcessTest : public ConsoleTest {};

TEST_F(ProcessTest, SignalsEndItAsByDefault) {
    for (const int number : {SIGINT, SIGTERM}) {
        Console fresh;
        fresh.script("ZVBL_ERASE nth=2 signal=" + std::to_string(number));
        const Outcome run = fresh.run("-com --pn ttyS0 -e --sec 0-4");
        EXPECT_EQ(run.status, 128 + number);
        EXPECT_EQ(run.changes().size(), 2U);
        // What was done so far has been said.
        EXPECT_EQ(run.text, connectText("USART") + "Erase\n\rRunning...20%");
    }
}

TEST_F(ProcessTest, FullDisk) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    EXPECT_EQ(console.statusOf("-com --pn ttyS0 -e --all", full), 0);
    EXPECT_EQ(console.statusOf("-com --pn ttyS0 -e --sec 3", full), 51);
    close(full);
}

TEST_F(ProcessTest, ReaderThatWentAway) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    EXPECT_EQ(console.statusOf("-com --pn ttyS0 -e --sec 0-4", ends[1]), 0);
    EXPECT_EQ(console.statusOf("-com --pn ttyS0 -d --fn", ends[1]), 3);
    close(ends[1]);
}

// Otherwise a port would take such a number, and what is printed would go to the chip.
TEST_F(ProcessTest, ClosedStandardDescriptorsAreHeld) {
    console.script("Interface_Open signal=" + std::to_string(SIGSTOP));
    const std::string null = "/dev/null";
    const std::string line = "-com --pn ttyS0 -e --all";
    EXPECT_EQ(console.descriptorsWithout({0, 1, 2}, line), std::vector<std::string>({null, null, null}));
    const std::vector<std::string> one = console.descriptorsWithout({1}, line);
    EXPECT_EQ(one[1], null);
    EXPECT_EQ(one[2], console.path("stderr"));
}

TEST_F(ProcessTest, ExceptionIsALineAndAStatus) {
    console.script("ZVBL_GO throw=unheard-of");
    const Outcome run = console.runToAnUnexpectedEnd("-com --pn ttyS0 -r -e --all");
    EXPECT_EQ(run.status, 70);
    EXPECT_EQ(run.errors, "ZV32_ISP_Console: unexpected end: unheard-of\n");
    EXPECT_EQ(run.text, connectText("USART"));
    EXPECT_EQ(run.changes().size(), 1U);
}

TEST_F(ProcessTest, ATraceThatCannotBeWrittenIsALine) {
    for (const auto &[path, line] : {std::pair<std::string, std::string>{"/no/such/trace", "No such file or directory"},
                                     {"/", "Is a directory"},
                                     {console.path("trace"), ""},
                                     {"", ""}}) {
        setenv("ZVBL_TRACE", path.c_str(), 1);
        const Outcome run = console.runToAnUnexpectedEnd("-com --pn ttyS0 -r");
        unsetenv("ZVBL_TRACE");
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.text, connectText("USART") + "Your code is running... (0x08000000)\n");
        EXPECT_EQ(run.errors,
                  line.empty() ? "" : "ZV32_ISP_Console: no trace is written to " + path + ": " + line + "\n");
    }
}

// In Turkish the capital of "i" is another letter.
TEST_F(ProcessTest, LocaleOfTheUser) {
    const std::string build =
        "localedef -i tr_TR -f ISO-8859-9 " + console.path("tr_TR.ISO-8859-9") + " >/dev/null 2>&1";
    if (std::system(build.c_str()) != 0)
        GTEST_SKIP() << "no locale definitions here";
    console.file("a.bin", "");
    setenv("LOCPATH", console.path("").c_str(), 1);
    setenv("LC_ALL", "tr_TR.ISO-8859-9", 1);
    const Outcome run = console.run("-com --pn ttyS0 -d --fn @/a.bin");
    unsetenv("LC_ALL");
    unsetenv("LOCPATH");
    EXPECT_EQ(run.status, 0) << run.text;
}

TEST_F(ProcessTest, NamesOutsideAscii) {
    for (const std::string &name : {std::string("gerät.hex"), std::string("ger\xE4t.hex")}) {
        console.file(name, "");
        const Outcome run = console.run("-com --pn ttyS0 -d --fn @/" + name);
        EXPECT_EQ(run.status, 0) << run.text;
        EXPECT_NE(run.text.find("Download\n@/" + name + "     2048B\n"), std::string::npos) << run.text;
    }
}

} // namespace
