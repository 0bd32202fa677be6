#pragma once

#include <cstdint>

#include <libusb.h>

namespace bench {

constexpr unsigned char dfuDownload = 1; // requests of USB DFU 1.1
constexpr unsigned char dfuUpload = 2;
constexpr unsigned char dfuGetStatus = 3;
constexpr unsigned char dfuGetState = 5;
constexpr unsigned char dfuAbort = 6;

// The first device with an interface of DFU, and that interface, as long as the object lives.
class DfuDevice {
public:
    DfuDevice();
    ~DfuDevice();
    DfuDevice(const DfuDevice &) = delete;
    DfuDevice &operator=(const DfuDevice &) = delete;

    bool isThere() const { return m_handle != nullptr; }

    // One control transfer; false when not all of its data went.
    bool send(unsigned char request, unsigned short value, unsigned char *data, std::uint16_t size) const;
    bool fetch(unsigned char request, unsigned short value, unsigned char *data, std::uint16_t size) const;

    libusb_device_handle *handle() const { return m_handle; }

private:
    libusb_device_handle *m_handle = nullptr;
};

} // namespace bench
