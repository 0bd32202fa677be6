#include "tests/zvbl/FakeUsb.h"

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"

FakeUsb *fakeUsb = nullptr;

FakeUsb::FakeUsb() : functional{9, 0x21, 0x03, 0, 0, 0x00, 0x08, 0x1A, 0x01} {
    device.idVendor = wire::dfuVendorId;
    device.idProduct = wire::dfuProductId;
    for (libusb_interface_descriptor &setting : settings) {
        setting.bInterfaceClass = 0xFE;
        setting.bInterfaceSubClass = 1;
        setting.bInterfaceProtocol = 2;
    }
    for (libusb_interface &interface : interfaces) {
        interface.altsetting = settings;
        interface.num_altsetting = 1;
    }
    configuration.bNumInterfaces = 1;
    configuration.interface = interfaces;
}

namespace {

int counted(int error) {
    fakeUsb->held += error == 0 ? 1 : 0;
    return error;
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

int __wrap_libusb_init(libusb_context **context) {
    *context = reinterpret_cast<libusb_context *>(fakeUsb);
    return counted(fakeUsb->init);
}
void __wrap_libusb_exit(libusb_context *) {
    --fakeUsb->held;
}
int __wrap_libusb_set_option(libusb_context *, int, ...) {
    return 0;
}
ssize_t __wrap_libusb_get_device_list(libusb_context *, libusb_device ***devices) {
    static libusb_device *all[] = {nullptr};
    if (fakeUsb->list == 0)
        *devices = all;
    return counted(fakeUsb->list) == 0 ? 1 : fakeUsb->list;
}
void __wrap_libusb_free_device_list(libusb_device **, int) {
    --fakeUsb->held;
}
int __wrap_libusb_get_device_descriptor(libusb_device *, libusb_device_descriptor *descriptor) {
    *descriptor = fakeUsb->device;
    return fakeUsb->describe;
}
int __wrap_libusb_get_active_config_descriptor(libusb_device *, libusb_config_descriptor **descriptor) {
    for (libusb_interface_descriptor &setting : fakeUsb->settings) {
        setting.extra = fakeUsb->functional.data();
        setting.extra_length = static_cast<int>(fakeUsb->functional.size());
    }
    *descriptor = &fakeUsb->configuration;
    return counted(fakeUsb->configure);
}
void __wrap_libusb_free_config_descriptor(libusb_config_descriptor *) {
    --fakeUsb->held;
}
int __wrap_libusb_get_port_numbers(libusb_device *, std::uint8_t *ports, int) {
    ports[0] = 2;
    return 1;
}
std::uint8_t __wrap_libusb_get_bus_number(libusb_device *) {
    return 1;
}
int __wrap_libusb_open(libusb_device *, libusb_device_handle **handle) {
    *handle = reinterpret_cast<libusb_device_handle *>(fakeUsb);
    return counted(fakeUsb->open);
}
void __wrap_libusb_close(libusb_device_handle *) {
    --fakeUsb->held;
}
int __wrap_libusb_get_string_descriptor_ascii(libusb_device_handle *, std::uint8_t, unsigned char *, int) {
    return LIBUSB_ERROR_NOT_FOUND;
}
int __wrap_libusb_claim_interface(libusb_device_handle *, int) {
    return counted(fakeUsb->claim);
}
int __wrap_libusb_release_interface(libusb_device_handle *, int) {
    --fakeUsb->held;
    return 0;
}
int __wrap_libusb_set_interface_alt_setting(libusb_device_handle *, int, int) {
    return fakeUsb->alternate;
}

int __wrap_libusb_control_transfer(libusb_device_handle *, std::uint8_t, std::uint8_t request, std::uint16_t,
                                   std::uint16_t, unsigned char *data, std::uint16_t length, unsigned) {
    const std::string asked = "request " + std::to_string(request);
    if (fakeUsb->transfers.empty() || fakeUsb->transfers.front().request != request) {
        fakeUsb->wrong += asked + " was not expected, ";
        return LIBUSB_ERROR_OTHER;
    }
    const UsbTransfer transfer = fakeUsb->transfers.front();
    fakeUsb->transfers.pop_front();
    if (transfer.error != 0)
        return transfer.error;
    if (transfer.data.empty())
        return length - transfer.less;
    std::copy(transfer.data.begin(), transfer.data.end(), data);
    return static_cast<int>(transfer.data.size());
}
}
#pragma GCC visibility pop
