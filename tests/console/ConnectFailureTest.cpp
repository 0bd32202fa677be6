// The five connection commands when something is missing: words, the port, the chip, its description.

#include "Console.h"

namespace {

using Calls = std::vector<std::string>;

class ConnectFailureTest : public ConsoleTest {};

TEST_F(ConnectFailureTest, BadWordAmongTheSubOptions) {
    const struct {
        const char *line;
        const char *text;
    } table[] = {
        {"-com --pn ttyS0 --xyz 1", "USART Connect......\nbad parameter \"--xyz\"\n"},
        {"-com xyz", "USART Connect......\nbad parameter \"xyz\"\n"},
        {"-i2c --pn i2c-1 5", "I2C Connect......\nbad parameter \"5\"\n"},
        {"-can --y", "CAN Connect......\nbad parameter \"--y\"\n"},
        {"-spi -E --all", "SPI Connect......\nbad parameter \"-E\"\n"},
    };
    for (const auto &row : table) {
        const Outcome run = console.run(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, 2) << row.line;
        EXPECT_TRUE(run.calls.empty()) << row.line;
    }
}

TEST_F(ConnectFailureTest, BadWordBehindASecondCommandClosesTheFirstLink) {
    const Outcome run = console.run("-com --pn ttyS0 -i2c --xyz");
    EXPECT_EQ(run.text, connectText("USART") + "I2C Connect......\nbad parameter \"--xyz\"\n");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.callsOf("Interface_Close").size(), 1U);
    EXPECT_EQ(run.callsOf("Interface_is_Open").size(), 2U); // the handler closes, and main has nothing left to close
}

TEST_F(ConnectFailureTest, PortNumberMinusOne) {
    for (const char *line :
         {"-com --pn tty4294967295", "-i2c --pn bus4294967295", "-can --pn can4294967295", "-spi --pn spi4294967295"}) {
        const Outcome run = console.run(line);
        EXPECT_EQ(lines(run.text).back(), "Don't choose com port number") << line;
        EXPECT_EQ(run.status, 2) << line;
        EXPECT_EQ(run.calls.size(), 1U) << line; // the interface type alone
    }
}

TEST_F(ConnectFailureTest, PortThatCannotBeOpened) {
    console.script("Interface_Open status=3");
    for (const char *line : {"-com --pn ttyS0", "-i2c --pn i2c-1", "-can --pn can0", "-spi --pn spidev0.0"}) {
        const Outcome run = console.run(line);
        EXPECT_EQ(lines(run.text).back(),
                  "Cannot open the com port, the port not exist or may be used by another application")
            << line;
        EXPECT_EQ(lines(run.text).size(), 2U) << line;
        EXPECT_EQ(run.status, 2) << line;
        EXPECT_TRUE(run.callsOf("Interface_Close").empty()) << line;
    }
    const Outcome run = console.run("-dfu");
    EXPECT_EQ(run.text, "DFU Connect......\nOpen DFU device error!\n");
    EXPECT_EQ(run.status, 2);
}

TEST_F(ConnectFailureTest, ChipThatDoesNotAnswer) {
    console.script("ZVBL_GET status=5");
    const struct {
        const char *line;
        const char *text;
    } table[] = {
        {"-com", "USART Connect......\nUnrecognized device...Please, reset your device then try again \n"},
        {"-i2c", "I2C Connect......\nUnrecognized device...Please, reset your device then try again \n"},
        {"-can", "CAN Connect......\nUnrecognized device...Please, reset your device then try again \n"},
        {"-spi", "SPI Connect......\nUnrecognized device...Please, reset your device then try again \n"},
        {"-dfu", "DFU Connect......\nUnrecognized device...Please, reset your device then try again\n"},
    };
    for (const auto &row : table) {
        const Outcome run = console.run(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, 2) << row.line;
        // On USB DFU main closes the link, on the others the handler has done so before.
        EXPECT_EQ(run.callsOf("Interface_is_Open").size(), row.line == std::string("-dfu") ? 1U : 2U) << row.line;
        EXPECT_EQ(run.callsOf("Interface_Close").size(), row.line == std::string("-dfu") ? 2U : 1U) << row.line;
        EXPECT_TRUE(run.callsOf("ZVBL_GET_ID").empty()) << row.line;
        EXPECT_EQ(run.callsOf("Interface_Open").size(), 1U) << row.line;
    }
}

TEST_F(ConnectFailureTest, FailedConnectClosesTheLinkOnce) {
    console.script("ZVBL_Init_BL status=17");
    const Outcome run = console.run("-com");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.callsOf("Interface_Close").size(), 1U);
}

TEST_F(ConnectFailureTest, UnknownChip) {
    console.script("ZVBL_GET_ID id=FFFF");
    for (const char *line : {"-com", "-i2c", "-can", "-spi", "-dfu"}) {
        const Outcome run = console.run(line);
        EXPECT_EQ(lines(run.text).back(), "Init Device Failed!") << line;
        EXPECT_EQ(lines(run.text).size(), 2U) << line;
        EXPECT_EQ(run.status, 2) << line;
        EXPECT_EQ(run.callsOf("Interface_is_Open").size(), line == std::string("-dfu") ? 1U : 2U) << line;
        EXPECT_EQ(run.calls.back(), line == std::string("-dfu") ? "Interface_Close" : "Interface_is_Open") << line;
    }
}

TEST_F(ConnectFailureTest, NoDfuDevice) {
    for (const char *rule :
         {"ZVBL_GetZVDeviceList status=1", "ZVBL_GetZVDeviceList status=0 count=0", "ZVBL_GetZVDeviceList count=-1"}) {
        console.script(rule);
        const Outcome run = console.run("-dfu");
        EXPECT_EQ(run.text, "DFU Connect......\nUnable to get DFU device\n") << rule;
        EXPECT_EQ(run.status, 2) << rule;
        EXPECT_TRUE(run.callsOf("Interface_Open").empty()) << rule;
    }
}

TEST_F(ConnectFailureTest, UnknownBlockIdentifierStaysSo) {
    console.script("ZVBL_GET_VER_ROPS bid=00 res=FF\nZVBL_UPLOAD data=000000000000470F");
    const Outcome run = console.run("-com");
    EXPECT_EQ(lines(run.text)[2], "PID:  70050347      BID:  NA    Version:  2.1");
    EXPECT_EQ(run.callsOf("ZVBL_UPLOAD"), Calls{"ZVBL_UPLOAD addr=1FFFB100 len=8"});
}

TEST_F(ConnectFailureTest, VersionThatCannotBeRead) {
    console.script("ZVBL_GET_VER_ROPS status=5");
    const Outcome run = console.run("-com");
    EXPECT_EQ(lines(run.text)[2], "PID:  70050347      BID:      Version:  ");
    EXPECT_EQ(run.status, 0);
}

} // namespace
