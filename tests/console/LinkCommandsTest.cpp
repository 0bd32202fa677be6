#include "app/LinkCommands.h"

#include <gtest/gtest.h>

namespace {

TEST(LinkCommands, InterfaceTypes) {
    const struct {
        const LinkCommand &command;
        int record; // SPI goes by the number of CAN there
        int link;
    } table[] = {{usartCommand, 0, 0}, {i2cCommand, 2, 2}, {canCommand, 3, 3}, {spiCommand, 3, 4}};
    for (const auto &row : table) {
        EXPECT_EQ(row.command.recordType, row.record) << row.command.firstLine;
        EXPECT_EQ(row.command.type, row.link) << row.command.firstLine;
    }
}

TEST(LinkCommands, PortNumber) {
    const struct {
        const char *name;
        int number;
    } table[] = {{"ttyACM0", 0}, {"ttyS12", 12}, {"usb1x2", 1}, {"can", 0}, {"", 0}, {"7", 7}, {"tty4294967295", -1}};
    for (const auto &row : table) {
        EXPECT_EQ(portNumberOf(row.name), row.number) << row.name;
    }
}

} // namespace
