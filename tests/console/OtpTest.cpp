// "-otp".

#include "Console.h"

namespace {

using Calls = std::vector<std::string>;

class OtpTest : public ConnectedTest {
protected:
    OtpTest() { console.connectTo(f457); }
    // One record: its address, its block of one byte, its flags.
    static std::string record(unsigned int address, char fill, char lockFlag, char writeFlag) {
        std::string bytes;
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += static_cast<char>(address >> shift);
        return bytes + std::string(32, fill) + lockFlag + writeFlag;
    }
    // As many records as are given: two bytes more for each, as they are counted by 40.
    void otpFile(const std::vector<std::string> &records) {
        std::string content;
        for (const std::string &bytes : records)
            content += bytes;
        console.file("a.ZVTP", content + std::string(2 * records.size(), '\xFF'));
    }
};

const std::string titles = "Set OTP data to device\nrunning...\n";
const std::string success = "set OTP data to device successfully!\n";

TEST_F(OtpTest, BlocksGoBeforeLocks) {
    otpFile({record(0x00, 'A', 0, 0), record(0x20, 'B', 1, 0), record(0x40, 'C', 0, 1), record(0x60, 'D', 1, 1),
             record(0x10080, 'E', 0, 0)});
    const Outcome run = connected("-otp --fn @/a.ZVTP");
    EXPECT_EQ(run.text, titles + success);
    EXPECT_EQ(run.status, 0);
    const Calls expected = {
        "ZVBL_DNLOAD addr=1FFFE400 len=32 data=41414141414141414141414141414141.. crc=",
        "ZVBL_DNLOAD addr=1FFFE420 len=32 data=42424242424242424242424242424242.. crc=",
        "ZVBL_DNLOAD addr=2000E480 len=32 data=45454545454545454545454545454545.. crc=",
        // The lock bytes follow the records' places in the file.
        "ZVBL_DNLOAD addr=1FFFF500 len=1 data=00 optimise=0",
        "ZVBL_DNLOAD addr=1FFFF502 len=1 data=00 optimise=0",
        "ZVBL_DNLOAD addr=1FFFF504 len=1 data=00 optimise=0",
    };
    const Calls changes = run.changes();
    ASSERT_EQ(changes.size(), expected.size());
    for (std::size_t i = 0; i < changes.size(); ++i) {
        EXPECT_EQ(changes[i].substr(0, expected[i].size()), expected[i]);
        EXPECT_EQ(changes[i].substr(changes[i].size() - 10), "optimise=0");
    }
}

TEST_F(OtpTest, AreaOfTheFamily) {
    otpFile({record(0x10, 'A', 0, 0)});
    const struct {
        const char *series;
        const char *data;
        const char *lock;
    } table[] = {
        {"15", "1FFFE410", "1FFFF500"}, {"16", "1FFFE410", "1FFFF500"}, {"17", "1FFFE410", "1FFFF500"},
        {"19", "1FFFF010", "1FFFF500"}, {"1A", "1FFFF010", "1FFFF500"}, {"1C", "1FFFF010", "1FFFF500"},
        {"1F", "1FFFF010", "1FFFF500"}, {"20", "1FFFF010", "1FFFF500"}, {"07", "00000010", "00000000"},
        {"0F", "00000010", "00000000"}, {"1B", "00000010", "00000000"}, {"1E", "00000010", "00000000"},
    };
    for (const auto &row : table) {
        const Chip chip = {"ZV32F4XX", std::string("010F5009") + row.series, "5009010F", row.series, 64, 1024};
        console.connectTo(chip);
        const Calls changes = connected("-otp --fn @/a.ZVTP").changes();
        ASSERT_EQ(changes.size(), 2U) << row.series;
        EXPECT_EQ(changes[0].substr(12, 13), std::string("addr=") + row.data) << row.series;
        EXPECT_EQ(changes[1].substr(12, 13), std::string("addr=") + row.lock) << row.series;
    }
}

TEST_F(OtpTest, NothingToWriteIsASuccess) {
    console.file("empty.zvtp", "");
    console.file("short.zvtp", std::string(39, '\0'));
    const struct {
        const char *line;
        std::string text;
    } table[] = {
        {"-otp", success},
        {"-otp --fn @/none.zvtp", titles + success},
        {"-otp --fn @/empty.zvtp", titles + success},
        {"-otp --fn @/short.zvtp", titles + success},
        {"-otp --v 1 --FN @/x.zvtp", titles + titles + success},
        {"-otp --v", titles + success},
    };
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, 0) << row.line;
        EXPECT_TRUE(run.changes().empty()) << row.line;
    }
}

TEST_F(OtpTest, FileLargerThanAnyChipIsRefused) {
    console.file("a.zvtp", std::string((1 << 20) + 1, '\0'));
    const Outcome run = connected("-otp --fn @/a.zvtp");
    EXPECT_EQ(run.text, titles + "Get OTP data from the configuration file failed!\n");
    EXPECT_EQ(run.status, 64);
    EXPECT_TRUE(run.changes().empty());
}

// A file of somebody else's may write the program and the RAM as well.
TEST_F(OtpTest, RecordsReachAnyAddress) {
    const struct {
        unsigned int offset;
        const char *address;
    } table[] = {
        {0xE8001C00, "08000000"}, {0x00001C00, "20000000"}, {0x00001400, "1FFFF800"}, {0xFFFFFFFF, "1FFFE3FF"}};
    for (const auto &row : table) {
        otpFile({record(row.offset, 'A', 1, 0)});
        const Outcome run = connected("-otp --fn @/a.ZVTP");
        EXPECT_EQ(run.status, 0) << row.address;
        ASSERT_EQ(run.changes().size(), 1U) << row.address;
        EXPECT_EQ(run.changes()[0].substr(12, 13), std::string("addr=") + row.address);
    }
}

TEST_F(OtpTest, LastRecordsAreCutOff) {
    console.file("a.zvtp", record(0, 'A', 1, 0) + record(0x20, 'B', 1, 0)); // 76 bytes
    EXPECT_EQ(connected("-otp --fn @/a.zvtp").changes().size(), 1U);
}

TEST_F(OtpTest, NameLivesOnToTheNextOption) {
    otpFile({record(0, 'A', 1, 0)});
    const Outcome run = connected("-otp --fn @/a.ZVTP -otp");
    EXPECT_EQ(run.text, titles + success + success);
    EXPECT_EQ(run.changes().size(), 2U);
}

TEST_F(OtpTest, NamesThatAreRefused) {
    const struct {
        const char *line;
        std::string text;
        int status;
    } table[] = {
        {"-otp --fn a.zvtp", titles + "bad parameter \"a.zvtp\"\n", 1},
        {"-otp --fn /x/a.bin", titles + "bad parameter \"/x/a.bin\"\n", 1},
        {"-otp --fn /x/a", titles + "bad parameter \"/x/a\"\n", 1},
        // Not the last word: main reports it once more, without quotes.
        {"-otp --fn /x/a.bin -e", titles + "bad parameter \"/x/a.bin\"\nbad parameter /x/a.bin\n", 1},
        // The null word, and then no word is left.
        {"-otp --fn", titles + "bad parameter \"", 0},
        // An option in the place of the name is taken by main.
        {"-otp --fn -e", titles + "bad parameter \"-e\"\n", 0},
    };
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, row.status) << row.line;
        EXPECT_TRUE(run.changes().empty()) << row.line;
        EXPECT_EQ(run.calls.back(), "Interface_Close") << row.line;
    }
}

TEST_F(OtpTest, BadWordStandsAlone) {
    for (const char *line : {"-otp foo", "-otp foo -e"}) {
        const Outcome run = connected(line);
        EXPECT_EQ(run.text, "foo\n") << line;
        EXPECT_EQ(run.status, 1) << line;
    }
}

TEST_F(OtpTest, FailureOfABlockTouchesNoLock) {
    otpFile({record(0, 'A', 0, 0), record(0x20, 'B', 0, 0), record(0x40, 'C', 0, 0)});
    console.script("ZVBL_DNLOAD nth=2 status=20");
    const Outcome run = connected("-otp --fn @/a.ZVTP");
    EXPECT_EQ(run.text, titles + "Write OTP data failed!\n");
    EXPECT_EQ(run.status, 64);
    EXPECT_EQ(run.changes().size(), 2U);
}

TEST_F(OtpTest, FailureOfALock) {
    otpFile({record(0, 'A', 0, 0), record(0x20, 'B', 0, 0)});
    console.script("ZVBL_DNLOAD nth=3 status=20");
    const Outcome run = connected("-otp --fn @/a.ZVTP");
    EXPECT_EQ(run.text, titles + "Write OTP lock failed!\n");
    EXPECT_EQ(run.status, 64);
    EXPECT_EQ(run.changes().size(), 3U);
}

} // namespace
