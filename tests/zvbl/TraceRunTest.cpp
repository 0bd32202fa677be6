// The line of a trace that tells how the program was started, for one with very many words.

#include "libs/zvbl/TraceRun.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace {

constexpr char asked[] = "ZVBL_TELL_RUN";

TEST(TraceRunTest, MoreWordsThanALineHoldsAreCut) {
    if (std::getenv(asked) != nullptr) { // the one that is started below
        std::printf("<%s>", zvbl::describeRun("USART").c_str());
        return;
    }
    const std::string self = std::filesystem::read_symlink("/proc/self/exe");
    const std::string command =
        std::string(asked) + "=1 " + self + " --gtest_filter=TraceRunTest.* " + std::string(5000, 'a') + " more";
    FILE *const out = popen(command.c_str(), "r");
    ASSERT_NE(out, nullptr);
    std::string text;
    for (int letter = std::fgetc(out); letter != EOF; letter = std::fgetc(out))
        text += static_cast<char>(letter);
    EXPECT_EQ(pclose(out), 0);
    const std::size_t begin = text.find("<run of ");
    ASSERT_NE(begin, std::string::npos);
    const std::string line = text.substr(begin + 1, text.find('>', begin) - begin - 1);
    EXPECT_EQ(line.substr(line.size() - 6), "aaa...");
    EXPECT_EQ(line.size() - line.find("USART:"), 6U + 4096 + 3);
}

} // namespace
