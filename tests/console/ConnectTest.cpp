// The five connection commands: the library calls of each, its sub-options.

#include <algorithm>
#include <fstream>

#include "Console.h"

namespace {

using Calls = std::vector<std::string>;

class ConnectTest : public ConsoleTest {};

// From the identification to the end of a line without actions.
const Calls identification = {"ZVBL_GET_ID id=null", "ZVBL_GET_ID id=buffer", "SetPaketSize bytes=0",
                              "ZVBL_GET_VER_ROPS",   "ZVBL_GET_VER_ROPS",     "Interface_is_Open",
                              "Interface_Close"};

Calls withIdentification(Calls calls) {
    calls.insert(calls.end(), identification.begin(), identification.end());
    return calls;
}

TEST_F(ConnectTest, Usart) {
    const Outcome run = console.run("-com --pn ttyUSB3 --br 9600 --db 7 --pr odd --to 3");
    EXPECT_EQ(run.text, "USART Connect......\n"
                        "Device:  ZV32F403A    Flash:  1024 KB\n"
                        "PID:  70050347      BID:  1234    Version:  2.1\n"
                        "Device connected Successfully\n"
                        "\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.calls, withIdentification({
                             "TARGET_SetComIntType type=0",
                             "SetCOMSettings port=3 name=\"ttyUSB3\" baud=115200 bits=8 parity=2 stop=1.0",
                             "SetCOMSettings port=3 name=\"ttyUSB3\" baud=9600 bits=7 parity=1 stop=1.0",
                             "Interface_Open",
                             "SetTimeOut ms=1000",
                             "ZVBL_Init_BL addr=0 rate=0 duty=0",
                             "ZVBL_ZV32ISP_TOOL",
                             "ZVBL_GET",
                             "SetTimeOut ms=3000",
                         }));
}

TEST_F(ConnectTest, Dfu) {
    const Outcome run = console.run("-dfu");
    EXPECT_EQ(run.text, connectText("DFU"));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.calls, withIdentification({
                             "TARGET_SetComIntType type=1",
                             "ZVBL_GetZVDeviceList count=99",
                             "Interface_Close",
                             "Interface_Open",
                             "ZVBL_GET",
                         }));
}

TEST_F(ConnectTest, I2c) {
    const Outcome run = console.run("-i2c --pn i2c-1 --addr 0x3C --rate 100000 --dc 16:9");
    EXPECT_EQ(run.text, connectText("I2C"));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.calls, withIdentification({
                             "TARGET_SetComIntType type=2",
                             "SetCOMSettings port=2 name=\"i2c-1\" baud=115200 bits=8 parity=2 stop=1.0",
                             "SetCOMSettings port=2 name=\"i2c-1\" baud=115200 bits=8 parity=2 stop=1.0",
                             "Interface_Open",
                             "SetTimeOut ms=5000",
                             "ZVBL_Init_BL addr=3C rate=100000 duty=16",
                             "ZVBL_GET",
                             "SetTimeOut ms=5000",
                         }));
}

TEST_F(ConnectTest, Can) {
    const Outcome run = console.run("-can --pn can0 --speed 6");
    EXPECT_EQ(run.text, connectText("CAN"));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.calls, withIdentification({
                             "TARGET_SetComIntType type=3",
                             "SetCOMSettings port=0 name=\"can0\" baud=115200 bits=8 parity=2 stop=1.0",
                             "SetCOMSettings port=0 name=\"can0\" baud=115200 bits=8 parity=2 stop=1.0",
                             "Interface_Open",
                             "SetTimeOut ms=1000",
                             "ZVBL_Init_BL addr=0 rate=2 duty=0",
                             "ZVBL_SetSpeed speed=6",
                             "ZVBL_GET",
                             "SetTimeOut ms=5000",
                         }));
}

TEST_F(ConnectTest, Spi) {
    const Outcome run = console.run("-spi --pn spidev0.0 --speed 250000");
    EXPECT_EQ(run.text, connectText("SPI"));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.calls, withIdentification({
                             "TARGET_SetComIntType type=4",
                             "SetCOMSettings port=0 name=\"spidev0.0\" baud=115200 bits=8 parity=2 stop=1.0",
                             "SetCOMSettings port=0 name=\"spidev0.0\" baud=115200 bits=8 parity=2 stop=1.0",
                             "Interface_Open",
                             "SetTimeOut ms=2000",
                             "ZVBL_Init_BL addr=0 rate=250000 duty=0",
                             "ZVBL_GET",
                             "SetTimeOut ms=5000",
                         }));
}

TEST_F(ConnectTest, UsartAsTheLastWordTakesTheDefaults) {
    const Outcome run = console.run("-com");
    EXPECT_EQ(run.text, connectText("USART"));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.callsOf("SetCOMSettings"),
              (Calls{"SetCOMSettings port=1 name=\"\" baud=115200 bits=8 parity=2 stop=1.0",
                     "SetCOMSettings port=1 name=\"\" baud=115200 bits=8 parity=2 stop=1.0"}));
    EXPECT_EQ(run.callsOf("SetTimeOut"), (Calls{"SetTimeOut ms=1000", "SetTimeOut ms=5000"}));
}

// The defaults of the usage text exist there alone: zeros go out.
TEST_F(ConnectTest, OtherLinksWithoutSubOptions) {
    const struct {
        const char *line;
        Calls startCalls;
    } table[] = {
        {"-i2c", {"ZVBL_Init_BL addr=0 rate=0 duty=0"}},
        {"-spi", {"ZVBL_Init_BL addr=0 rate=0 duty=0"}},
    };
    for (const auto &row : table)
        EXPECT_EQ(console.run(row.line).callsOf("ZVBL_Init_BL"), row.startCalls) << row.line;
    EXPECT_EQ(console.run("-can").callsOf("ZVBL_SetSpeed"), Calls{"ZVBL_SetSpeed speed=0"});
}

TEST_F(ConnectTest, ValuesOfSubOptions) {
    const struct {
        const char *line;
        const char *call;
    } table[] = {
        {"-com --pn ttyS12", "SetCOMSettings port=12 name=\"ttyS12\" baud=115200 bits=8 parity=2 stop=1.0"},
        {"-com --PN ttyS0 --BR 9600", "SetCOMSettings port=0 name=\"ttyS0\" baud=9600 bits=8 parity=2 stop=1.0"},
        {"-com --pr none", "SetCOMSettings port=1 name=\"\" baud=115200 bits=8 parity=0 stop=1.0"},
        {"-com --pr Odd", "SetCOMSettings port=1 name=\"\" baud=115200 bits=8 parity=1 stop=1.0"},
        {"-com --pr mark", "SetCOMSettings port=1 name=\"\" baud=115200 bits=8 parity=2 stop=1.0"},
        {"-com --br fast", "SetCOMSettings port=1 name=\"\" baud=0 bits=8 parity=2 stop=1.0"},
        {"-com --to 12", "SetTimeOut ms=12000"},
        {"-com --to 2147484", "SetTimeOut ms=2147484000"}, // does not fit into an int
        {"-com --to -1", "SetTimeOut ms=4294966296"},
        {"-com --to soon", "SetTimeOut ms=0"},
        // The value of a sub-option is taken whatever it is.
        {"-com --pn -e", "SetCOMSettings port=0 name=\"-e\" baud=115200 bits=8 parity=2 stop=1.0"},
        {"-i2c --addr 3C", "ZVBL_Init_BL addr=3C rate=0 duty=0"},
        {"-i2c --addr 0x1003C", "ZVBL_Init_BL addr=3C rate=0 duty=0"},
        {"-i2c --dc 2:1", "ZVBL_Init_BL addr=0 rate=0 duty=2"},
        {"-i2c --dc 258", "ZVBL_Init_BL addr=0 rate=0 duty=2"},
        {"-i2c --RATE 7", "ZVBL_Init_BL addr=0 rate=7 duty=0"},
        {"-can --speed -1", "ZVBL_SetSpeed speed=4294967295"},
        {"-spi --speed -1", "ZVBL_Init_BL addr=0 rate=18446744073709551615 duty=0"},
        // Words of another link swallow their value.
        {"-i2c --to 9 --rate 7", "ZVBL_Init_BL addr=0 rate=7 duty=0"},
        {"-spi --br 9600 --speed 5", "ZVBL_Init_BL addr=0 rate=5 duty=0"},
    };
    for (const auto &row : table) {
        const Outcome run = console.run(row.line);
        EXPECT_EQ(run.status, 0) << row.line;
        EXPECT_NE(std::find(run.calls.begin(), run.calls.end(), row.call), run.calls.end()) << row.line;
    }
    EXPECT_EQ(console.run("-i2c --to 9").callsOf("SetTimeOut").back(), "SetTimeOut ms=5000");
}

TEST_F(ConnectTest, AutoConnectDrivesTheLines) {
    const Outcome run = console.run("-com --pn ttyS0 --auto 3");
    EXPECT_EQ(run.status, 0);
    const Calls expected = {"SetTimeOut ms=1000", "ZVBL_SetDtr level=0",
                            "sleep 100",          "ZVBL_SetRts level=1",
                            "sleep 100",          "ZVBL_SetDtr level=1",
                            "sleep 200",          "ZVBL_SetRts level=0",
                            "sleep 200",          "ZVBL_Init_BL addr=0 rate=0 duty=0"};
    ASSERT_GT(run.calls.size(), 14U);
    EXPECT_EQ(Calls(run.calls.begin() + 4, run.calls.begin() + 14), expected);
}

TEST_F(ConnectTest, AutoConnectZeroDiffersFromNone) {
    EXPECT_EQ(console.run("-com --auto 0").callsOf("sleep"),
              (Calls{"sleep 100", "sleep 100", "sleep 200", "sleep 200"}));
    EXPECT_TRUE(console.run("-com").callsOf("sleep").empty());
    EXPECT_TRUE(console.run("-com --auto 13").callsOf("sleep").empty());
}

TEST_F(ConnectTest, TrailingSubOptionConnectsAndFailsSilently) {
    for (const char *line :
         {"-com --pn", "-com --pn ttyUSB0 --br", "-i2c --addr", "-can --speed", "-spi --pn", "-com --efap"}) {
        const Outcome run = console.run(line);
        EXPECT_EQ(run.status, 1) << line;
        EXPECT_NE(run.text.find("Device connected Successfully\n\n"), std::string::npos) << line;
        EXPECT_EQ(run.text.find("bad parameter"), std::string::npos) << line;
        EXPECT_EQ(run.calls.back(), "Interface_Close") << line;
    }
    EXPECT_EQ(console.run("-com --pn ttyUSB0 --br").callsOf("SetCOMSettings").back(),
              "SetCOMSettings port=0 name=\"ttyUSB0\" baud=115200 bits=8 parity=2 stop=1.0");
}

TEST_F(ConnectTest, DfuHasNoSubOptions) {
    const Outcome last = console.run("-dfu --v");
    EXPECT_EQ(last.text, connectText("DFU"));
    EXPECT_EQ(last.status, 1);
    const Outcome inside = console.run("-dfu --v -e");
    EXPECT_EQ(inside.text, connectText("DFU") + "bad parameter --v\n");
    EXPECT_EQ(inside.status, 1);
}

TEST_F(ConnectTest, SecondCommandLeavesTheFirstLinkAlone) {
    const Outcome run = console.run("-com --pn ttyS5 --br 9600 -i2c");
    EXPECT_EQ(run.text, connectText("USART") + connectText("I2C"));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.callsOf("Interface_Open").size(), 2U);
    EXPECT_EQ(run.callsOf("Interface_Close").size(), 1U);
    // The values of the first command are those with which the second starts.
    EXPECT_EQ(run.callsOf("SetCOMSettings").back(),
              "SetCOMSettings port=5 name=\"ttyS5\" baud=115200 bits=8 parity=2 stop=1.0");
}

TEST_F(ConnectTest, FirstDfuDeviceOfSeveral) {
    console.script("ZVBL_GetZVDeviceList count=3");
    EXPECT_EQ(console.run("-dfu").status, 0);
    std::ifstream log(console.path("calls"));
    int opened = 0;
    for (std::string call; std::getline(log, call);) {
        opened += call == "Interface_Open h=0";
        EXPECT_EQ(call.find("h=1"), std::string::npos) << call;
        EXPECT_EQ(call.find("h=2"), std::string::npos) << call;
    }
    EXPECT_EQ(opened, 1);
}

// After a restart of the chip a USB DFU link is looked for in the device list, the others are not.
TEST_F(ConnectTest, DeviceListBehindARestart) {
    for (const char *link : {"-com", "-i2c", "-can", "-spi", "-dfu"}) {
        const Outcome run = console.run(std::string(link) + " -usd --set --fn @/a.bin");
        EXPECT_EQ(run.status, 0) << link;
        EXPECT_EQ(run.callsOf("ZVBL_GetZVDeviceList").size(), link == std::string("-dfu") ? 2U : 0U) << link;
    }
}

} // namespace
