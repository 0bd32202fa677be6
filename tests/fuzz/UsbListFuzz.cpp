// The list of USB devices, with devices that say anything about themselves. libusb reads what they send; here it hands
// out records that no device of sound mind makes.

#include <algorithm>
#include <array>
#include <memory>

#include <libusb.h>

#include "link/ZVBLLIB.h"
#include "tests/fuzz/Target.h"

struct libusb_device {
    libusb_device_descriptor descriptor;
    std::uint8_t bus;
    std::vector<std::uint8_t> ports;
    libusb_config_descriptor config;
    std::vector<libusb_interface> interfaces;
    std::vector<std::vector<libusb_interface_descriptor>> settings;
    std::vector<std::vector<std::uint8_t>> extras;
    std::string text;
    int refusal;
};

namespace {

constexpr BYTE usbDfu = 1;
constexpr std::size_t mostDevices = 99;
constexpr unsigned short vendor = 0x1209;

std::vector<std::unique_ptr<libusb_device>> devices;

// Length fields of descriptors are as they come; `extra_length` is libusb's own, and right.
void addInterface(libusb_device &device, fuzz::Input &input) {
    std::vector<libusb_interface_descriptor> settings(input.byte() % 3);
    for (libusb_interface_descriptor &setting : settings) {
        const std::uint8_t kind = input.byte();
        setting = {};
        setting.bInterfaceNumber = kind & 3;
        setting.bAlternateSetting = kind >> 2 & 3;
        setting.bInterfaceClass = kind & 0x80 ? input.byte() : 0xFE;
        setting.bInterfaceSubClass = 1;
        setting.bInterfaceProtocol = kind & 0x40 ? input.byte() : 2;
        device.extras.push_back(input.bytes(input.byte() % 32));
        setting.extra = device.extras.back().data();
        setting.extra_length = static_cast<int>(device.extras.back().size());
    }
    device.settings.push_back(std::move(settings));
    device.interfaces.push_back({device.settings.back().data(), static_cast<int>(device.settings.back().size())});
}

std::unique_ptr<libusb_device> makeDevice(fuzz::Input &input) {
    auto device = std::make_unique<libusb_device>();
    const std::uint8_t kind = input.byte();
    device->descriptor.idVendor = kind & 1 ? static_cast<std::uint16_t>(input.word()) : vendor;
    device->descriptor.idProduct = kind & 4 ? static_cast<std::uint16_t>(input.word()) : 1;
    device->descriptor.iProduct = kind >> 3 & 1;
    device->descriptor.iSerialNumber = kind >> 4 & 2;
    device->bus = input.byte();
    device->ports = input.bytes(input.byte() % 8);
    const std::size_t interfaces = input.byte() % 4;
    for (std::size_t i = 0; i < interfaces; ++i)
        addInterface(*device, input);
    device->config.bNumInterfaces = static_cast<std::uint8_t>(device->interfaces.size());
    device->config.interface = device->interfaces.data();
    const std::vector<std::uint8_t> text = input.bytes(input.byte());
    device->text.assign(text.begin(), text.end());
    device->refusal = kind & 0x80 ? LIBUSB_ERROR_ACCESS : 0;
    return device;
}

bool isFree(const char *text, std::size_t length) {
    return std::find(text, text + length, '\0') != text + length;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Input input(data, size);
    devices.clear();
    while (!input.empty() && devices.size() < 120)
        devices.push_back(makeDevice(input));
    TARGET_SetComIntType(usbDfu);
    signed char count = -1;
    std::array<unsigned short, mostDevices> vendorIds{};
    std::array<unsigned short, mostDevices> productIds{};
    std::vector<TDeviceInfo> info(mostDevices);
    const BYTE status = ZVBL_GetZVDeviceList(&count, vendorIds.data(), productIds.data(), info.data());
    fuzz::require(status != 0 || (count >= 0 && static_cast<std::size_t>(count) <= devices.size()),
                  "no more devices are listed than there are");
    for (int i = 0; status == 0 && i < count; ++i)
        fuzz::require(isFree(reinterpret_cast<const char *>(&info[static_cast<std::size_t>(i)]), sizeof(TDeviceInfo)),
                      "a text has its end");
    return 0;
}

// libusb, as far as it is used here.
extern "C" {

int libusb_init(libusb_context **context) {
    static char one;
    *context = reinterpret_cast<libusb_context *>(&one);
    return 0;
}
void libusb_exit(libusb_context *) {}
int libusb_set_option(libusb_context *, libusb_option, ...) {
    return 0;
}
ssize_t libusb_get_device_list(libusb_context *, libusb_device ***list) {
    *list = new libusb_device *[devices.size() + 1]();
    std::transform(devices.begin(), devices.end(), *list, [](const auto &device) { return device.get(); });
    return static_cast<ssize_t>(devices.size());
}
void libusb_free_device_list(libusb_device **list, int) {
    delete[] list;
}
int libusb_get_device_descriptor(libusb_device *device, libusb_device_descriptor *descriptor) {
    *descriptor = device->descriptor;
    return 0;
}
int libusb_get_active_config_descriptor(libusb_device *device, libusb_config_descriptor **config) {
    *config = &device->config;
    return 0;
}
void libusb_free_config_descriptor(libusb_config_descriptor *) {}
std::uint8_t libusb_get_bus_number(libusb_device *device) {
    return device->bus;
}
int libusb_get_port_numbers(libusb_device *device, std::uint8_t *ports, int room) {
    if (static_cast<std::size_t>(room) < device->ports.size())
        return LIBUSB_ERROR_OVERFLOW;
    std::copy(device->ports.begin(), device->ports.end(), ports);
    return static_cast<int>(device->ports.size());
}
int libusb_open(libusb_device *device, libusb_device_handle **handle) {
    *handle = reinterpret_cast<libusb_device_handle *>(device);
    return device->refusal;
}
void libusb_close(libusb_device_handle *) {}
int libusb_get_string_descriptor_ascii(libusb_device_handle *handle, std::uint8_t, unsigned char *text, int room) {
    const std::string &own = reinterpret_cast<libusb_device *>(handle)->text;
    const std::size_t length = std::min(own.size(), static_cast<std::size_t>(room) - 1);
    std::copy_n(own.begin(), length, text);
    text[length] = '\0';
    return static_cast<int>(length);
}
}
