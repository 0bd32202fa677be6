#include "sim/ports/nodes/UsbNode.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>

#include "sim/ports/Clock.h"

namespace sim {

namespace {

constexpr std::size_t setupLength = 8;
constexpr std::size_t longestTransfer = 4096 + setupLength; // that usbdevfs takes on endpoint 0

// An emulated node always looks as if there were something to reap. So a client that asks waits here, and
// does not spin; not for long, because its signals wait too.
constexpr Nanoseconds longestHold = 3 * millisecond;

constexpr std::uint8_t toDevice = 0x00;
constexpr std::uint8_t toInterface = 0x01;
constexpr std::uint8_t toEndpoint = 0x02;
enum StandardRequest : std::uint8_t { clearFeature = 1, chooseConfiguration = 9, chooseSetting = 11 };

bool goesToInterface(const UsbSetup &setup) {
    return (setup.type & 0x1F) == toInterface;
}

int statusOf(const UsbAnswer &answer) {
    return answer.kind == UsbAnswer::Kind::stall ? -EPIPE : 0;
}

} // namespace

struct UsbNode::Row {
    unsigned long request;
    DeviceAnswer (UsbNode::*act)(DeviceCall &call);
    bool whenGone; // answered without a device, too
};

const std::vector<UsbNode::Row> &UsbNode::rows() {
    static const std::vector<Row> table = {
        {USBDEVFS_GET_CAPABILITIES, &UsbNode::capabilities, false},
        {USBDEVFS_GETDRIVER, &UsbNode::noDriver, false},
        {USBDEVFS_IOCTL, &UsbNode::noDriver, false},
        {USBDEVFS_CLAIMINTERFACE, &UsbNode::claim, false},
        {USBDEVFS_RELEASEINTERFACE, &UsbNode::release, false},
        {USBDEVFS_SETCONFIGURATION, &UsbNode::setConfiguration, false},
        {USBDEVFS_SETINTERFACE, &UsbNode::setInterface, false},
        {USBDEVFS_CLEAR_HALT, &UsbNode::clearHalt, false},
        {USBDEVFS_RESET, &UsbNode::resetPort, false},
        {USBDEVFS_SUBMITURB, &UsbNode::submit, false},
        {USBDEVFS_DISCARDURB, &UsbNode::discard, true},
        {USBDEVFS_REAPURBNDELAY, &UsbNode::reap, true},
    };
    return table;
}

// A device that has just gone away, or is back already as another one, is no longer this node's.
bool UsbNode::there(Nanoseconds now) {
    const UsbPresence found = m_device.presence(now);
    return !m_gone && found.attached && found.attachments == m_attachments;
}

DeviceAnswer UsbNode::serve(DeviceCall &call) {
    if (call.kind != DeviceCall::Kind::ioctl)
        return DeviceAnswer::fail(m_gone ? ENODEV : EINVAL);
    for (const Row &row : rows())
        if (row.request == call.request())
            return row.whenGone || there(clockNow()) ? (this->*row.act)(call) : DeviceAnswer::fail(ENODEV);
    return DeviceAnswer::fail(m_gone ? ENODEV : ENOTTY);
}

void UsbNode::vanish(Nanoseconds now) {
    m_gone = true;
    for (Transfer &transfer : m_transfers) {
        if (!complete(transfer, now)) {
            transfer.status = -ENODEV;
            transfer.ended = true;
        }
    }
}

// ---- the device and its interface

DeviceAnswer UsbNode::capabilities(DeviceCall &call) {
    const ClientMemory answer = call.memory(sizeof(__u32));
    if (!answer)
        return DeviceAnswer::fail(EFAULT);
    answer.set(__u32{USBDEVFS_CAP_REAP_AFTER_DISCONNECT});
    return {};
}

DeviceAnswer UsbNode::noDriver(DeviceCall &) {
    return DeviceAnswer::fail(ENODATA);
}

bool UsbNode::claimedByAnother(const DeviceCall &call) const {
    return m_owner != 0 && m_owner != call.file && m_testbed.isOpen(m_owner);
}

DeviceAnswer UsbNode::claim(DeviceCall &call) {
    const ClientMemory number = call.memory(sizeof(unsigned));
    if (!number || number.get<unsigned>() != 0)
        return DeviceAnswer::fail(number ? ENOENT : EFAULT);
    if (claimedByAnother(call))
        return DeviceAnswer::fail(EBUSY);
    m_owner = call.file;
    return {};
}

DeviceAnswer UsbNode::release(DeviceCall &call) {
    if (m_owner != call.file)
        return DeviceAnswer::fail(EINVAL);
    m_owner = 0;
    return {};
}

DeviceAnswer UsbNode::request(const UsbSetup &setup) {
    const UsbAnswer answer = m_device.control(setup, {}, clockNow());
    if (answer.kind != UsbAnswer::Kind::done)
        return DeviceAnswer::fail(answer.kind == UsbAnswer::Kind::stall ? EPIPE : ETIMEDOUT);
    return {};
}

DeviceAnswer UsbNode::setConfiguration(DeviceCall &call) {
    const ClientMemory value = call.memory(sizeof(unsigned));
    if (!value || claimedByAnother(call))
        return DeviceAnswer::fail(value ? EBUSY : EFAULT);
    return request({toDevice, chooseConfiguration, static_cast<std::uint16_t>(value.get<unsigned>()), 0, 0});
}

DeviceAnswer UsbNode::setInterface(DeviceCall &call) {
    const ClientMemory wish = call.memory(sizeof(usbdevfs_setinterface));
    if (!wish || claimedByAnother(call))
        return DeviceAnswer::fail(wish ? EBUSY : EFAULT);
    const auto asked = wish.get<usbdevfs_setinterface>();
    return request({toInterface, chooseSetting, static_cast<std::uint16_t>(asked.altsetting),
                    static_cast<std::uint16_t>(asked.interface), 0});
}

DeviceAnswer UsbNode::clearHalt(DeviceCall &call) {
    const ClientMemory endpoint = call.memory(sizeof(unsigned));
    if (!endpoint)
        return DeviceAnswer::fail(EFAULT);
    return request({toEndpoint, clearFeature, 0, static_cast<std::uint16_t>(endpoint.get<unsigned>()), 0});
}

// The system chooses the configuration again, as it does when a device is plugged in.
DeviceAnswer UsbNode::resetPort(DeviceCall &) {
    m_device.busReset(clockNow());
    return request({toDevice, chooseConfiguration, 1, 0, 0});
}

// ---- transfers

// The bus begins when the call comes: to fetch the client's memory takes a while that no real node takes.
DeviceAnswer UsbNode::submit(DeviceCall &call) {
    const Nanoseconds now = clockNow();
    const unsigned long address = call.number(); // the client's: it is replaced where it leads to is fetched
    const ClientMemory memory = call.memory(sizeof(usbdevfs_urb));
    if (!memory)
        return DeviceAnswer::fail(EFAULT);
    // Member by member: the record has an open end, which is no standard type.
    const auto type = memory.get<unsigned char>(offsetof(usbdevfs_urb, type));
    const auto endpoint = memory.get<unsigned char>(offsetof(usbdevfs_urb, endpoint));
    if (type != USBDEVFS_URB_TYPE_CONTROL || (endpoint & 0x7F) != 0)
        return DeviceAnswer::fail(ENOENT); // there is no other endpoint
    const auto length = static_cast<std::size_t>(std::max(memory.get<int>(offsetof(usbdevfs_urb, buffer_length)), 0));
    if (length < setupLength || length > longestTransfer)
        return DeviceAnswer::fail(EINVAL);
    const ClientMemory buffer = memory.behind(offsetof(usbdevfs_urb, buffer), length);
    if (!buffer)
        return DeviceAnswer::fail(EFAULT);
    const UsbSetup setup = parseSetup(buffer.bytes());
    if (setup.length > length - setupLength || (goesToInterface(setup) && claimedByAnother(call)))
        return DeviceAnswer::fail(setup.length > length - setupLength ? EINVAL : EBUSY);
    const std::uint8_t *data = buffer.bytes() + setupLength;
    const Bytes out = setup.towardsHost() ? Bytes() : Bytes(data, data + setup.length);
    const UsbAnswer answer = m_device.control(setup, out, now);
    m_transfers.push_back({call.file, address, memory, buffer, answer, statusOf(answer), false});
    return {};
}

bool UsbNode::complete(const Transfer &transfer, Nanoseconds now) {
    const bool comes = transfer.answer.kind != UsbAnswer::Kind::silent;
    return transfer.ended || (comes && transfer.answer.at <= now);
}

DeviceAnswer UsbNode::discard(DeviceCall &call) {
    for (Transfer &transfer : m_transfers) {
        if (transfer.file == call.file && transfer.address == call.number() && !complete(transfer, clockNow())) {
            transfer.status = -ENOENT;
            transfer.ended = true;
            return {};
        }
    }
    return DeviceAnswer::fail(m_gone ? ENODEV : EINVAL);
}

DeviceAnswer UsbNode::reap(DeviceCall &call) {
    const Nanoseconds end = clockNow() + longestHold;
    const auto own = [&](const Transfer &transfer) { return transfer.file == call.file; };
    Nanoseconds next = end;
    for (const Transfer &transfer : m_transfers) {
        if (own(transfer) && transfer.answer.kind != UsbAnswer::Kind::silent)
            next = std::min(next, transfer.answer.at);
        if (own(transfer) && transfer.ended)
            next = 0;
    }
    if (std::none_of(m_transfers.begin(), m_transfers.end(), own))
        return DeviceAnswer::fail(m_gone ? ENODEV : EAGAIN);
    waitUntil(next);
    const Nanoseconds now = clockNow();
    const auto found = std::find_if(m_transfers.begin(), m_transfers.end(),
                                    [&](const Transfer &transfer) { return own(transfer) && complete(transfer, now); });
    if (found == m_transfers.end())
        return DeviceAnswer::fail(EAGAIN);
    handBack(call, *found);
    m_transfers.erase(found);
    return {};
}

void UsbNode::handBack(const DeviceCall &call, const Transfer &transfer) {
    const Bytes &data = transfer.answer.data;
    const bool done = transfer.status == 0;
    const auto asked = static_cast<int>(parseSetup(transfer.buffer.bytes()).length);
    const bool towardsHost = parseSetup(transfer.buffer.bytes()).towardsHost();
    const int moved = !done ? 0 : towardsHost ? static_cast<int>(data.size()) : asked;
    transfer.request.set(static_cast<int>(transfer.status), offsetof(usbdevfs_urb, status));
    transfer.request.set(moved, offsetof(usbdevfs_urb, actual_length));
    if (done)
        std::copy(data.begin(), data.end(), transfer.buffer.bytes() + setupLength);
    call.memory(sizeof(void *)).point(0, transfer.request);
}

} // namespace sim
