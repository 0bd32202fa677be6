// What CAN sockets and their netlink make of a system whose calls fail.

#include <cerrno>
#include <cstring>

#include <linux/can/netlink.h>
#include <linux/can/raw.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>

#include "libs/zvbl/transport/CanNetlink.h"
#include "libs/zvbl/transport/CanSocket.h"
#include "tests/zvbl/FakeKernel.h"

namespace zvbl {
namespace {

template <class Value>
void append(Message &message, const Value &value) {
    const auto *const bytes = reinterpret_cast<const char *>(&value);
    message.insert(message.end(), bytes, bytes + sizeof value);
}

Message attribute(unsigned short type, const Message &value, int length = -1) {
    Message bytes;
    append(bytes, rtattr{static_cast<unsigned short>(length < 0 ? RTA_LENGTH(value.size()) : length), type});
    bytes.insert(bytes.end(), value.begin(), value.end());
    bytes.resize(RTA_ALIGN(bytes.size()));
    return bytes;
}

Message answer(unsigned short type, const Message &rest) {
    Message bytes;
    nlmsghdr head{};
    head.nlmsg_type = type;
    append(bytes, head);
    bytes.insert(bytes.end(), rest.begin(), rest.end());
    return bytes;
}

Message text(const char *letters) {
    return {letters, letters + std::strlen(letters) + 1};
}

Message number(int value) {
    Message bytes;
    append(bytes, value);
    return bytes;
}

// An interface with the attributes of its link.
Message interface(const Message &attributes) {
    Message bytes;
    append(bytes, ifinfomsg{});
    bytes.insert(bytes.end(), attributes.begin(), attributes.end());
    return answer(RTM_NEWLINK, bytes);
}

Message linkInfo(const Message &kind, const Message &timing) {
    Message info = attribute(IFLA_INFO_KIND, kind);
    const Message data = attribute(IFLA_INFO_DATA, attribute(IFLA_CAN_BITTIMING, timing));
    info.insert(info.end(), data.begin(), data.end());
    return interface(attribute(IFLA_LINKINFO, info));
}

TEST_F(SystemCallsTest, AnswersAboutTheRate) {
    const struct {
        const char *name;
        Message answer;
        int error;
        unsigned rate;
    } rows[] = {
        {"a rate", linkInfo(text("can"), number(500000)), 0, 500000},
        {"of a virtual bus", linkInfo(text("vcan"), number(500000)), 0, 0},
        {"a kind that is too short", linkInfo({'c'}, number(500000)), 0, 0},
        {"without a timing", linkInfo(text("can"), {1, 2}), 0, 0},
        {"without attributes", interface({}), 0, 0},
        {"an attribute shorter than its head", interface(attribute(IFLA_LINKINFO, {}, 2)), 0, 0},
        {"an attribute longer than what there is", interface(attribute(IFLA_LINKINFO, {}, 200)), 0, 0},
        {"no interface", answer(RTM_NEWLINK, {}), EPROTO, 0},
        {"no message", {1, 2, 3}, EPROTO, 0},
        {"a refusal", answer(NLMSG_ERROR, number(-EPERM)), EPERM, 0},
        {"a refusal without a reason", answer(NLMSG_ERROR, {}), EPROTO, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        fake.received = {{}, row.answer}; // a signal comes first
        unsigned rate = 1;
        EXPECT_EQ(readCanBitRate(7, rate), row.error);
        EXPECT_EQ(rate, row.rate);
    }
}

TEST_F(SystemCallsTest, TheWayToTheKernelFails) {
    for (const char *call : {"socket", "send", "recv"}) {
        fail(call, ENOBUFS);
        unsigned rate = 1;
        EXPECT_EQ(readCanBitRate(7, rate), ENOBUFS) << call;
        EXPECT_EQ(rate, 0U);
    }
    // Down, timing, up: whichever fails is told, and the interface is up again where it was down.
    const Message done = answer(NLMSG_ERROR, number(0));
    const Message refused = answer(NLMSG_ERROR, number(-EBUSY));
    for (unsigned at = 0; at < 3; ++at) {
        fake.received = {done, done, done};
        fake.received[at] = refused;
        EXPECT_EQ(setCanBitRate(7, 500000), EBUSY) << at;
        EXPECT_EQ(fake.received.size(), at == 0 ? 2U : 0U);
    }
}

TEST_F(SystemCallsTest, ASocketThatCantBeMade) {
    const struct {
        const char *call;
        unsigned after;
    } rows[] = {{"socket", 0}, {"setsockopt", 1}, {"setsockopt", 2}, {"bind", 0}, {"if_indextoname", 0}, {"ioctl", 0}};
    for (const auto &row : rows) {
        fail(row.call, ENOMEM, row.after);
        CanSocket bus(trace);
        EXPECT_EQ(bus.open(settings), Status::cantOpen) << row.call << " " << row.after;
        EXPECT_TRUE(fake.failing.empty()) << row.call;
    }
}

Message frameOf(canid_t identifier) {
    can_frame frame{};
    frame.can_id = identifier;
    frame.can_dlc = 1;
    frame.data[0] = 0x79;
    Message bytes;
    append(bytes, frame);
    return bytes;
}

TEST_F(SystemCallsTest, ABusThatIsGoneStaysGone) {
    for (const char *call : {"write", "recv", "ppoll"}) {
        SCOPED_TRACE(call);
        CanSocket bus(trace);
        ASSERT_EQ(bus.open(settings), Status::ok);
        fail(call, EIO);
        CanFrame frame;
        if (std::strcmp(call, "write") == 0)
            EXPECT_EQ(bus.send({}, soon()), Status::gone);
        else
            EXPECT_EQ(bus.receive(frame, soon()), Status::gone);
        EXPECT_EQ(bus.send({}, soon()), Status::gone);
        fake.received = {frameOf(0x121)};
        EXPECT_EQ(bus.receive(frame, soon()), Status::gone);
        fake.received.clear();
    }
}

TEST_F(SystemCallsTest, WhatIsNoFrameIsPassedOver) {
    CanSocket bus(trace);
    ASSERT_EQ(bus.open(settings), Status::ok);
    fake.received = {{1, 2, 3}, {}, frameOf(CAN_ERR_FLAG | 1), frameOf(0x121)};
    fail("ppoll", EINTR);
    CanFrame frame;
    EXPECT_EQ(bus.receive(frame, soon()), Status::ok);
    EXPECT_EQ(frame.id, 0x121);
    EXPECT_EQ(bus.receive(frame, soon()), Status::noAnswer);
    // A bus that tells of errors only does not keep anybody for ever.
    fake.received.assign(200000, frameOf(CAN_ERR_FLAG | 1));
    EXPECT_EQ(bus.receive(frame, {}), Status::noAnswer);
    for (const int error : {EINTR, EAGAIN, ENOBUFS}) {
        fail("write", error);
        EXPECT_EQ(bus.send({}, soon()), Status::ok) << error;
    }
}

TEST_F(SystemCallsTest, ASocketThatCantBeMadeAgain) {
    CanSocket bus(trace);
    ASSERT_EQ(bus.open(settings), Status::ok);
    const Message done = answer(NLMSG_ERROR, number(0));
    fake.received = {done, done, done};
    fail("bind", EADDRINUSE);
    EXPECT_EQ(bus.setBitRate(500000), Status::gone);
    EXPECT_EQ(bus.send({}, soon()), Status::gone);
}

} // namespace
} // namespace zvbl
