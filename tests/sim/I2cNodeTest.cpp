// What the emulated i2c-dev node answers to calls that no driver of this project makes.

#include "sim/ports/nodes/I2cNode.h"

#include <fstream>
#include <iterator>

#include <gtest/gtest.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include "libs/zvbl/wire/Wire.h"
#include "tests/sim/NodeRig.h"

namespace sim {
namespace {

constexpr unsigned long chipsAddress = wire::i2cAddress;

class I2cNodeTest : public ::testing::Test {
protected:
    int transfer(std::uint16_t flags, std::uint16_t length, std::uint8_t *bytes, unsigned messages = 1) const {
        i2c_msg message{static_cast<std::uint16_t>(chipsAddress), flags, length, bytes};
        i2c_rdwr_ioctl_data all{&message, messages};
        return i2c.call(I2C_RDWR, &all);
    }
    int smbus(std::uint8_t direction, std::uint32_t size, i2c_smbus_data *data) const {
        i2c_smbus_ioctl_data request{direction, 0, size, data};
        return i2c.call(I2C_SMBUS, &request);
    }

    NodeRig board{makeI2cNode, "i2c-1"};
    OpenFile i2c{"/dev/i2c-1"};
};

TEST_F(I2cNodeTest, TheSystemKnowsItByItsNumber) {
    std::ifstream file("/sys/class/i2c-dev/i2c-1/uevent");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(text.find("MAJOR=89\n"), std::string::npos) << text;
    EXPECT_NE(text.find("MINOR=1\n"), std::string::npos) << text;
}

TEST_F(I2cNodeTest, ItsSettings) {
    const struct {
        unsigned long request;
        unsigned long value;
        int error;
    } rows[] = {{I2C_SLAVE, 0x7F, 0},   {I2C_SLAVE, 0x80, EINVAL}, {I2C_SLAVE_FORCE, chipsAddress, 0},
                {I2C_TENBIT, 0, 0},     {I2C_TENBIT, 1, EINVAL},   {I2C_PEC, 1, 0},
                {I2C_RETRIES, 3, 0},    {I2C_TIMEOUT, 10, 0},      {0x7FF, 0, ENOTTY},
                {I2C_FUNCS, 0, EFAULT}, {I2C_RDWR, 0, EINVAL}};
    for (const auto &row : rows)
        EXPECT_EQ(i2c.call(row.request, row.value), row.error) << row.request << " " << row.value;
    unsigned long functions = 0;
    EXPECT_EQ(i2c.call(I2C_FUNCS, &functions), 0);
    EXPECT_EQ(functions & I2C_FUNC_I2C, static_cast<unsigned long>(I2C_FUNC_I2C));
}

TEST_F(I2cNodeTest, MessagesThatItCannotCarry) {
    Bytes bytes(8193);
    EXPECT_EQ(transfer(0, 8192, bytes.data()), 0);
    EXPECT_EQ(transfer(0, 8193, bytes.data()), EINVAL);
    EXPECT_EQ(transfer(I2C_M_TEN, 1, bytes.data()), EINVAL);
    EXPECT_EQ(transfer(0, 1, nullptr), EFAULT);
    EXPECT_EQ(transfer(0, 0, nullptr), 0);
    EXPECT_EQ(transfer(0, 1, bytes.data(), 0), EINVAL);
    EXPECT_EQ(transfer(0, 1, bytes.data(), I2C_RDWR_IOCTL_MAX_MSGS + 1), EINVAL);
    i2c_rdwr_ioctl_data none{nullptr, 1};
    EXPECT_EQ(i2c.call(I2C_RDWR, &none), 0);
}

TEST_F(I2cNodeTest, WhatBusScansUse) {
    i2c_smbus_data data{};
    EXPECT_EQ(i2c.call(I2C_SMBUS, nullptr), ENXIO); // a quick transfer to address 0
    EXPECT_EQ(smbus(I2C_SMBUS_WRITE, I2C_SMBUS_QUICK, nullptr), ENXIO);
    ASSERT_EQ(i2c.call(I2C_SLAVE, chipsAddress), 0);
    EXPECT_EQ(smbus(I2C_SMBUS_WRITE, I2C_SMBUS_QUICK, nullptr), 0);
    EXPECT_EQ(smbus(I2C_SMBUS_READ, I2C_SMBUS_QUICK, nullptr), 0);
    EXPECT_EQ(smbus(I2C_SMBUS_WRITE, I2C_SMBUS_BYTE, nullptr), 0);
    EXPECT_EQ(smbus(I2C_SMBUS_READ, I2C_SMBUS_BYTE, nullptr), EFAULT);
    EXPECT_EQ(smbus(I2C_SMBUS_READ, I2C_SMBUS_BYTE, &data), 0);
    EXPECT_EQ(smbus(I2C_SMBUS_READ, I2C_SMBUS_WORD_DATA, &data), EOPNOTSUPP);
}

TEST_F(I2cNodeTest, ReadAndWriteAreOneMessageEach) {
    const Bytes command = {0x02, 0xFD};
    Bytes answer(1);
    EXPECT_EQ(write(i2c.fd(), command.data(), command.size()), -1);
    EXPECT_EQ(errno, ENXIO);
    ASSERT_EQ(i2c.call(I2C_SLAVE, chipsAddress), 0);
    EXPECT_EQ(write(i2c.fd(), command.data(), command.size()), 2);
    EXPECT_EQ(read(i2c.fd(), answer.data(), answer.size()), 1);
    EXPECT_EQ(showBytes(answer), "79");
}

TEST(I2cNodeEnds, WhoSpeaksIntoAnUnpluggingHasNoDevice) {
    const Bytes command = {0x02, 0xFD};
    NodeRig board(makeI2cNode, "i2c-1", {"hangup@1"}, true);
    OpenFile i2c("/dev/i2c-1");
    ASSERT_EQ(i2c.call(I2C_SLAVE, chipsAddress), 0);
    EXPECT_EQ(write(i2c.fd(), command.data(), command.size()), -1);
    EXPECT_EQ(errno, ENODEV);
    EXPECT_TRUE(board.hungUp());
    EXPECT_EQ(i2c.call(I2C_SLAVE, chipsAddress), ENODEV);
}

} // namespace
} // namespace sim
