// "-usd" and "-o".

#include "Console.h"

namespace {

using Calls = std::vector<std::string>;

class UserSystemDataTest : public ConnectedTest {};

TEST_F(UserSystemDataTest, Get) {
    for (const char *option : {"-usd", "-o"}) {
        const Outcome run = connected(std::string(option) + " --get --fn @/a.bin");
        EXPECT_EQ(run.text, "Get user system data to file\nrunning...\nGet user system data to file succeed!\n");
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.callsOf("TARGET_GetUserSystemData").size(), 1U);
        ASSERT_EQ(run.files.size(), 5U);
        EXPECT_EQ(run.files[2], "FILES_CreateImage one=1 -> image=1 12340000");
        EXPECT_NE(run.files[3].find("FILES_SetImageElement image=1 index=0 insert=1"), std::string::npos);
        EXPECT_EQ(run.files[4], "FILES_ImageToFile path=@/a.bin image=1 elements=1 bytes=4096 -> 12340000");
        EXPECT_TRUE(run.changes().empty());
    }
}

TEST_F(UserSystemDataTest, Set) {
    for (const char *option : {"-usd", "-o"}) {
        const Outcome run = connected(std::string(option) + " --set --fn @/a.bin");
        EXPECT_EQ(run.text,
                  "Set user system data to device\nrunning...\nSet user system data to device successfully!\n");
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.changes().size(), 1U);
        EXPECT_EQ(run.callsOf("TARGET_SetUserSystemData").size(), 1U);
        EXPECT_EQ(run.files.back(), "FILES_GetImageElement image=1 index=0 data=set -> 12340000");
    }
}

TEST_F(UserSystemDataTest, SeveralInOneOption) {
    const Outcome run = connected("-usd --get --fn @/a.bin --set --fn @/a.bin --get --fn @/b.hex");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(lines(run.text).size(), 9U);
}

TEST_F(UserSystemDataTest, NothingToDo) {
    for (const char *line : {"-usd", "-o", "-usd --get", "-usd --set", "-usd --speed 5", "-usd --GET --fn"}) {
        const Outcome run = connected(line);
        EXPECT_EQ(run.text, "") << line;
        EXPECT_EQ(run.status, 0) << line;
        EXPECT_TRUE(run.callsOf("TARGET_GetUserSystemData").empty()) << line;
    }
}

TEST_F(UserSystemDataTest, WordsThatAreRefused) {
    const struct {
        const char *line;
        const char *text;
        int status;
    } table[] = {
        // The word reported stands where the file's name should.
        {"-usd --get /x/a.bin -e", "bad parameter \"-e\"\n", 7},
        {"-usd --set /x/a.bin -e", "bad parameter \"-e\"\n", 6},
        // On the last words that is the null word.
        {"-usd --get /x/a.bin", "bad parameter \"", 7},
        {"-usd --set /x/a.bin", "bad parameter \"", 6},
        {"-usd --get --fn", "bad parameter \"", 7},
        {"-usd --set --fn", "bad parameter \"", 6},
        {"-usd --get --FN /x/a.bin", "bad parameter \"/x/a.bin\"\n", 7},
        {"-usd --get --fn a.bin", "bad parameter \"a.bin\"\n", 7},
        {"-usd --set --fn a.bin", "bad parameter \"a.bin\"\n", 6},
        {"-usd --get --fn /x/a", "bad parameter \"/x/a\"\n", 7},
        {"-usd --set --fn /x/a.txt", "bad parameter \"/x/a.txt\"\n", 6},
        // A word that is neither option nor sub-option stands alone.
        {"-usd foo", "foo\n", 1},
        {"-o foo -e", "foo\n", 1},
        {"-usd --y", "--y\n", 1},
    };
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, row.status) << row.line;
        EXPECT_TRUE(run.callsOf("TARGET_GetUserSystemData").empty()) << row.line;
        EXPECT_TRUE(run.changes().empty()) << row.line;
    }
}

TEST_F(UserSystemDataTest, FailureOfGet) {
    console.script("TARGET_GetUserSystemData status=5");
    const Outcome run = connected("-usd --get --fn @/a.bin -e");
    EXPECT_EQ(run.text, "Get user system data to file\nrunning...\nGet user system data to file failed!\n");
    EXPECT_EQ(run.status, 7);
    EXPECT_EQ(run.calls.back(), "Interface_Close");
}

TEST_F(UserSystemDataTest, FailureOfTheFile) {
    console.filesScript("FILES_ImageToFile status=3");
    EXPECT_EQ(connected("-usd --get --fn @/a.bin").status, 7);
    console.filesScript("FILES_ImageFromFile status=3");
    EXPECT_EQ(connected("-usd --set --fn @/a.bin").status, 6);
}

TEST_F(UserSystemDataTest, FailureOfSet) {
    console.script("TARGET_SetUserSystemData status=20");
    const Outcome run = connected("-usd --set --fn @/a.bin");
    EXPECT_EQ(run.text, "Set user system data to device\nrunning...\nSet user system data to device failed!\n");
    EXPECT_EQ(run.status, 6);
}

// The name of a refused "--set" is kept; only a later download could tell, and the line has ended by then. The name
// of an accepted one is what a download without "--fn" takes.
TEST_F(UserSystemDataTest, SetKeepsTheNameForADownload) {
    console.file("a.bin", "");
    const Outcome run = connected("-usd --set --fn @/a.bin -d");
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.text.find("Download\n@/a.bin     2048B\n"), std::string::npos) << run.text;
    EXPECT_EQ(connected("-usd --get --fn @/a.bin -d").status, 3);
}

} // namespace
