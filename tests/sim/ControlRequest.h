#pragma once

#include <memory>
#include <string>

#include <linux/usbdevice_fs.h>

#include "tests/sim/Rig.h"

namespace sim {

// A control transfer as it is submitted to usbdevfs, and its buffer: the setup packet and what follows it.
class ControlRequest {
public:
    explicit ControlRequest(const std::string &bytes) : buffer(parseBytes(bytes)) {
        urb.type = USBDEVFS_URB_TYPE_CONTROL;
        urb.buffer = buffer.data();
        urb.buffer_length = static_cast<int>(buffer.size());
    }

    Bytes buffer;

private:
    std::unique_ptr<usbdevfs_urb> m_urb = std::make_unique<usbdevfs_urb>(); // it has an open end

public:
    usbdevfs_urb &urb = *m_urb;
};

} // namespace sim
