#include "app/Words.h"

#include <gtest/gtest.h>

namespace {

const char *const options[] = {"-?", "-dfu", "-com", "-i2c", "-can", "-spi",    "-e",  "-p",
                               "-d", "-u",   "-o",   "-usd", "-r",   "-enspim", "-otp"};
const char *const subOptions[] = {"--pn",   "--br",   "--db",  "--pr",   "--to",   "--auto",  "--all",   "--sec",
                                  "--erp",  "--drp",  "--ewp", "--dwp",  "--efap", "--efap1", "--efap2", "--dfap",
                                  "--eepp", "--depp", "--a",   "--addr", "--rate", "--dc",    "--speed", "--fn",
                                  "--v",    "--o",    "--get", "--set",  "--ft",   "--fs",    "--fda",   "--remap"};

TEST(Words, FifteenOptions) {
    for (const char *word : options) {
        EXPECT_TRUE(Is_Option(word)) << word;
        EXPECT_FALSE(Is_SubOption(word)) << word;
    }
}

TEST(Words, OptionsAreExact) {
    for (const char *word : {"", "-", "?", "-COM", "-Com", "--com", "-com ", "-co", "-comm", "com", "-x", "--?"})
        EXPECT_FALSE(Is_Option(word)) << word;
}

TEST(Words, ThirtyTwoSubOptionsInAnyCase) {
    for (const std::string word : subOptions) {
        EXPECT_TRUE(Is_SubOption(word)) << word;
        EXPECT_FALSE(Is_Option(word)) << word;
    }
    EXPECT_TRUE(Is_SubOption("--PN"));
    EXPECT_TRUE(Is_SubOption("--EFap2"));
}

TEST(Words, OtherSubOptions) {
    for (const char *word : {"", "--", "--y", "-pn", "pn", "--pn ", "--efap3", "--baud", "---pn"})
        EXPECT_FALSE(Is_SubOption(word)) << word;
}

TEST(Words, Parity) {
    const struct {
        const char *text;
        int parity;
    } table[] = {{"NONE", 0}, {"none", 0}, {"None", 0}, {"ODD", 1},  {"odd", 1},
                 {"EVEN", 2}, {"even", 2}, {"", 2},     {"mark", 2}, {"NONE ", 2}};
    for (const auto &row : table)
        EXPECT_EQ(ParityToInt(row.text), row.parity) << row.text;
}

TEST(Words, AnOptionThatIsNoneHasNoWords) {
    const auto none = static_cast<OptionId>(99);
    EXPECT_EQ(subWord(none, "--fn"), nullptr);
    EXPECT_FALSE(isConnection(none));
    EXPECT_FALSE(isConnection(OptionId::usage));
    EXPECT_TRUE(isConnection(OptionId::dfu));
    EXPECT_TRUE(isConnection(OptionId::spi));
    EXPECT_FALSE(isConnection(OptionId::erase));
}

} // namespace
