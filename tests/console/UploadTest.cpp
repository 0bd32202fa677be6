// "-u".

#include <algorithm>

#include "Console.h"

namespace {

using Calls = std::vector<std::string>;

class UploadTest : public ConnectedTest {
protected:
    UploadTest() { console.connectTo(f415); } // 128 sectors
};

TEST_F(UploadTest, Sectors) {
    for (const char *line : {"-u --sec 0-1 --fn @/up.bin", "-u --fn @/up.bin --sec 0-1"}) {
        const Outcome run = connected(line);
        EXPECT_EQ(run.text, "Upload\n@/up.bin     4096B\n\rRunning...50%\rRunning...100%\nUpload successfully!\n")
            << line;
        EXPECT_EQ(run.status, 0) << line;
        EXPECT_EQ(run.callsOf("ZVBL_UPLOAD"),
                  (Calls{"ZVBL_UPLOAD addr=08000000 len=2048", "ZVBL_UPLOAD addr=08000800 len=2048"}))
            << line;
        EXPECT_EQ(run.files.back(), "FILES_ImageToFile path=@/up.bin image=2 elements=2 bytes=4096 -> 12340000")
            << line;
        EXPECT_TRUE(run.changes().empty()) << line;
    }
}

TEST_F(UploadTest, ANameIsBytes) {
    for (const char *name : {"m\xFCller.bin", "\xFF\xC3\xBC.bin", "m\xC3\xBCller.bin", "\xEF\xBF\xBD.bin"}) {
        const Outcome run = connected(std::string("-u --sec 0 --fn @/") + name);
        EXPECT_EQ(run.status, 0) << name;
        EXPECT_EQ(run.files.back(),
                  std::string("FILES_ImageToFile path=@/") + name + " image=2 elements=1 bytes=2048 -> 12340000");
    }
}

TEST_F(UploadTest, AllSectors) {
    const Outcome run = connected("-u --fn @/up.hex");
    EXPECT_EQ(run.status, 0);
    const Calls reads = run.callsOf("ZVBL_UPLOAD");
    ASSERT_EQ(reads.size(), 128U);
    EXPECT_EQ(reads.back(), "ZVBL_UPLOAD addr=0803F800 len=2048");
}

TEST_F(UploadTest, RangesAddUp) {
    EXPECT_EQ(connected("-u --sec 0-1 --sec 5-6 --fn @/up.bin").callsOf("ZVBL_UPLOAD").size(), 4U);
    EXPECT_EQ(connected("-u --fn @/up.bin --sec").callsOf("ZVBL_UPLOAD").size(), 1U);
}

TEST_F(UploadTest, WordsThatAreRefused) {
    const struct {
        const char *line;
        const char *text;
    } table[] = {
        {"-u --sec 0-1", "Upload file name error.\n"},
        {"-u", "Upload file name error.\n"},
        {"-u --FN @/up.bin", "Upload file name error.\n"},
        {"-u --fn up.bin", "bad parameter \"up.bin\"\n"},
        {"-u --fn @/up.txt", "bad parameter \"@/up.txt\"\n"},
        {"-u --fn", "bad parameter \""},
        {"-u --fn @/up.bin --fn", "bad parameter \""},
        {"-u --sec 3-1 --fn @/up.bin", "bad parameter \"3-1\"\n"},
        {"-u --sec 0-128 --fn @/up.bin", "bad parameter \"0-128\"\n"},
        {"-u --bogus", "bad parameter \"--bogus\"\n"},
    };
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, 4) << row.line;
        EXPECT_TRUE(run.callsOf("ZVBL_UPLOAD").empty()) << row.line;
    }
}

// No machine has room for such a list, and no chip the sectors.
TEST_F(UploadTest, RangeThatMakesNoJob) {
    for (const char *line : {"-u --sec 0-2000000000 --fn @/up.bin", "-u --sec 0-9 --sec 0-1048575 --fn @/up.bin"}) {
        const Outcome run = console.run(std::string("-com --pn ttyS0 -enspim ") + line);
        EXPECT_EQ(lines(run.text).back().substr(0, 15), "bad parameter \"") << line;
        EXPECT_EQ(run.status, 4) << line;
        EXPECT_TRUE(run.callsOf("ZVBL_UPLOAD").empty()) << line;
    }
}

// A name of an earlier option is not taken.
TEST_F(UploadTest, DoesNotShareTheNameOfADownload) {
    console.file("a.hex", "");
    const Outcome run = connected("-d --fn @/a.hex -u");
    EXPECT_EQ(lines(run.text).back(), "Upload file name error.");
    EXPECT_EQ(run.status, 4);
}

TEST_F(UploadTest, FailureOfTheRead) {
    console.script("ZVBL_UPLOAD nth=2 status=5");
    const Outcome run = connected("-u --sec 0-3 --fn @/up.bin");
    EXPECT_EQ(run.text.substr(0, 54), "Upload\n@/up.bin     8192B\n\rRunning...25%\nNo response f");
    EXPECT_EQ(run.status, 4);
}

TEST_F(UploadTest, FailureOfTheFile) {
    console.filesScript("FILES_ImageToFile status=3");
    const Outcome run = connected("-u --sec 0 --fn @/up.bin");
    EXPECT_EQ(run.text, "Upload\n@/up.bin     2048B\n\rRunning...100%\n\nCannot open file!\n");
    EXPECT_EQ(run.status, 4);
}

TEST_F(UploadTest, SpimSizeReachesTheImage) {
    const Outcome run = connected("-enspim --fs 1 -u --fn @/up.bin");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.callsOf("ZVBL_UPLOAD").size(), 128U); // the internal flash alone
    const std::string made = "FILES_CreateImageFromMapping sectors=128 bank3=1024 -> image=1 12340000";
    EXPECT_NE(std::find(run.files.begin(), run.files.end(), made), run.files.end());
}

} // namespace
