// Each trap of the command line is told, by its name, and a line without one has none.

#include <sstream>

#include <gtest/gtest.h>

#include "LineDirectory.h"
#include "LineRun.h"

namespace {

const char *const f403a = "ZV32F403A_1024K";
const char *const f435 = "ZV32F435_4032K";
const char *const m412 = "ZV32M412_256K";

void collect(const Json &object, std::string &found) {
    if (object.contains("findings"))
        for (const Json &row : object["findings"])
            if (row["mark"] != "note")
                found +=
                    (found.empty() ? "" : ", ") + row["mark"].get<std::string>() + " " + row["name"].get<std::string>();
    for (const char *list : {"steps", "actions"})
        if (object.contains(list))
            for (const Json &inner : object[list])
                collect(inner, found);
}

std::string foundIn(const char *chip, const std::string &line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    std::string found;
    collect(lookAtLine(chip, words), found);
    return found;
}

const struct {
    const char *chip;
    const char *line;
    const char *found;
} table[] = {
    {f403a, "-com --pn ttyS0 -d --fn ./a.hex --v", ""},
    {f403a, "-com --pn ttyS0 -e --all -d --fn ./a.hex --o", ""},
    {f403a, "-com --pn ttyS0 -e --sec 0-9 -d --fn ./a.hex", ""},
    {"", "-com --pn ttyS0 -d --fn ./a.hex -u --fn ./x.bin", ""},
    // Words that do nothing.
    {f403a, "-com --pn ttyS0 -d --a 08004000 --fn ./b.bin", "error swallowed word"},
    {f403a, "-com --pn ttyS0 -e --ALL 1 --sec 0-1", "error swallowed word"},
    {f403a, "-com --pn ttyS0 -r --a 08004000", "error swallowed word"},
    // Values that are missing or are none.
    {f403a, "-com --pn ttyS0 -e --sec", "error missing value"},
    {f403a, "-com --pn ttyS0 -e --sec -d", "error missing value"},
    {f403a, "-com --pn ttyS0 -d --fn ./b.bin --addr", "error missing value"},
    {f403a, "-com --pn ttyS0 -usd --get", "error missing value, error does nothing"},
    {f403a, "-com --pn ttyS0 -p --eepp", "error missing value"},
    {f403a, "-com --pn ttyS0 --br", "error missing value"},
    {f403a, "-com --pn ttyS0 --br fast", "error odd value"},
    {f403a, "-com --pn ttyS0 -d --fn ./b.bin --addr flash", "error odd value, error out of flash"},
    {f403a, "-com --pn ttyS0 -e --sec 0", "error odd value"},
    {f403a, "-com", "error no port"},
    // Actions that do nothing.
    {f403a, "-com --pn ttyS0 -e", "error does nothing"},
    {f403a, "-com --pn ttyS0 -p", "error does nothing"},
    {f403a, "-com --pn ttyS0 -usd", "error does nothing"},
    {m412, "-com --pn ttyS0 -otp", "error does nothing"},
    {m412, "-com --pn ttyS0 -otp --fn ./gone.ZVTP", "error no file, error does nothing"},
    {m412, "-com --pn ttyS0 -otp --fn otp.ZVTP", "error does nothing, error bad word"},
    {m412, "-com --pn ttyS0 -otp --fn ./short.ZVTP", "error lost records, error does nothing"},
    // Erasing.
    {f403a, "-com --pn ttyS0 -e -d --fn ./a.hex", "error does nothing, error not erased"},
    {f403a, "-com --pn ttyS0 -e --sec 0-1 -d --fn ./a.hex", "error not erased"},
    {"", "-com --pn ttyS0 -e --sec 0-1 -d --fn ./a.hex", "warning not erased"},
    {f403a, "-com --pn ttyS0 -d --fn ./a.hex --o", "warning old bytes stay"},
    {f435, "-com --pn ttyS0 -d --fn ./a.hex", "error refused"},
    {f435, "-com --pn ttyS0 -e --all -d --fn ./a.hex", ""},
    // What an earlier option has set.
    {f403a, "-com --pn ttyS0 -d --fn ./a.hex --v -d --fn ./b.bin", "warning holds on"},
    {f403a, "-com --pn ttyS0 -d --fn ./b.bin --addr 08010000 -d --fn ./b.bin", "warning holds on"},
    // Files.
    {f403a, "-com --pn ttyS0 -d --fn a.hex", "error refused"},
    {f403a, "-com --pn ttyS0 -d", "error refused"},
    {f403a, "-com --pn ttyS0 -d --fn ./gone.hex", "error no file, error refused"},
    {f403a, "-com --pn ttyS0 -d --fn ./bad.hex", "error refused"},
    {f403a, "-com --pn ttyS0 -d --fn ./far.hex", "error refused"},
    {f403a, "-com --pn ttyS0 -d --fn ./low.hex", "error out of flash"},
    {f403a, "-com --pn ttyS0 -d --fn ./x.bin/a.hex", "error odd path"},
    {f403a, "-com --pn ttyS0 -usd --set --fn ./few.bin", "error refused"},
    {f403a, "-com --pn ttyS0 -u --fn ./gone/x.bin", "error no directory"},
    {f403a, "-com --pn ttyS0 -u --sec 5-5 --sec 1-1 --fn ./x.bin", "warning sectors"},
    // What can't be undone.
    {m412, "-com --pn ttyS0 -p --efap2 --y", "warning for ever"},
    {m412, "-com --pn ttyS0 -p --efap2", "error refused"},
    {f403a, "-com --pn ttyS0 -p --efap2", "warning for ever"},
    {f403a, "-com --pn ttyS0 -p --dfap", "warning flash is lost"},
    {m412, "-com --pn ttyS0 -otp --fn ./otp.ZVTP", "warning for ever"},
    {f403a, "-com --pn ttyS0 -otp --fn ./otp.ZVTP", "error no otp data, warning for ever"},
    // The order of the line.
    {f403a, "-e --all -com --pn ttyS0", "error no connection"},
    {f403a, "-com --pn ttyS0 -r -e --all", "error out of reach"},
    {f403a, "-com --pn ttyS0 -p --efap -d --fn ./a.hex", "error out of reach"},
    {f403a, "-com --pn ttyS0 -p --efap -p --dfap", "warning flash is lost"},
    {f403a, "-com --pn ttyS0 -com --pn ttyS1", "warning second connection"},
    {f403a, "-com --pn ttyS0 -? -e --all", "error out of reach"},
    {f403a, "-com --pn ttyS0 erase", "error refused"},
    {f403a, "-dfu erase", "error bad word"},
    {f403a, "-com --pn ttyS0 -o --get --fn ./x.bin", "warning option word"},
};

TEST(LineTraps, AreTold) {
    const LineDirectory directory;
    for (const auto &row : table)
        EXPECT_EQ(foundIn(row.chip, row.line), row.found) << row.chip << ": " << row.line;
}

TEST(LineTraps, TimeOnTheLink) {
    const LineDirectory directory;
    const Json json = lookAtLine(f403a, {"-com", "--pn", "ttyS0", "--br", "9600", "-d", "--fn", "./b.bin"});
    const Json &download = json["steps"][1]["actions"][0];
    EXPECT_NEAR(download["timeOnTheLink"].get<double>(), 5000 * 11 / 9600.0, 0.001);
    EXPECT_EQ(download["erases"], (Json{{0, 2}}));
}

} // namespace
