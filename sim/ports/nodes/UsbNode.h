#pragma once

#include <deque>

#include "sim/links/usb/UsbDevice.h"
#include "sim/ports/nodes/Testbed.h"

namespace sim {

// The node of a USB device in /dev/bus/usb, from the time when it is plugged in until it goes away: the calls
// of usbdevfs (linux/usbdevice_fs.h), as far as there are control transfers alone.
class UsbNode {
public:
    // `attachments` of the device while it is this node.
    UsbNode(UsbDevice &device, unsigned attachments, const Testbed &testbed)
        : m_device(device), m_attachments(attachments), m_testbed(testbed) {}

    DeviceAnswer serve(DeviceCall &call);

    // The device is gone: transfers that are under way end, every other call fails.
    void vanish(Nanoseconds now);

private:
    // A transfer that was submitted and is not reaped yet.
    struct Transfer {
        std::uintptr_t file;
        unsigned long address; // of the request, in the client
        ClientMemory request;  // struct usbdevfs_urb
        ClientMemory buffer;
        UsbAnswer answer;
        int status; // 0 or a negative errno, once it is known
        bool ended; // before its time: given up, or the device is gone
    };
    struct Row;
    static const std::vector<Row> &rows();

    DeviceAnswer capabilities(DeviceCall &call);
    DeviceAnswer noDriver(DeviceCall &call);
    DeviceAnswer claim(DeviceCall &call);
    DeviceAnswer release(DeviceCall &call);
    DeviceAnswer setConfiguration(DeviceCall &call);
    DeviceAnswer setInterface(DeviceCall &call);
    DeviceAnswer clearHalt(DeviceCall &call);
    DeviceAnswer resetPort(DeviceCall &call);
    DeviceAnswer submit(DeviceCall &call);
    DeviceAnswer discard(DeviceCall &call);
    DeviceAnswer reap(DeviceCall &call);

    bool there(Nanoseconds now);
    DeviceAnswer request(const UsbSetup &setup);
    bool claimedByAnother(const DeviceCall &call) const;
    static bool complete(const Transfer &transfer, Nanoseconds now);
    static void handBack(const DeviceCall &call, const Transfer &transfer);

    UsbDevice &m_device;
    unsigned m_attachments;
    const Testbed &m_testbed;
    bool m_gone = false;
    std::uintptr_t m_owner = 0; // the file that has claimed the interface
    std::deque<Transfer> m_transfers;
};

} // namespace sim
