// The file that ZVBL_TRACE names.

#include "libs/zvbl/Trace.h"

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/zvbl/LinkFixture.h"
#include "tests/zvbl/TraceText.h"

namespace {

class TraceTest : public LinkFixture {
protected:
    void SetUp() override {
        char name[] = "/tmp/zvbl-trace-XXXXXX";
        directory = mkdtemp(name);
        LinkFixture::SetUp();
    }
    void TearDown() override {
        unsetenv("ZVBL_TRACE");
        LinkFixture::TearDown();
        std::filesystem::remove_all(directory);
    }
    void traceTo(const std::string &path) {
        setenv("ZVBL_TRACE", path.c_str(), 1);
        ASSERT_EQ(Interface_Open(link), 0);
    }
    // The lines without time and port, of which the form is checked.
    std::string lines(const std::string &path) {
        std::ifstream file(path);
        std::string all, time, port, rest;
        while (file >> time >> port && std::getline(file, rest)) {
            for (char &letter : time)
                letter = std::isdigit(static_cast<unsigned char>(letter)) ? '0' : letter;
            EXPECT_EQ(time, "0000-00-00T00:00:00.000000");
            EXPECT_EQ(port, pty.path());
            if (isRunLine(rest.substr(1)))
                runLines.push_back(rest.substr(1));
            else
                all += rest.substr(1) + "\n";
        }
        return all;
    }
    static std::string textOf(const std::string &path) {
        std::ifstream file(path);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }
    std::filesystem::path directory;
    std::vector<std::string> runLines; // of what lines() has read
};

TEST_F(TraceTest, EveryExchangeIsThereWithItsDirection) {
    const std::string file = directory / "trace";
    traceTo(file);
    BYTE length = 0;
    EXPECT_EQ(play({{"02 FD", "79 01 02 42 79"}}, [&] { return ZVBL_GET_ID(link, &length, nullptr); }), 0);
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(lines(file), "# open 1000000 8E1\n> 02 FD\n< 79\n< 01\n< 02 42\n< 79\n# closed\n");
}

TEST_F(TraceTest, StopBitsAreToldAsTheyAre) {
    for (const auto &[stopBits, told] : {std::pair{1.5F, "1.5"}, std::pair{2.0F, "2"}}) {
        const std::string file = directory / told;
        setenv("ZVBL_TRACE", file.c_str(), 1);
        ASSERT_EQ(Interface_Close(link), 0);
        ASSERT_EQ(SetCOMSettings(&link, 0, pty.path().c_str(), 9600, 8, 2, stopBits), 0);
        ASSERT_EQ(Interface_Open(link), 0);
        EXPECT_EQ(lines(file), std::string("# open 9600 8E") + told + "\n");
    }
}

TEST_F(TraceTest, WhatWentWrongIsThereToo) {
    const std::string file = directory / "trace";
    hurry();
    traceTo(file);
    pty.write(hex("AA"));
    BYTE bytes[3];
    EXPECT_EQ(play({{"01 FE", ""}, {"7F", "1F"}, {"01 FE", "79 21 FF 12 79"}},
                   [&] { return ZVBL_GET_VER_ROPS(link, &bytes[0], &bytes[1], &bytes[2]); }),
              0);
    EXPECT_EQ(lines(file), "# open 1000000 8E1\nx AA\n> 01 FE\n# no answer in time\n# getting in step\n> 7F\n< 1F\n"
                           "> 01 FE\n< 79\n< 21 FF 12\n< 79\n");
}

TEST_F(TraceTest, AnOpenThatFailsSaysWhy) {
    const std::string file = directory / "trace";
    setenv("ZVBL_TRACE", file.c_str(), 1);
    HANDLE other = nullptr;
    ASSERT_EQ(SetCOMSettings(&other, 0, "/dev/no-such-port", 115200, 8, 2, 1.0F), 0);
    EXPECT_EQ(Interface_Open(other), 3);
    EXPECT_NE(textOf(file).find("/dev/no-such-port # cannot open: No such file or directory\n"), std::string::npos)
        << textOf(file);
}

TEST_F(TraceTest, WhatArrivedBeforeTheOpenIsGone) {
    const std::string file = directory / "trace";
    ASSERT_EQ(Interface_Close(link), 0);
    pty.write(hex("79 79 79 79"));
    traceTo(file);
    EXPECT_EQ(play({{"7F", "1F"}}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
    EXPECT_EQ(lines(file), "# open 1000000 8E1\n> 7F\n< 1F\n");
}

TEST_F(TraceTest, LaterRunsAreAppended) {
    const std::string file = directory / "trace";
    std::ofstream(file) << "2024-01-01T00:00:00.000000 " << pty.path() << " # before\n";
    traceTo(file);
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(lines(file), "# before\n# open 1000000 8E1\n# closed\n");
}

// Of a process, and not of a link.
TEST_F(TraceTest, ARunBeginsWithItsProgramAndItsWords) {
    const std::string file = directory / "trace";
    traceTo(file);
    traceTo(file);
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(lines(file), "# open 1000000 8E1\n# closed\n# open 1000000 8E1\n# closed\n");
    ASSERT_EQ(runLines.size(), 1U);
    EXPECT_EQ(runLines[0].rfind("# run of zvbl_test, library " PROJECT_VERSION ", USART:", 0), 0U) << runLines[0];
    std::string first;
    std::getline(std::ifstream(file), first);
    EXPECT_NE(first.find(runLines[0]), std::string::npos) << "not the first";
    traceTo(directory / "other");
    EXPECT_EQ(lines(directory / "other"), "# open 1000000 8E1\n");
    EXPECT_EQ(runLines.size(), 2U);
}

TEST_F(TraceTest, DataOfPacketsCanBeLeftOut) {
    const std::string file = directory / "trace";
    setenv("ZVBL_TRACE_DATA", "no", 1);
    hurry();
    traceTo(file);
    BYTE data[] = {0x11, 0x22, 0x33, 0x44};
    EXPECT_EQ(play({{"31 CE", "79"}, {"08 00 00 00 08", "79"}, {"03 11 22 33 44 47", "79"}},
                   [&] { return ZVBL_DNLOAD(link, 0x08000000, data, 4, 0); }),
              0);
    EXPECT_EQ(play({{"11 EE", "79"},
                    {"08 00 00 00 08", "79"},
                    {"03 FC", "79 A1 A2 A3"},
                    {"7F", "A4 1F"},
                    {"11 EE", "79"},
                    {"08 00 00 00 08", "79"},
                    {"03 FC", "79 A1 A2 A3 A4"}},
                   [&] { return ZVBL_UPLOAD(link, 0x08000000, data, 4); }),
              0);
    BYTE length = 0;
    EXPECT_EQ(play({{"02 FD", "79 01 02 42 79"}}, [&] { return ZVBL_GET_ID(link, &length, nullptr); }), 0);
    unsetenv("ZVBL_TRACE_DATA");
    EXPECT_EQ(lines(file), "# open 1000000 8E1\n> 31 CE\n< 79\n> 08 00 00 00 08\n< 79\n> 6 bytes\n< 79\n"
                           "> 11 EE\n< 79\n> 08 00 00 00 08\n< 79\n> 03 FC\n< 79\n< 3 bytes\n# no answer in time\n"
                           "# getting in step\n> 7F\n< 2 bytes\n"
                           "> 11 EE\n< 79\n> 08 00 00 00 08\n< 79\n> 03 FC\n< 79\n< 4 bytes\n"
                           "> 02 FD\n< 79\n< 01\n< 02 42\n< 79\n");
}

TEST_F(TraceTest, AFileThatCannotBeWrittenChangesNothing) {
    for (const std::string &path : {std::string("/no/such/directory/trace"), directory.string(), std::string()}) {
        traceTo(path);
        EXPECT_EQ(play({{"D4 2B", "79"}}, [&] { return ZVBL_ResetMCU(link); }), 0);
    }
}

TEST_F(TraceTest, APortNameIsOneWordWithoutWhatIsNotPrintable) {
    const std::string file = directory / "trace";
    setenv("ZVBL_TRACE", file.c_str(), 1);
    HANDLE other = nullptr;
    ASSERT_EQ(SetCOMSettings(&other, 0, "/dev/no > 31\n\x1B[2J", 115200, 8, 2, 1.0F), 0);
    EXPECT_EQ(Interface_Open(other), 3);
    EXPECT_NE(textOf(file).find(" /dev/no\\x20>\\x2031\\x0A\\x1B[2J # cannot open: No such file or directory\n"),
              std::string::npos)
        << textOf(file);
}

TEST_F(TraceTest, WhatIsDiscardedInARowIsListedUpToALimit) {
    const std::string file = directory / "trace";
    traceTo(file);
    ASSERT_EQ(Interface_Close(link), 0);
    {
        zvbl::Trace trace(pty.path(), "USART");
        for (int i = 0; i < 3; ++i) {
            const zvbl::Bytes bytes(4000, 0x55);
            trace.discarded(bytes.data(), bytes.size());
        }
        trace.remark("and on");
        trace.discarded("a frame");
    }
    std::string expected = "# open 1000000 8E1\n# closed\nx";
    const auto list = [&](int count) {
        while (count-- > 0)
            expected += " 55";
    };
    list(4000);
    expected += "\nx";
    list(96);
    expected += "\nx 7904 more\n# and on\nx a frame\n";
    EXPECT_EQ(lines(file), expected);
}

// In a directory that others may write to, a link leads where its owner wants.
TEST_F(TraceTest, ALinkOfSomebodyElseIsNotFollowedWhereOthersMayWrite) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make a link of somebody else";
    const std::filesystem::path file = directory / "trace", victim = directory / "victim";
    constexpr uid_t somebody = 12345;
    std::ofstream(victim) << "";
    std::filesystem::create_symlink(victim, file);
    ASSERT_EQ(chmod(directory.c_str(), 0777), 0);
    ASSERT_EQ(lchown(file.c_str(), somebody, somebody), 0);
    traceTo(file);
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(textOf(victim), "");
    ASSERT_EQ(chmod(directory.c_str(), 0755), 0);
    traceTo(file);
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_NE(textOf(victim), "");
}

TEST_F(TraceTest, AnOwnLinkIsFollowed) {
    const std::filesystem::path file = directory / "trace", other = directory / "other";
    std::filesystem::create_symlink(other, file);
    ASSERT_EQ(chmod(directory.c_str(), 0777), 0);
    traceTo(file);
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(lines(other), "# open 1000000 8E1\n# closed\n");
}

TEST_F(TraceTest, StandardErrorCanBeNamed) {
    const std::string file = directory / "error";
    const int kept = dup(STDERR_FILENO), made = open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    dup2(made, STDERR_FILENO);
    traceTo("/dev/stderr");
    Interface_Close(link);
    dup2(kept, STDERR_FILENO);
    close(kept);
    close(made);
    EXPECT_EQ(lines(file), "# open 1000000 8E1\n# closed\n");
}

} // namespace
