// The command line of the simulator.

#include "sim/program/Options.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "sim/program/SimPorts.h"

namespace sim {
namespace {

bool parse(std::vector<std::string> words, Options &options, std::string &error) {
    words.insert(words.begin(), "zv32-sim");
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    return parseOptions(static_cast<int>(words.size()), argv.data(), simPorts(), options, error);
}

TEST(Options, theUsualLine) {
    Options options;
    std::string error;
    ASSERT_TRUE(parse({"--chip", "ZV32F437_4032K", "--usart", "/x/tty", "--state=/x/s", "--spim", "8", "--baud-pace",
                       "--flash-time", "--fault", "nack@1", "--fault=hangup@2:5", "--verbose", "--log", "/x/l"},
                      options, error))
        << error;
    EXPECT_EQ(options.task, Options::Task::serve);
    EXPECT_EQ(options.chip->name, "ZV32F437_4032K");
    EXPECT_EQ(options.port, "/x/tty");
    EXPECT_EQ(options.state, "/x/s");
    EXPECT_EQ(options.log, "/x/l");
    EXPECT_EQ(options.spimMb, 8U);
    EXPECT_TRUE(options.pace);
    EXPECT_TRUE(options.verbose);
    EXPECT_EQ(options.flashTime.eraseSector, 20 * millisecond);
    EXPECT_EQ(options.flashTime.program256, 2500 * microsecond);
}

TEST(Options, whatHoldsWithoutAWord) {
    Options options;
    std::string error;
    ASSERT_TRUE(parse({"--chip", "ZV32F421_64K", "--usart", "tty"}, options, error)) << error;
    EXPECT_EQ(options.port, std::filesystem::current_path() / "tty");
    EXPECT_EQ(options.spimMb, 16U);
    EXPECT_FALSE(options.pace);
    EXPECT_FALSE(options.verbose);
    EXPECT_EQ(options.flashTime.eraseSector, 0);
    EXPECT_EQ(options.flashTime.program256, 0);
    EXPECT_TRUE(options.state.empty());
    EXPECT_TRUE(options.log.empty());
}

TEST(Options, chipsBesideTheFirst) {
    Options options;
    std::string error;
    ASSERT_TRUE(parse({"--chip", "ZV32F421_64K", "--dfu", "--beside", "16"}, options, error)) << error;
    EXPECT_EQ(options.beside, 16U);
    EXPECT_FALSE(parse({"--chip", "ZV32F421_64K", "--dfu", "--beside", "17"}, options, error));
    options = Options();
    EXPECT_FALSE(parse({"--chip", "ZV32F421_64K", "--beside", "1", "--usart", "tty"}, options, error));
    EXPECT_EQ(error, "--beside is not for --usart");
}

TEST(Options, theNumberOfTheUnit) {
    Options options;
    std::string error;
    ASSERT_TRUE(parse({"--chip", "ZV32F421_64K", "--usart", "tty", "--unit", "65535"}, options, error)) << error;
    EXPECT_EQ(options.unit, 65535U);
    EXPECT_FALSE(parse({"--unit", "65536"}, options, error));
    EXPECT_NE(error.find("65536"), std::string::npos) << error;
}

TEST(Options, flashTimeOfOnesOwn) {
    Options options;
    std::string error;
    ASSERT_TRUE(parse({"--chip", "ZV32F421_64K", "--usart", "tty", "--flash-time=7,900"}, options, error)) << error;
    EXPECT_EQ(options.flashTime.eraseSector, 7 * millisecond);
    EXPECT_EQ(options.flashTime.program256, 900 * microsecond);
}

TEST(Options, wiringIsForPortsWithControlLines) {
    Options options;
    std::string error;
    ASSERT_TRUE(parse({"--wiring", "reset=dtr:low", "--chip", "ZV32F421_64K", "--tty"}, options, error)) << error;
    EXPECT_EQ(options.port, "ttyUSB0");
    EXPECT_TRUE(options.wiring.reset.has_value());
    EXPECT_FALSE(options.wiring.boot.has_value());
}

TEST(Options, aNameThatMayBeLeftOut) {
    const std::pair<std::vector<std::string>, const char *> lines[] = {
        {{"--chip", "ZV32F421_64K", "--i2c"}, "i2c-1"},
        {{"--i2c", "--chip", "ZV32F421_64K"}, "i2c-1"},
        {{"--i2c", "i2c-7", "--chip", "ZV32F421_64K"}, "i2c-7"},
        {{"--i2c=i2c-8", "--chip", "ZV32F421_64K"}, "i2c-8"},
    };
    for (const auto &[words, port] : lines) {
        Options options;
        std::string error;
        ASSERT_TRUE(parse(words, options, error)) << error;
        EXPECT_EQ(options.port, port);
        EXPECT_STREQ(options.kind->option, "i2c");
    }
}

TEST(Options, listAndHelpNeedNothingElse) {
    Options list;
    Options help;
    std::string error;
    EXPECT_TRUE(parse({"--list"}, list, error)) << error;
    EXPECT_TRUE(parse({"--help"}, help, error)) << error;
    EXPECT_EQ(list.task, Options::Task::list);
    EXPECT_EQ(help.task, Options::Task::help);
}

struct BadLine {
    const char *name;
    std::vector<std::string> words;
    const char *message; // a part of it
};

void PrintTo(const BadLine &line, std::ostream *out) {
    *out << line.name;
}

class BadLines : public ::testing::TestWithParam<BadLine> {};

TEST_P(BadLines, areRefusedWithAReason) {
    Options options;
    std::string error;
    EXPECT_FALSE(parse(GetParam().words, options, error));
    EXPECT_NE(error.find(GetParam().message), std::string::npos) << error;
}

INSTANTIATE_TEST_SUITE_P(
    Line, BadLines,
    ::testing::Values(
        BadLine{"nothing", {}, "--chip is missing"},
        BadLine{"no_port", {"--chip", "ZV32F421_64K"}, "the port is missing: --usart"},
        BadLine{"no_chip", {"--usart", "tty"}, "--chip is missing"},
        BadLine{"unknown_chip", {"--chip", "ZV32F1", "--usart", "tty"}, "no chip \"ZV32F1\""},
        BadLine{"unknown_option", {"--chips"}, "unknown option --chips"},
        BadLine{"short_option", {"-c", "x"}, "unknown option -c"},
        BadLine{"value_missing", {"--chip"}, "a value is missing behind --chip"},
        BadLine{"value_too_much", {"--list=x"}, "--list=x"}, BadLine{"stray_word", {"--list", "word"}, "word"},
        BadLine{"empty_name", {"--usart", ""}, "empty"},
        BadLine{"empty_name_that_may_be_left_out", {"--i2c=", "--chip", "ZV32F421_64K"}, "empty"},
        BadLine{"two_names", {"--chip", "ZV32F421_64K", "--i2c", "i2c-1", "i2c-2"}, "i2c-2"},
        BadLine{"two_ports", {"--chip", "ZV32F421_64K", "--i2c", "--spi"}, "--i2c or --spi"},
        BadLine{"bad_wiring", {"--wiring", "reset=dtr"}, "reset=dtr"},
        BadLine{"wiring_without_lines",
                {"--chip", "ZV32F421_64K", "--usart", "tty", "--wiring", "reset=dtr:low"},
                "--usart has no control lines"},
        BadLine{"bad_fault", {"--fault", "x@1"}, "x@1"}, BadLine{"spim_no_number", {"--spim", "16M"}, "16M"},
        BadLine{"spim_too_large", {"--spim", "65"}, "65"}, BadLine{"flash_time_one_number", {"--flash-time=20"}, "20"},
        BadLine{"flash_time_no_number", {"--flash-time=a,b"}, "a,b"}),
    [](const auto &line) { return std::string(line.param.name); });

} // namespace
} // namespace sim
