// The calls of usbdevfs, on a node with a device behind it that does as it is told.

#include "sim/ports/nodes/UsbNode.h"

#include <gtest/gtest.h>

#include "tests/sim/ControlRequest.h"
#include "tests/sim/NodeRig.h"

namespace sim {
namespace {

class Obedient : public UsbDevice {
public:
    const UsbDescriptors &descriptors() const override { return m_none; }
    UsbAnswer control(const UsbSetup &setup, const Bytes &out, Nanoseconds now) override {
        last = setup;
        taken = out;
        UsbAnswer answer = next;
        answer.at += now;
        return answer;
    }
    UsbPresence presence(Nanoseconds) override { return there; }
    void pressReset(Nanoseconds) override {}
    void losePower(Nanoseconds) override {}

    UsbAnswer next; // its time is from the call on
    UsbSetup last;
    Bytes taken;
    UsbPresence there;

private:
    UsbDescriptors m_none;
};

constexpr unsigned longestWait = 1000; // turns

class UsbNodeTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string error;
        const std::string text = "P: /devices/usb1/1-1\nN: bus/usb/001/002=00\nE: DEVNAME=/dev/bus/usb/001/002\n"
                                 "E: DEVTYPE=usb_device\nE: SUBSYSTEM=usb\n";
        ASSERT_TRUE(testbed.add(text, error)) << error;
        ASSERT_TRUE(testbed.attach(
            path, [this](DeviceCall &call) { return node.serve(call); }, error))
            << error;
    }

    int submit(const OpenFile &file, ControlRequest &request) const {
        return file.call(USBDEVFS_SUBMITURB, &request.urb);
    }
    // The errno, 0 when the request is back.
    static int reap(const OpenFile &file, const ControlRequest &request) {
        void *found = nullptr;
        const int failed = file.call(USBDEVFS_REAPURBNDELAY, static_cast<void *>(&found));
        EXPECT_EQ(found, failed == 0 ? static_cast<const void *>(&request.urb) : nullptr);
        return failed;
    }
    void vanish() {
        const auto held = testbed.lock();
        node.vanish(clockNow());
    }

    const std::string path = "/dev/bus/usb/001/002";
    Obedient device;
    Testbed testbed;
    UsbNode node{device, 1, testbed};
    ControlRequest descriptor{"80 06 00 01 00 00 04 00 00*4"};
    ControlRequest toInterface{"21 01 00 00 00 00 02 00 AB CD"};
};

TEST_F(UsbNodeTest, WhatItCan) {
    const OpenFile file(path);
    unsigned value = 0;
    EXPECT_EQ(file.call(USBDEVFS_GET_CAPABILITIES, &value), 0);
    EXPECT_EQ(value, unsigned{USBDEVFS_CAP_REAP_AFTER_DISCONNECT});
    EXPECT_EQ(file.call(USBDEVFS_GETDRIVER, &value), ENODATA);
    EXPECT_EQ(file.call(USBDEVFS_IOCTL, &value), ENODATA);
    EXPECT_EQ(file.call(USBDEVFS_RESET, nullptr), 0);
    EXPECT_EQ(device.last.request, 9);
    EXPECT_EQ(file.call(USBDEVFS_BULK, &value), ENOTTY);
    EXPECT_EQ(read(file.fd(), &value, sizeof value), -1);
    EXPECT_EQ(errno, EINVAL);
    for (const unsigned long request : {USBDEVFS_GET_CAPABILITIES, USBDEVFS_CLAIMINTERFACE, USBDEVFS_SETCONFIGURATION,
                                        USBDEVFS_SETINTERFACE, USBDEVFS_CLEAR_HALT, USBDEVFS_SUBMITURB})
        EXPECT_EQ(file.call(request, nullptr), EFAULT) << request;
}

TEST_F(UsbNodeTest, AnInterfaceHasOneOwner) {
    OpenFile owner(path);
    const OpenFile other(path);
    unsigned number = 1;
    usbdevfs_setinterface setting{0, 0};
    EXPECT_EQ(owner.call(USBDEVFS_CLAIMINTERFACE, &number), ENOENT);
    number = 0;
    EXPECT_EQ(other.call(USBDEVFS_RELEASEINTERFACE, &number), EINVAL);
    EXPECT_EQ(owner.call(USBDEVFS_CLAIMINTERFACE, &number), 0);
    EXPECT_EQ(owner.call(USBDEVFS_CLAIMINTERFACE, &number), 0);
    EXPECT_EQ(other.call(USBDEVFS_CLAIMINTERFACE, &number), EBUSY);
    EXPECT_EQ(other.call(USBDEVFS_RELEASEINTERFACE, &number), EINVAL);
    EXPECT_EQ(other.call(USBDEVFS_SETCONFIGURATION, &number), EBUSY);
    EXPECT_EQ(other.call(USBDEVFS_SETINTERFACE, &setting), EBUSY);
    EXPECT_EQ(submit(other, toInterface), EBUSY);
    EXPECT_EQ(submit(owner, toInterface), 0);
    EXPECT_EQ(submit(other, descriptor), 0);
    EXPECT_EQ(owner.call(USBDEVFS_RELEASEINTERFACE, &number), 0);
    EXPECT_EQ(owner.call(USBDEVFS_CLAIMINTERFACE, &number), 0);
    owner.leave();
    int busy = EBUSY; // until the testbed has seen it leave
    for (unsigned turn = 0; busy == EBUSY && turn < longestWait; ++turn)
        busy = other.call(USBDEVFS_CLAIMINTERFACE, &number);
    EXPECT_EQ(busy, 0);
}

TEST_F(UsbNodeTest, RequestsOfTheSystem) {
    const OpenFile file(path);
    unsigned value = 1;
    usbdevfs_setinterface setting{0, 1};
    EXPECT_EQ(file.call(USBDEVFS_SETCONFIGURATION, &value), 0);
    EXPECT_EQ(device.last.value, 1);
    EXPECT_EQ(file.call(USBDEVFS_SETINTERFACE, &setting), 0);
    EXPECT_EQ(device.last.request, 11);
    EXPECT_EQ(file.call(USBDEVFS_CLEAR_HALT, &value), 0);
    EXPECT_EQ(device.last.request, 1);
    EXPECT_EQ(device.last.index, 1);
    device.next = UsbAnswer::stall(0);
    EXPECT_EQ(file.call(USBDEVFS_CLEAR_HALT, &value), EPIPE);
    device.next = UsbAnswer::silent();
    EXPECT_EQ(file.call(USBDEVFS_CLEAR_HALT, &value), ETIMEDOUT);
}

TEST_F(UsbNodeTest, TransfersThatItDoesNotMake) {
    const OpenFile file(path);
    const auto refusal = [&](auto change) {
        ControlRequest request("80 06 00 01 00 00 04 00 00*4");
        change(request.urb);
        return submit(file, request);
    };
    EXPECT_EQ(refusal([](usbdevfs_urb &urb) { urb.type = USBDEVFS_URB_TYPE_BULK; }), ENOENT);
    EXPECT_EQ(refusal([](usbdevfs_urb &urb) { urb.endpoint = 1; }), ENOENT);
    EXPECT_EQ(refusal([](usbdevfs_urb &urb) { urb.buffer_length = 7; }), EINVAL);
    EXPECT_EQ(refusal([](usbdevfs_urb &urb) { urb.buffer_length = 4096 + 9; }), EINVAL);
    EXPECT_EQ(refusal([](usbdevfs_urb &urb) { urb.buffer_length = -1; }), EINVAL);
    EXPECT_EQ(refusal([](usbdevfs_urb &urb) { urb.buffer_length = 11; }), EINVAL);
    EXPECT_EQ(refusal([](usbdevfs_urb &urb) { urb.buffer = nullptr; }), EFAULT);
    EXPECT_EQ(reap(file, descriptor), EAGAIN);
}

TEST_F(UsbNodeTest, ATransferComesBackWithItsData) {
    const OpenFile file(path);
    device.next = UsbAnswer::done(0, {0x12, 0x01, 0x10});
    ASSERT_EQ(submit(file, descriptor), 0);
    ASSERT_EQ(reap(file, descriptor), 0);
    EXPECT_EQ(descriptor.urb.status, 0);
    EXPECT_EQ(descriptor.urb.actual_length, 3);
    EXPECT_EQ(showBytes({descriptor.buffer.begin() + 8, descriptor.buffer.end()}), "12 01 10 00");
    EXPECT_EQ(reap(file, descriptor), EAGAIN);

    device.next = UsbAnswer::done(0);
    ASSERT_EQ(submit(file, toInterface), 0);
    EXPECT_EQ(showBytes(device.taken), "AB CD");
    ASSERT_EQ(reap(file, toInterface), 0);
    EXPECT_EQ(toInterface.urb.actual_length, 2);

    ControlRequest largest("21 01 00 00 00 00 00 10 00*4096");
    ASSERT_EQ(submit(file, largest), 0);
    EXPECT_EQ(device.taken.size(), 4096U);
    ASSERT_EQ(reap(file, largest), 0);

    device.next = UsbAnswer::stall(0);
    ASSERT_EQ(submit(file, descriptor), 0);
    ASSERT_EQ(reap(file, descriptor), 0);
    EXPECT_EQ(descriptor.urb.status, -EPIPE);
    EXPECT_EQ(descriptor.urb.actual_length, 0);
}

TEST_F(UsbNodeTest, OneThatIsNotAnsweredIsTakenBack) {
    const OpenFile file(path);
    const OpenFile other(path);
    device.next = UsbAnswer::silent();
    ASSERT_EQ(submit(file, descriptor), 0);
    EXPECT_EQ(reap(file, descriptor), EAGAIN);
    EXPECT_EQ(reap(other, descriptor), EAGAIN);
    EXPECT_EQ(other.call(USBDEVFS_DISCARDURB, &descriptor.urb), EINVAL);
    EXPECT_EQ(file.call(USBDEVFS_DISCARDURB, &toInterface.urb), EINVAL);
    EXPECT_EQ(file.call(USBDEVFS_DISCARDURB, &descriptor.urb), 0);
    EXPECT_EQ(file.call(USBDEVFS_DISCARDURB, &descriptor.urb), EINVAL);
    ASSERT_EQ(reap(file, descriptor), 0);
    EXPECT_EQ(descriptor.urb.status, -ENOENT);
    device.next = UsbAnswer::done(second);
    ASSERT_EQ(submit(file, descriptor), 0);
    EXPECT_EQ(reap(file, descriptor), EAGAIN); // not yet
}

TEST_F(UsbNodeTest, OfADeviceThatHasGoneOnlyTransfersAreLeft) {
    const OpenFile file(path);
    ControlRequest late("80 06 00 01 00 00 04 00 00*4");
    unsigned value = 0;
    ASSERT_EQ(submit(file, descriptor), 0);
    device.next = UsbAnswer::silent();
    ASSERT_EQ(submit(file, late), 0);
    vanish();
    EXPECT_EQ(file.call(USBDEVFS_GET_CAPABILITIES, &value), ENODEV);
    EXPECT_EQ(file.call(USBDEVFS_BULK, &value), ENODEV);
    EXPECT_EQ(read(file.fd(), &value, sizeof value), -1);
    EXPECT_EQ(errno, ENODEV);
    ASSERT_EQ(reap(file, descriptor), 0);
    EXPECT_EQ(descriptor.urb.status, 0);
    ASSERT_EQ(reap(file, late), 0);
    EXPECT_EQ(late.urb.status, -ENODEV);
    EXPECT_EQ(reap(file, late), ENODEV);
    EXPECT_EQ(file.call(USBDEVFS_DISCARDURB, &late.urb), ENODEV);
}

TEST_F(UsbNodeTest, OneThatIsBackAsAnotherIsNotThisNodes) {
    const OpenFile file(path);
    unsigned value = 0;
    device.there.attached = false;
    EXPECT_EQ(file.call(USBDEVFS_GET_CAPABILITIES, &value), ENODEV);
    device.there = {true, 2, false};
    EXPECT_EQ(file.call(USBDEVFS_GET_CAPABILITIES, &value), ENODEV);
    device.there = {true, 1, false};
    EXPECT_EQ(file.call(USBDEVFS_GET_CAPABILITIES, &value), 0);
}

TEST_F(UsbNodeTest, AHandlerThatFailsAndADescriptionThatIsNone) {
    std::string error;
    EXPECT_FALSE(testbed.add("what is this?", error));
    EXPECT_NE(error, "");
    ASSERT_TRUE(testbed.add("P: /devices/zv32\nN: zv32=00\nE: DEVNAME=/dev/zv32\nE: SUBSYSTEM=misc\n", error)) << error;
    const auto fails = [](DeviceCall &) -> std::optional<DeviceAnswer> { throw std::bad_alloc(); };
    ASSERT_TRUE(testbed.attach("/dev/zv32", fails, error)) << error;
    EXPECT_TRUE(testbed.attach("/dev/zv32", fails, error)) << error; // the first one stays
    EXPECT_EQ(OpenFile("/dev/zv32").call(USBDEVFS_RESET, nullptr), ENOMEM);
}

} // namespace
} // namespace sim
