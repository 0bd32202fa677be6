// "-d".

#include <algorithm>

#include "Console.h"

namespace {

using Calls = std::vector<std::string>;

class DownloadTest : public ConnectedTest {
protected:
    DownloadTest() {
        console.file("a.hex", "");
        console.file("a.bin", "");
    }
};

const std::string erased = "Erase\n\rRunning...100%\n";
const std::string downloaded = "Download\n@/a.hex     2048B\n\rRunning...100%\n";
const std::string done = "Download successfully!\n";
const std::string spimEnabled = "Enable Bank3\nRunning...\n";

TEST_F(DownloadTest, ErasesAndWrites) {
    const Outcome run = connected("-d --fn @/a.hex");
    EXPECT_EQ(run.text, erased + downloaded + done);
    EXPECT_EQ(run.status, 0);
    ASSERT_EQ(run.changes().size(), 2U);
    EXPECT_EQ(run.changes()[0], "ZVBL_ERASE selector=1 sector=0 size=2048");
    EXPECT_EQ(run.changes()[1].substr(0, 34), "ZVBL_DNLOAD addr=08000000 len=2048");
    EXPECT_EQ(run.changes()[1].substr(run.changes()[1].size() - 10), "optimise=0");
    EXPECT_TRUE(run.callsOf("ZVBL_VERIFY").empty());
}

TEST_F(DownloadTest, Verifies) {
    for (const char *line : {"-d --fn @/a.hex --v", "-d --v --fn @/a.hex"}) {
        const Outcome run = connected(line);
        EXPECT_EQ(run.text, erased + downloaded + "Verify\n@/a.hex     2048B\n\rRunning...100%\n" + done) << line;
        EXPECT_EQ(run.status, 0) << line;
        EXPECT_EQ(run.callsOf("ZVBL_VERIFY").size(), 1U) << line;
    }
}

TEST_F(DownloadTest, Optimises) {
    const Outcome run = connected("-d --o --fn @/a.hex");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.changes()[1].substr(run.changes()[1].size() - 10), "optimise=1");
    EXPECT_NE(std::find_if(run.files.begin(), run.files.end(),
                           [](const std::string &call) { return call.find("optimise=1") != std::string::npos; }),
              run.files.end());
}

// What the library cuts the image by is not what would be erased.
TEST_F(DownloadTest, AMapThatCannotBeTrusted) {
    for (const char *rule :
         {"FILES_GetMemoryMapping status=5", "FILES_GetMemoryMapping nth=2 status=5", "map sectors=512 size=1024"}) {
        Console fresh;
        fresh.file("a.hex", "");
        fresh.filesScript(rule);
        const Outcome run = fresh.run("-com --pn ttyS0 -d --fn @/a.hex");
        EXPECT_EQ(lines(run.text).back(), "Input parameters error!") << rule;
        EXPECT_EQ(run.status, 3) << rule;
        EXPECT_TRUE(run.changes().empty()) << rule;
    }
}

// The check and the job each open the image; neither gives it back to the library.
TEST_F(DownloadTest, TheOrderOfTheFileCalls) {
    const Calls opened = {"FILES_ImageFromFile",     "FILES_SetImageName",    "FILES_FilterImageForOperation",
                          "FILES_GetImageNbElement", "FILES_GetImageElement", "FILES_GetImageElement"};
    Calls expected = {"FILES_GetMemoryMapping", "FILES_GetMemoryMapping"};
    expected.insert(expected.end(), opened.begin(), opened.end());
    expected.insert(expected.end(), opened.begin(), opened.end());
    for (const char *line : {"-d --fn @/a.hex", "-d --fn @/a.hex --v"}) {
        Calls names;
        for (const std::string &call : connected(line).files)
            names.push_back(call.substr(0, call.find(' ')));
        EXPECT_EQ(names, expected) << line;
    }
}

TEST_F(DownloadTest, PercentSteps) {
    console.filesScript("element address=08000000\nelement address=08000800\nelement address=08001000");
    const Outcome run = connected("-d --fn @/a.hex");
    EXPECT_EQ(run.text, "Erase\n\rRunning...33%\rRunning...66%\rRunning...100%\n"
                        "Download\n@/a.hex     6144B\n\rRunning...33%\rRunning...66%\rRunning...100%\n" +
                            done);
}

TEST_F(DownloadTest, EarlierEraseTurnsTheErasingOff) {
    for (const char *line : {"-e -d --fn @/a.hex", "-e --sec 9-9 -d --fn @/a.hex", "-e --sec 9-9 -e -d --fn @/a.hex"}) {
        const Outcome run = connected(line);
        EXPECT_EQ(run.status, 0) << line;
        EXPECT_EQ(run.text.substr(run.text.size() - downloaded.size() - done.size()), downloaded + done) << line;
        for (const std::string &call : run.callsOf("ZVBL_ERASE"))
            EXPECT_EQ(call, "ZVBL_ERASE selector=1 sector=9 size=2048") << line;
    }
}

TEST_F(DownloadTest, BinaryGoesToTheAddress) {
    const struct {
        const char *line;
        const char *erase;
        const char *write;
    } table[] = {
        {"-d --fn @/a.bin", "ZVBL_ERASE selector=1 sector=0 size=2048", "ZVBL_DNLOAD addr=08000000 len=2048"},
        {"-d --addr 0x08004000 --fn @/a.bin", "ZVBL_ERASE selector=1 sector=8 size=2048",
         "ZVBL_DNLOAD addr=08004000 len=2048"},
        {"-d --fn @/a.bin --addr 8004000", "ZVBL_ERASE selector=1 sector=8 size=2048",
         "ZVBL_DNLOAD addr=08004000 len=2048"},
        // Neither the word of the usage text nor a trailing "--addr" changes it.
        {"-d --fn @/a.bin --a 0x08004000", "ZVBL_ERASE selector=1 sector=0 size=2048",
         "ZVBL_DNLOAD addr=08000000 len=2048"},
        {"-d --fn @/a.bin --addr", "ZVBL_ERASE selector=1 sector=0 size=2048", "ZVBL_DNLOAD addr=08000000 len=2048"},
        // The address is for binaries alone.
        {"-d --fn @/a.hex --addr 0x08004000", "ZVBL_ERASE selector=1 sector=0 size=2048",
         "ZVBL_DNLOAD addr=08000000 len=2048"},
    };
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        EXPECT_EQ(run.status, 0) << row.line << run.text;
        ASSERT_EQ(run.changes().size(), 2U) << row.line;
        EXPECT_EQ(run.changes()[0], row.erase) << row.line;
        EXPECT_EQ(run.changes()[1].substr(0, 34), row.write) << row.line;
    }
}

TEST_F(DownloadTest, ValuesLiveOnToTheNextDownload) {
    const Outcome run = connected("-d --fn @/a.bin --addr 8004000 --v --o -d");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.callsOf("ZVBL_VERIFY").size(), 2U);
    const Calls writes = run.callsOf("ZVBL_DNLOAD");
    ASSERT_EQ(writes.size(), 2U);
    EXPECT_EQ(writes[0], writes[1]);
}

TEST_F(DownloadTest, WordsThatAreRefused) {
    const struct {
        const char *line;
        const char *text;
    } table[] = {
        {"-d --fn a.hex", "bad parameter \"a.hex\"\n"},
        {"-d --fn /x/a", "bad parameter \"/x/a\"\n"},
        {"-d --fn /x/a.txt", "bad parameter \"/x/a.txt\"\n"},
        {"-d --fn -e", "bad parameter \"-e\"\n"},
        {"-d --fn", "bad parameter \""},
        {"-d --v --fn", "bad parameter \""},
        {"-d --bogus", "bad parameter \"--bogus\"\n"},
        {"-d --fn @/a.hex bogus", "bad parameter \"bogus\"\n"},
    };
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, 3) << row.line;
        EXPECT_TRUE(run.changes().empty()) << row.line;
    }
}

TEST_F(DownloadTest, NoFile) {
    const struct {
        const char *line;
        const char *text;
    } table[] = {
        {"-d", "Error:  Please select download file! File Name is \n"},
        {"-d --v", "Error:  Please select download file! File Name is \n"},
        {"-d --fn @/none.hex", "Error:  Please select download file! File Name is @/none.hex\n"},
        // "--FN" is no name that this option knows.
        {"-d --FN @/a.hex", "Error:  Please select download file! File Name is \n"},
    };
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, 3) << row.line;
    }
}

TEST_F(DownloadTest, NameInTheWorkingDirectory) {
    EXPECT_EQ(connected("-d --fn ./a.hex").status, 0);
}

TEST_F(DownloadTest, FileThatNeverOpens) {
    console.filesScript("FILES_ImageFromFile status=5");
    const Outcome run = connected("-d --fn @/a.hex");
    EXPECT_EQ(run.text, "Error:  Download file open failed!\n");
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.callsOf("sleep"), Calls(10, "sleep 1000"));
}

TEST_F(DownloadTest, FileThatOpensLate) {
    console.filesScript("FILES_ImageFromFile nth=1 status=3\nFILES_ImageFromFile nth=2 status=3");
    const Outcome run = connected("-d --fn @/a.hex");
    EXPECT_EQ(run.text, erased + downloaded + done);
    EXPECT_EQ(run.callsOf("sleep"), Calls(2, "sleep 1000"));
}

// Ranges. The chip has 1024 KB of flash, to 0x08100000.

const std::string outOfFlash = "Error:  The file download address or file size out of flash range!\n";
const std::string outOfSpim = "Error:  The file download address or file size out of SPIM range!\n";
const std::string noSpim = "Error:  No operation can be performed without using SPIM!\n";

TEST_F(DownloadTest, RangeOfABinary) {
    const struct {
        const char *line;
        std::string refusal; // empty: passes
    } table[] = {
        {"-d --fn @/a.bin --addr 080FF800", ""}, // ends exactly at the end
        {"-d --fn @/a.bin --addr 080FF801", outOfFlash},
        {"-d --fn @/a.bin --addr 08100000", outOfFlash},
        {"-d --fn @/a.bin --addr 083FFFFF", outOfFlash},
        {"-d --fn @/a.bin --addr 08400000", noSpim},
        {"-d --fn @/a.bin --addr FFFFFFFF", noSpim},
        {"-enspim --fs 16 -d --fn @/a.bin --addr 08400000", ""},
        {"-enspim --fs 1 -d --fn @/a.bin --addr 084FF800", ""},
        {"-enspim --fs 1 -d --fn @/a.bin --addr 084FF801", outOfSpim},
        {"-enspim -d --fn @/a.bin --addr 08400000", outOfSpim},
        {"-enspim --fs 1 -d --fn @/a.bin --addr 08100000", outOfFlash},
    };
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        const bool passes = row.refusal.empty();
        EXPECT_EQ(run.status, passes ? 0 : 3) << row.line << run.text;
        EXPECT_EQ(run.callsOf("ZVBL_DNLOAD").empty(), !passes) << row.line;
        if (!passes)
            EXPECT_EQ(lines(run.text).back() + "\n", row.refusal) << row.line;
    }
}

// The sum of a binary's address and size is one of 32 bits; an address below the flash passes the test.
TEST_F(DownloadTest, RangeOfABinaryBelowTheFlash) {
    EXPECT_NE(connected("-d --fn @/a.bin --addr 07FFF000").text.substr(0, 6), "Error:");
    EXPECT_EQ(connected("-enspim --fs 1 -d --fn @/a.bin --addr FFFFF800").text.find("Error:"), std::string::npos);
}

TEST_F(DownloadTest, RangeOfElements) {
    const struct {
        const char *elements;
        std::string refusal; // empty: passes
    } table[] = {
        {"element address=080FF800", ""},
        {"element address=080FF801", outOfFlash},
        {"element address=08000000\nelement address=08100000", outOfFlash},
        {"element address=08100000\nelement address=08400000", outOfFlash}, // the first that fails
        {"element address=08400000\nelement address=08100000", noSpim},
        {"element address=FFFFFFFF length=2", noSpim},
    };
    for (const auto &row : table) {
        Console fresh;
        fresh.file("a.hex", "");
        fresh.filesScript(row.elements);
        const Outcome run = fresh.run("-com --pn ttyS0 -d --fn @/a.hex");
        EXPECT_EQ(run.status, row.refusal.empty() ? 0 : 3) << row.elements << run.text;
        if (!row.refusal.empty())
            EXPECT_EQ(run.text, connectText("USART") + row.refusal) << row.elements;
    }
}

TEST_F(DownloadTest, RangeOfElementsInSpim) {
    console.filesScript("element address=08400000 length=4096\nelement address=084FF000 length=4096");
    EXPECT_EQ(connected("-enspim --fs 1 -d --fn @/a.hex").status, 0);
    console.filesScript("element address=08500000 length=1");
    const Outcome run = connected("-enspim --fs 1 -d --fn @/a.hex");
    EXPECT_EQ(lines(run.text).back() + "\n", outOfSpim);
    EXPECT_EQ(run.status, 3);
}

// Elements are summed in 64 bits, so one that would wrap is out of range.
TEST_F(DownloadTest, ElementBeyondThirtyTwoBits) {
    console.filesScript("element address=FFFFFFFF length=2");
    const Outcome run = connected("-enspim --fs 1 -d --fn @/a.hex");
    EXPECT_EQ(lines(run.text).back() + "\n", outOfSpim);
}

TEST_F(DownloadTest, SpimValuesReachTheJob) {
    const Outcome run = connected("-enspim --ft 1 --fs 16 --fda 1000 --remap 1 -d --fn @/a.hex");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.callsOf("ZVBL_SPIMREMAP"), Calls(2, "ZVBL_SPIMREMAP remap=1"));
    EXPECT_EQ(run.callsOf("ZVBL_EnableBank3"), Calls(2, "ZVBL_EnableBank3 type=145 size=16777216 addr=00001000"));
    EXPECT_EQ(run.text, spimEnabled + "Operation finished successfully!\n" + spimEnabled + erased + downloaded + done);
}

// These families restart after the write; the bank is then enabled anew, with its own title.
TEST_F(DownloadTest, RestartBehindTheWrite) {
    console.connectTo(f403_2);
    const Outcome run = connected("-enspim -d --fn @/a.hex --v");
    EXPECT_EQ(run.text, spimEnabled + "Operation finished successfully!\n" + spimEnabled + erased + downloaded +
                            spimEnabled + "Verify\n@/a.hex     2048B\n\rRunning...100%\n" + done);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.callsOf("ZVBL_GO"), Calls{"ZVBL_GO addr=0803FFFC"});
}

// Without an "-e" before it these families refuse, before anything is erased.
TEST_F(DownloadTest, FamiliesThatMustBeErasedFirst) {
    const Chip f437 = {"ZV32F437", "335170080E", "70083351", "0E", 1024, 2048};
    console.connectTo(f437);
    const Outcome refused = connected("-d --fn @/a.hex");
    EXPECT_EQ(refused.text, "\nUnknown error!\n");
    EXPECT_EQ(refused.status, 3);
    EXPECT_TRUE(refused.changes().empty());
    const Outcome taken = connected("-e --sec 0 -d --fn @/a.hex");
    EXPECT_EQ(taken.text, erased + "Erase successfully!\n" + downloaded + done);
    EXPECT_EQ(taken.status, 0);
}

TEST_F(DownloadTest, FailureOfTheWrite) {
    console.filesScript("element address=08000000\nelement address=08000800");
    console.script("ZVBL_DNLOAD nth=2 status=4");
    const Outcome run = connected("-d --fn @/a.hex --v -r");
    EXPECT_EQ(run.text, "Erase\n\rRunning...50%\rRunning...100%\nDownload\n@/a.hex     4096B\n\rRunning...50%\n"
                        "send over serial port fail!\n");
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.calls.back(), "Interface_Close");
}

TEST_F(DownloadTest, FailureOfTheVerify) {
    console.script("ZVBL_VERIFY status=19");
    const Outcome run = connected("-d --fn @/a.hex --v");
    EXPECT_EQ(run.text, erased + downloaded + "Verify\n@/a.hex     2048B\n\nVerify failed. Data not matching...\n");
    EXPECT_EQ(run.status, 3);
}

TEST_F(DownloadTest, FailureOfTheErase) {
    console.script("ZVBL_ERASE status=19");
    const Outcome run = connected("-d --fn @/a.hex");
    EXPECT_EQ(run.text, "Erase\n\nThe cmd not allowed!\n");
    EXPECT_EQ(run.status, 3);
    EXPECT_TRUE(run.callsOf("ZVBL_DNLOAD").empty());
}

} // namespace
