// What the emulated spidev node answers to calls that no driver of this project makes.

#include "sim/ports/nodes/SpiNode.h"

#include <gtest/gtest.h>
#include <linux/spi/spidev.h>

#include "tests/sim/NodeRig.h"

namespace sim {
namespace {

class SpiNodeTest : public ::testing::Test {
protected:
    // The errno of a call with one transfer.
    static int transfer(const OpenFile &spi, const spi_ioc_transfer &one) {
        spi_ioc_transfer copy = one;
        return spi.call(SPI_IOC_MESSAGE(1), &copy);
    }
    static spi_ioc_transfer sized(std::uint32_t length, Bytes *out, Bytes *in) {
        spi_ioc_transfer one{};
        for (Bytes *buffer : {out, in})
            if (buffer != nullptr)
                buffer->resize(length);
        one.len = length;
        one.tx_buf = out != nullptr ? reinterpret_cast<std::uintptr_t>(out->data()) : 0;
        one.rx_buf = in != nullptr ? reinterpret_cast<std::uintptr_t>(in->data()) : 0;
        return one;
    }

    NodeRig board{makeSpiNode, "spidev0.0"};
    OpenFile spi{"/dev/spidev0.0"};
};

TEST_F(SpiNodeTest, WhatItsSettingsAre) {
    const struct {
        unsigned long request;
        std::uint32_t value;
    } rows[] = {{SPI_IOC_RD_MODE, 0},
                {SPI_IOC_RD_LSB_FIRST, 0},
                {SPI_IOC_RD_MODE32, 0},
                {SPI_IOC_RD_BITS_PER_WORD, 8},
                {SPI_IOC_RD_MAX_SPEED_HZ, 10000000}};
    for (const auto &row : rows) {
        std::uint32_t value = row.value + 1;
        EXPECT_EQ(spi.call(row.request, &value), 0) << row.request;
        EXPECT_EQ(value, row.value) << row.request;
        EXPECT_EQ(spi.call(row.request, nullptr), EFAULT) << row.request;
    }
}

TEST_F(SpiNodeTest, WhatMayBeSet) {
    const struct {
        unsigned long request;
        std::uint32_t value;
        int error;
    } rows[] = {{SPI_IOC_WR_MODE, 0, 0},          {SPI_IOC_WR_MODE, 3, EINVAL},
                {SPI_IOC_WR_MODE32, 0, 0},        {SPI_IOC_WR_MODE32, 0x100, EINVAL},
                {SPI_IOC_WR_LSB_FIRST, 0, 0},     {SPI_IOC_WR_LSB_FIRST, 1, EINVAL},
                {SPI_IOC_WR_BITS_PER_WORD, 0, 0}, {SPI_IOC_WR_BITS_PER_WORD, 8, 0},
                {SPI_IOC_WR_MAX_SPEED_HZ, 0, 0},  {SPI_IOC_WR_BITS_PER_WORD, 16, EINVAL}};
    for (const auto &row : rows) {
        std::uint32_t value = row.value;
        EXPECT_EQ(spi.call(row.request, &value), row.error) << row.request << " " << row.value;
        EXPECT_EQ(spi.call(row.request, nullptr), EFAULT) << row.request;
    }
    EXPECT_EQ(spi.call(_IOC(_IOC_WRITE, SPI_IOC_MAGIC, 0, 7), nullptr), ENOTTY);
    EXPECT_EQ(spi.call(_IOC(_IOC_READ, SPI_IOC_MAGIC, 0, 32), nullptr), ENOTTY);
    EXPECT_EQ(spi.call(_IOC(_IOC_WRITE, SPI_IOC_MAGIC, 0, 0), nullptr), 0);
}

TEST_F(SpiNodeTest, TransfersThatItCannotMake) {
    Bytes out;
    const spi_ioc_transfer good = sized(2, &out, nullptr);
    spi_ioc_transfer one = good;
    one.bits_per_word = 8;
    EXPECT_EQ(transfer(spi, one), 0);
    one.bits_per_word = 16;
    EXPECT_EQ(transfer(spi, one), EINVAL);
    one = good;
    one.tx_nbits = 2;
    EXPECT_EQ(transfer(spi, one), EINVAL);
    one = good;
    one.rx_nbits = 4;
    EXPECT_EQ(transfer(spi, one), EINVAL);
}

TEST_F(SpiNodeTest, HowMuchItsBufferHolds) {
    Bytes out;
    Bytes in;
    EXPECT_EQ(transfer(spi, sized(4096, &out, &in)), 0);
    EXPECT_EQ(transfer(spi, sized(4097, &out, nullptr)), EMSGSIZE);
    EXPECT_EQ(transfer(spi, sized(4097, nullptr, &in)), EMSGSIZE);
    EXPECT_EQ(transfer(spi, sized(8192, nullptr, nullptr)), 0);
    EXPECT_EQ(transfer(spi, sized(8193, nullptr, nullptr)), EMSGSIZE);
    EXPECT_EQ(write(spi.fd(), out.data(), 4097), -1);
    EXPECT_EQ(errno, EMSGSIZE);
}

TEST_F(SpiNodeTest, ReadAndWriteAreHalfAMessageEach) {
    const Bytes opening = {0x5A, 0x7F};
    Bytes answer(2);
    EXPECT_EQ(write(spi.fd(), opening.data(), opening.size()), 2);
    EXPECT_EQ(read(spi.fd(), answer.data(), answer.size()), 2);
    EXPECT_EQ(showBytes(answer), "5A 79");
}

TEST_F(SpiNodeTest, OneBufferForBothWaysAndASpeedOfItsOwn) {
    Bytes both = {0x5A, 0x7F};
    spi_ioc_transfer one = sized(2, &both, nullptr);
    one.rx_buf = one.tx_buf;
    one.speed_hz = 1000000;
    EXPECT_EQ(transfer(spi, one), 0);
    EXPECT_EQ(showBytes(both), "00 00"); // what the chip said meanwhile
}

TEST(SpiNodeEnds, WhoSpeaksIntoAnUnpluggingHasNoDevice) {
    const Bytes opening = {0x5A, 0x7F};
    NodeRig board(makeSpiNode, "spidev0.0", {"hangup@1"});
    OpenFile spi("/dev/spidev0.0");
    EXPECT_EQ(write(spi.fd(), opening.data(), opening.size()), -1);
    EXPECT_EQ(errno, ENODEV);
    EXPECT_TRUE(board.hungUp());
    EXPECT_TRUE(board.work());
}

TEST(SpiNodeEnds, AndWhoListens) {
    const Bytes opening = {0x5A, 0x7F};
    Bytes answer(2);
    NodeRig board(makeSpiNode, "spidev0.0", {"tx-hangup@1"});
    OpenFile spi("/dev/spidev0.0");
    EXPECT_EQ(write(spi.fd(), opening.data(), opening.size()), 2);
    EXPECT_EQ(read(spi.fd(), answer.data(), answer.size()), -1);
    EXPECT_EQ(errno, ENODEV);
}

} // namespace
} // namespace sim
