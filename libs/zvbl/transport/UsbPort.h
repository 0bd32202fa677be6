#pragma once

#include <memory>

#include "libs/zvbl/Bytes.h"
#include "libs/zvbl/Timing.h"
#include "libs/zvbl/Trace.h"
#include "libs/zvbl/transport/Transport.h"
#include "libs/zvbl/transport/UsbDevices.h"

namespace zvbl {

// The requests of USB DFU 1.1, chapter 3.
enum class DfuRequest : std::uint8_t { download = 1, upload, getStatus, clearStatus, getState, abort };

// One USB device whose DFU interface is ours. The port number of the settings is the device's number in the
// last device list.
class UsbPort : public Transport {
public:
    explicit UsbPort(Trace &trace) : m_trace(trace) {}
    ~UsbPort() override;
    UsbPort(const UsbPort &) = delete;
    UsbPort &operator=(const UsbPort &) = delete;

    Status open(const LinkSettings &settings) override;
    Status reconfigure(const LinkSettings &settings) override; // there is nothing to set
    Status setLine(ControlLine line, bool high) override;

    // One request with data for the device, or for data from it: at most `size` bytes. refused: the device
    // stalled it. noAnswer: not done within the timeout.
    Status send(DfuRequest request, std::uint16_t value, Bytes data, Duration timeout);
    Status fetch(DfuRequest request, std::uint16_t value, std::size_t size, Bytes &data, Duration timeout);

    // Lets time pass. gone: the device was unplugged meanwhile.
    Status wait(Duration time);

    std::size_t transferSize() const { return m_dfu.transferSize; } // wTransferSize

    // A device that resets leaves the bus and comes back. Called before a command that makes it do so: until
    // the next open, its number in the device list is given to no other device. endRestart takes that back
    // when the command was refused.
    void expectRestart();
    void endRestart();

private:
    Status take(const UsbTarget &target, const UsbIdentity &expected);
    Status claim();
    Status cannotOpen(const std::string &why);
    Status transfer(std::uint8_t requestType, DfuRequest request, std::uint16_t value, Bytes &data, Duration timeout);
    Status judge(int error);
    bool hasVanished() const;
    bool vanishesWithin(Duration time);

    Trace &m_trace;
    std::unique_ptr<UsbBus> m_bus; // has to outlive the handle
    std::unique_ptr<UsbHandle> m_handle;
    int m_number = 0;
    UsbIdentity m_identity;
    DfuInterface m_dfu;
    std::string m_node; // in sysfs, vanishes with the device
    bool m_hasNode = false;
    bool m_claimed = false;
    bool m_gone = false;
};

// Whether the settings name a device at all.
bool isUsbSetting(const LinkSettings &settings);

} // namespace zvbl
