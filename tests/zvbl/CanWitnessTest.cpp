// Programs of other people on the same bus: slcanpty is an adapter that was not written for this library, and
// candump sees what is on the bus.

#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/zvbl/CanFixture.h"

namespace {

// A program with its output line by line.
class Program {
public:
    explicit Program(std::vector<const char *> words) {
        int output[2];
        if (pipe2(output, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        words.insert(words.begin(), {"stdbuf", "-oL"});
        words.push_back(nullptr);
        m_process = fork();
        if (m_process == 0) {
            dup2(output[1], STDOUT_FILENO);
            dup2(output[1], STDERR_FILENO);
            execvp(words[0], const_cast<char *const *>(words.data()));
            _exit(127);
        }
        ::close(output[1]);
        m_output = output[0];
    }
    ~Program() {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
        ::close(m_output);
    }
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    // The next line, without the spaces around it; empty: none in time.
    std::string line(int timeoutMs = 3000) {
        std::string text;
        pollfd output{m_output, POLLIN, 0};
        char c = 0;
        while (poll(&output, 1, timeoutMs) > 0 && read(m_output, &c, 1) == 1 && c != '\n')
            text += c;
        text.erase(text.find_last_not_of(' ') + 1);
        return text.erase(0, text.find_first_not_of(' '));
    }

private:
    pid_t m_process = -1;
    int m_output = -1;
};

bool isInstalled(const char *program) {
    return std::system((std::string("command -v ") + program + " >/dev/null").c_str()) == 0;
}

// candump does not say when it listens: it does when it shows a frame.
void awaitListening(Program &dump, CanChip &anybody) {
    std::string first;
    for (int tries = 300; first.empty() && tries > 0; --tries) {
        anybody.send("700");
        first = dump.line(10);
    }
    ASSERT_EQ(first, "can0  700   [0]");
    anybody.send("701");
    while (dump.line() == "can0  700   [0]") {
    }
}

class CanWitnessTest : public CanFixture {};

TEST_F(CanWitnessTest, CandumpSeesWhatThePageSays) {
    if (!isInstalled("candump"))
        GTEST_SKIP() << "no candump";
    Program dump({"candump", "can0"});
    CanChip anybody(CanScript{});
    EXPECT_EQ(anybody.finish(), "");
    awaitListening(dump, anybody);
    BYTE data[] = {0xAA, 0xBB, 0xCC, 0xDD, 1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(play({{"031", "131 79"},
                    {"031 08 00 00 00 08", "131 79"},
                    {"031 0B AA BB CC DD 01 02 03,031 04 05 06 07 08 03", "131 79"}},
                   [&] { return ZVBL_DNLOAD(link, 0x08000000, data, 12, 0); }),
              0);
    for (const char *line :
         {"can0  031   [0]", "can0  131   [1]  79", "can0  031   [5]  08 00 00 00 08", "can0  131   [1]  79",
          "can0  031   [8]  0B AA BB CC DD 01 02 03", "can0  031   [6]  04 05 06 07 08 03", "can0  131   [1]  79"})
        EXPECT_EQ(dump.line(), line);
}

TEST_F(CanWitnessTest, SlcanptyIsAnAdapter) {
    if (!isInstalled("slcanpty"))
        GTEST_SKIP() << "no slcanpty";
    Program adapter({"slcanpty", "/dev/ptmx", "can0"});
    const std::string told = adapter.line();
    const std::size_t path = told.find("/dev/pts/");
    ASSERT_NE(path, std::string::npos) << told;
    HANDLE other = nullptr;
    ASSERT_EQ(SetCOMSettings(&other, 0, told.c_str() + path, 115200, 8, 2, 1.0F), 0);
    ASSERT_EQ(SetTimeOut(other, 3000), 0);
    int status = Interface_Open(other);
    for (int tries = 300; status == 3 && tries > 0; --tries) // it joins the bus later than it tells its name
        status = Interface_Open(other);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(play({{"07F", "17F 79"}}, [&] { return ZVBL_Init_BL(other, 0, 2, 0); }), 0);
    BYTE data[12] = {};
    EXPECT_EQ(play({{"011", "111 79"},
                    {"011 1F FF F7 E8 FF", "111 79"},
                    {"011 0B F4", "111 79, 111 01 02 03 04 05 06 07 08, 111 09 0A 0B 0C 0C"}},
                   [&] { return ZVBL_UPLOAD(other, 0x1FFFF7E8, data, 12); }),
              0);
    EXPECT_EQ(data[11], 0x0C);
    EXPECT_EQ(play({{"031", "131 79"},
                    {"031 20 00 00 00 20", "131 79"},
                    {"031 0B 01 02 03 04 05 06 07,031 08 09 0A 0B 0C 07", "131 79"}},
                   [&] { return ZVBL_DNLOAD(other, 0x20000000, data, 12, 0); }),
              0);
    EXPECT_EQ(Interface_Close(other), 0);
}

} // namespace
