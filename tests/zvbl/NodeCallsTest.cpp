// What device nodes make of a system whose calls fail.

#include <cerrno>
#include <cstdlib>

#include <unistd.h>

#include "libs/zvbl/transport/I2cPort.h"
#include "libs/zvbl/transport/SpiPort.h"
#include "tests/zvbl/FakeKernel.h"

namespace zvbl {
namespace {

// A file stands in for the node: its controls are the fake's.
class NodeCallsTest : public SystemCallsTest {
protected:
    void SetUp() override {
        SystemCallsTest::SetUp();
        char name[] = "/tmp/zvbl-node-XXXXXX";
        close(mkstemp(name));
        settings.portName = path = name;
    }
    void TearDown() override {
        unlink(path.c_str());
        SystemCallsTest::TearDown();
    }
    std::string path;
};

TEST_F(NodeCallsTest, ANodeThatCantBeLookedAt) {
    fail("stat", EACCES);
    EXPECT_EQ(SpiPort(trace).open(settings), Status::cantOpen);
    for (unsigned after = 0; after < 3; ++after) {
        fail("ioctl", ENOTTY, after);
        EXPECT_EQ(SpiPort(trace).open(settings), Status::cantOpen) << after;
    }
}

TEST_F(NodeCallsTest, WhatI2cDriversSay) {
    const struct {
        int error;
        Status status;
    } rows[] = {
        {ENXIO, Status::refused},  {EREMOTEIO, Status::refused}, {EAGAIN, Status::refused}, {EIO, Status::noAnswer},
        {EBUSY, Status::noAnswer}, {EBADF, Status::gone},        {ENOTTY, Status::gone},    {EINVAL, Status::gone},
        {EACCES, Status::gone},    {EPERM, Status::gone},        {ENOMEM, Status::gone},
    };
    I2cPort bus(trace);
    ASSERT_EQ(bus.open(settings), Status::ok);
    for (const auto &row : rows) {
        fail("ioctl", row.error);
        EXPECT_EQ(bus.write(0x64, {1}), row.status) << row.error;
        EXPECT_EQ(bus.write(0x64, {1}), Status::ok); // none of these is for ever
    }
}

TEST_F(NodeCallsTest, AnotherNodeUnderTheName) {
    for (unsigned *another : {&fake.newNode, &fake.newDevice}) {
        I2cPort bus(trace);
        ASSERT_EQ(bus.open(settings), Status::ok);
        *another = 1;
        fail("ioctl", EIO);
        EXPECT_EQ(bus.write(0x64, {1}), Status::gone);
        EXPECT_EQ(bus.write(0x64, {1}), Status::gone);
        *another = 0;
    }
}

TEST_F(NodeCallsTest, AMessageThatFillsWhatTheDriverTakes) {
    SpiPort bus(trace);
    ASSERT_EQ(bus.open(settings), Status::ok);
    Bytes heard;
    EXPECT_EQ(bus.exchange(Bytes(5000), 10, heard), Status::ok);
    EXPECT_EQ(heard.size(), 1U);
}

} // namespace
} // namespace zvbl
