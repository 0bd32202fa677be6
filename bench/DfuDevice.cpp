#include "bench/DfuDevice.h"

namespace bench {
namespace {

constexpr unsigned patience = 1000; // ms
constexpr unsigned char dfuClass = 0xFE;
constexpr unsigned char toInterface = LIBUSB_REQUEST_TYPE_CLASS | LIBUSB_RECIPIENT_INTERFACE;
constexpr unsigned char fromInterface = toInterface | LIBUSB_ENDPOINT_IN;

// Null without any.
libusb_device_handle *openFirst(libusb_device **devices) {
    for (; *devices; ++devices) {
        libusb_config_descriptor *config = nullptr;
        if (libusb_get_active_config_descriptor(*devices, &config) != 0)
            continue;
        const bool dfu = config->bNumInterfaces > 0 && config->interface[0].num_altsetting > 0 &&
                         config->interface[0].altsetting[0].bInterfaceClass == dfuClass;
        libusb_free_config_descriptor(config);
        libusb_device_handle *handle = nullptr;
        if (dfu && libusb_open(*devices, &handle) == 0)
            return handle;
    }
    return nullptr;
}

} // namespace

DfuDevice::DfuDevice() {
    libusb_init(nullptr);
    libusb_device **devices = nullptr;
    if (libusb_get_device_list(nullptr, &devices) < 0)
        return;
    m_handle = openFirst(devices);
    libusb_free_device_list(devices, 1);
    if (m_handle && libusb_claim_interface(m_handle, 0) != 0) {
        libusb_close(m_handle);
        m_handle = nullptr;
    }
}

DfuDevice::~DfuDevice() {
    if (m_handle)
        libusb_close(m_handle);
    libusb_exit(nullptr);
}

bool DfuDevice::send(unsigned char request, unsigned short value, unsigned char *data, std::uint16_t size) const {
    return libusb_control_transfer(m_handle, toInterface, request, value, 0, data, size, patience) == size;
}

bool DfuDevice::fetch(unsigned char request, unsigned short value, unsigned char *data, std::uint16_t size) const {
    return libusb_control_transfer(m_handle, fromInterface, request, value, 0, data, size, patience) == size;
}

} // namespace bench
