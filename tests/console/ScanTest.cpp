#include <iostream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "FakeLink.h"
#include "app/Requests.h"
#include "app/UserSystemData.h"
#include "foundation/ShareParameter.h"

namespace {

// What the scan makes of a line: its result and the path that it stored, or "end" where it ran into the end.
std::string scan(const std::string &text) {
    Line line(text);
    g_shareParameter.c_strFilePath.clear();
    try {
        const int found = GetUserSystemDataFile(line.argc(), line.argv());
        return std::to_string(found) + " " + g_shareParameter.c_strFilePath;
    } catch (const std::logic_error &) {
        return "end";
    }
}

TEST(UserSystemDataScan, Lines) {
    const struct {
        const char *line;
        const char *seen;
    } table[] = {
        {"", "0 "},
        {"-enspim --fda 1", "0 "},
        // The form that people write does not match.
        {"-usd --set --fn /x/a.bin", "0 "},
        {"-usd --get --fn /x/a.bin", "0 "},
        {"-enspim --fda 1 -usd --set --fn /x/a.bin -e", "0 "},
        // The only one that does stores the word "--fn".
        {"-usd --v --set --fn /x/a.bin", "1 --fn"},
        {"-usd --v --set --fn", "1 --fn"},
        {"-usd --v --set /x/a.bin", "1 "},
        // "-o" is not looked for.
        {"-o --v --set --fn /x/a.bin", "0 "},
        // It goes on after what does not match.
        {"-usd -e -usd --v --set --fn", "1 --fn"},
        {"-usd --v --get a b -usd --v --set --fn", "1 --fn"},
        // It steps over two words after the one that is not "--set".
        {"-usd --v a b -usd --v --set --fn", "0 "},
        {"-usd --v a b c -usd --v --set --fn", "1 --fn"},
        // Past the last word, the end test is "at or above".
        {"-usd --v --fn", "0 "},
        {"-usd --v --fn a", "0 "},
        {"-usd --v --fn a b", "0 "},
        // Into the null entry.
        {"-usd", "end"},
        {"-usd --set", "end"},
        {"-usd --v --set", "end"},
        {"-e -usd", "end"},
    };
    for (const auto &row : table)
        EXPECT_EQ(scan(row.line), row.seen) << row.line;
}

TEST(UserSystemDataName, RefusedNameOfSetIsKept) {
    FakeLink fake;
    const struct {
        const char *line;
        const char *kept;
        int status;
    } table[] = {
        {"-usd --set --fn a.bin", "a.bin", 6},
        {"-usd --set --fn", "", 6},
        {"-usd --set /x/a.bin", "before", 6},
        {"-usd --get --fn a.bin", "before", 7},
    };
    for (const auto &row : table) {
        g_shareParameter.c_filename = "before";
        Line line(row.line);
        int index = 0;
        testing::internal::CaptureStdout();
        EXPECT_EQ(UserSystemData(line.argc(), line.argv(), index, &fake.link), row.status) << row.line;
        testing::internal::GetCapturedStdout();
        std::cout.clear(); // the null word ends the output
        EXPECT_EQ(g_shareParameter.c_filename, row.kept) << row.line;
    }
}

} // namespace
