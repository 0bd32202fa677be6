#include "line/ports/Plugged.h"

#include "tests/line/LineFiles.h"

namespace {

const char *const tables = R"(# usart, "ttyUSB1"
[[nest]]
name = "A2"
port = "/dev/serial/by-path/hub-2.9"

# usart, "ttyUSB0"
[[nest]]
name = "A1"
port = "/dev/serial/by-path/hub-2.10"

# usart, "ttyS0"
[[nest]]
name = "A4"
port = "/dev/ttyS0"

# usart, "ttyUSB2": its name goes by the order of plugging in
[[nest]]
name = "A5"
port = "/dev/ttyUSB2"

# dfu, "1-2.3"
[[nest]]
name = "A6"
port = "1-2.3"

# i2c, "i2c-1"
[[nest]]
name = "A7"
port = "/dev/i2c-1"

# can, "can0"
[[nest]]
name = "A8"
port = "can0"

# spi, "spidev0.0"
[[nest]]
name = "A9"
port = "/dev/spidev0.0"
)";

class PluggedTest : public LineFiles {
protected:
    void file(const std::string &name, const std::string &text) const {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream(path(name)) << text;
    }
    void serial(const std::string &name, const std::string &socket) const {
        file("sys/class/tty/" + name + "/device/x", "");
        file("dev/" + name, "");
        if (socket.empty())
            return;
        std::filesystem::create_directories(path("dev/serial/by-path"));
        std::filesystem::create_symlink("../../" + name, path("dev/serial/by-path/" + socket));
    }

    Station station() const {
        Station station;
        station.nests = {{"A1", "/dev/serial/by-path/hub-2.10", {}}, {"A3", "/dev/gone", {}}};
        return station;
    }
};

} // namespace

TEST_F(PluggedTest, PortsAreToldBySocketAndKeepTheirNames) {
    serial("ttyUSB0", "hub-2.10");
    serial("ttyUSB1", "hub-2.9");
    serial("ttyUSB2", "");
    serial("ttyS0", "");
    file("sys/class/net/can0/type", "280\n");
    file("sys/bus/i2c/devices/i2c-1/name", "x\n");
    file("sys/class/spidev/spidev0.0/x", "");
    file("sys/bus/usb/devices/1-2.3:1.0/bInterfaceClass", "fe\n");
    file("sys/bus/usb/devices/1-2.3:1.0/bInterfaceSubClass", "01\n");
    file("sys/bus/usb/devices/1-2.3/devnum", "4\n");
    file("sys/bus/usb/devices/1-2.4/devnum", "5\n"); // no firmware interface
    EXPECT_EQ(nestTables(pluggedPorts(station(), Machine(dir)), station()), tables);
}

TEST_F(PluggedTest, WhatIsToldPastesIntoAStationFileWhateverItIsCalled) {
    serial("ttyUSB0", "a\"\\\033[2J");
    const std::string told = nestTables(pluggedPorts(Station(), Machine(dir)), Station());
    EXPECT_EQ(told, "# usart, \"ttyUSB0\"\n[[nest]]\nname = \"A1\"\n"
                    "port = \"/dev/serial/by-path/a\\\"\\\\\\u001b[2J\"\n");
    std::filesystem::remove_all(path("dev/serial"));
    serial("ttyUSB1", "a\"\\b");
    write("station.toml", "format = 1\nstation = \"x\"\n[link]\nkind = \"usart\"\n" +
                              nestTables(pluggedPorts(Station(), Machine(dir)), Station()));
    const Station read = readStation(path("station.toml"));
    ASSERT_EQ(read.nests.size(), 2U);
    EXPECT_EQ(read.nests[0].port, "/dev/serial/by-path/a\"\\b");
}

TEST_F(PluggedTest, AMachineMayHaveNone) {
    EXPECT_TRUE(pluggedPorts(Station(), Machine(dir)).empty());
    EXPECT_EQ(nestTables({}, Station()), "");
}
