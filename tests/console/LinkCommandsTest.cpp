#include "app/LinkCommands.h"

#include <gtest/gtest.h>

#include "FakeLink.h"
#include "app/Connect.h"
#include "app/LinkSettings.h"
#include "foundation/ShareParameter.h"

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

// The type is recorded ahead of the sub-options, so a refused word comes after it; values read by then stay.
TEST(LinkCommands, RecordTheTypeAndTheValues) {
    const struct {
        const char *line;
        bool (*connect)(int, char **, int &, CCom *&);
        int type;
    } table[] = {{"-com --pn x7 bad", USARTConnect, 0},
                 {"-i2c --pn x7 bad", I2CConnect, 2},
                 {"-can --pn x7 bad", CANConnect, 3},
                 {"-spi --pn x7 bad", SPIConnect, 3}};
    for (const auto &row : table) {
        g_shareParameter = ShareParameter();
        g_shareParameter.m_InterfaceType = 9;
        Line line(row.line);
        int index = 0;
        CCom *link = nullptr;
        testing::internal::CaptureStdout();
        EXPECT_FALSE(row.connect(line.argc(), line.argv(), index, link)) << row.line;
        testing::internal::GetCapturedStdout();
        EXPECT_EQ(g_shareParameter.m_InterfaceType, row.type) << row.line;
        EXPECT_EQ(g_shareParameter.c_portNumber, 7) << row.line;
        EXPECT_EQ(g_shareParameter.str_portName, "x7") << row.line;
        EXPECT_EQ(index, 3) << row.line;
        EXPECT_EQ(link, nullptr) << row.line;
    }
    g_shareParameter = ShareParameter();
}

TEST(LinkCommands, WhatHoldsWithoutAWord) {
    g_shareParameter = ShareParameter();
    loadStartValues();
    EXPECT_EQ(g_shareParameter.c_portNumber, 1);
    EXPECT_EQ(g_shareParameter.c_BaudRate, 115200);
    EXPECT_EQ(g_shareParameter.c_DataBits, 8);
    EXPECT_EQ(g_shareParameter.c_parity, 2);
    EXPECT_EQ(g_shareParameter.c_timeout, 5);
    EXPECT_EQ(g_shareParameter.c_address, 0x08000000);
}

TEST(LinkCommands, NothingToIdentify) {
    EXPECT_EQ(InitDevice(nullptr), nullptr);
}

TEST(LinkCommands, PortNumber) {
    const struct {
        const char *name;
        int number;
    } table[] = {{"ttyACM0", 0}, {"ttyS12", 12}, {"usb1x2", 1}, {"can", 0}, {"", 0}, {"7", 7}, {"tty4294967295", -1}};
    for (const auto &row : table)
        EXPECT_EQ(portNumberOf(row.name), row.number) << row.name;
}

} // namespace
