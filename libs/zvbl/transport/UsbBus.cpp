#include "libs/zvbl/transport/UsbBus.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>

#include <libusb.h>

#include "libs/zvbl/Text.h"
#include "libs/zvbl/wire/Wire.h"

namespace zvbl {
namespace {

// Which devices count as targets. Another maker's numbers are another row.
constexpr struct {
    std::uint16_t vendor;
    std::uint16_t product;
} targetNumbers[] = {
    {wire::dfuVendorId, wire::dfuProductId},
};

constexpr std::uint8_t dfuClass = LIBUSB_CLASS_APPLICATION;
constexpr std::uint8_t dfuSubclass = 0x01;
constexpr std::uint8_t dfuMode = 0x02; // the protocol; a device that runs its own program has 01
constexpr std::uint8_t dfuFunctional = 0x21;
constexpr std::size_t dfuFunctionalSize = 9;
constexpr int deepestPath = 7;
constexpr int longestText = 256;

using Configuration = std::unique_ptr<libusb_config_descriptor, void (*)(libusb_config_descriptor *)>;

bool isTarget(const libusb_device_descriptor &device) {
    const auto matches = [&](const auto &row) {
        return row.vendor == device.idVendor && row.product == device.idProduct;
    };
    return std::any_of(std::begin(targetNumbers), std::end(targetNumbers), matches);
}

std::uint16_t number16(const std::uint8_t *lowByteFirst) {
    return static_cast<std::uint16_t>(lowByteFirst[0] | lowByteFirst[1] << 8);
}

// The functional descriptor stands after the last of the alternate settings, or after each.
void readFunctional(const libusb_interface_descriptor &setting, DfuInterface &dfu) {
    const std::uint8_t *at = setting.extra;
    int left = setting.extra_length;
    while (left >= 2 && at[0] >= 2 && at[0] <= left) {
        if (at[1] == dfuFunctional && at[0] >= dfuFunctionalSize) {
            dfu.transferSize = number16(at + 5);
            dfu.version = number16(at + 7);
        }
        left -= at[0];
        at += at[0];
    }
}

std::optional<DfuInterface> findDfu(const libusb_interface &interface) {
    std::optional<DfuInterface> found;
    for (int i = 0; i < interface.num_altsetting && !found; ++i) {
        const libusb_interface_descriptor &setting = interface.altsetting[i];
        if (setting.bInterfaceClass == dfuClass && setting.bInterfaceSubClass == dfuSubclass &&
            setting.bInterfaceProtocol == dfuMode)
            found = DfuInterface{setting.bInterfaceNumber, setting.bAlternateSetting, interface.num_altsetting == 1};
    }
    for (int i = 0; i < interface.num_altsetting && found; ++i)
        readFunctional(interface.altsetting[i], *found);
    return found;
}

std::optional<DfuInterface> findDfu(libusb_device *device) {
    libusb_config_descriptor *read = nullptr;
    if (libusb_get_active_config_descriptor(device, &read) != 0)
        return std::nullopt;
    const Configuration configuration(read, libusb_free_config_descriptor);
    std::optional<DfuInterface> found;
    for (int i = 0; i < configuration->bNumInterfaces && !found; ++i)
        found = findDfu(configuration->interface[i]);
    return found;
}

UsbPlace placeOf(libusb_device *device) {
    std::uint8_t ports[deepestPath];
    const int count = libusb_get_port_numbers(device, ports, deepestPath);
    return {libusb_get_bus_number(device), Bytes(ports, ports + std::max(count, 0))};
}

std::optional<UsbTarget> describe(libusb_device *device) {
    libusb_device_descriptor descriptor{};
    if (libusb_get_device_descriptor(device, &descriptor) != 0 || !isTarget(descriptor))
        return std::nullopt;
    const std::optional<DfuInterface> dfu = findDfu(device);
    if (!dfu)
        return std::nullopt;
    return UsbTarget{
        placeOf(device), descriptor.idVendor, descriptor.idProduct, descriptor.iSerialNumber, descriptor.iProduct, *dfu,
        device};
}

} // namespace

std::string UsbPlace::name() const {
    std::string text = std::to_string(bus);
    char mark = '-';
    for (const std::uint8_t port : ports) {
        text += mark + std::to_string(port);
        mark = '.';
    }
    return text;
}

UsbBus::UsbBus() {
    if (const int error = libusb_init(&m_context); error != 0) {
        m_context = nullptr;
        m_obstacle = usbErrorText(error);
        return;
    }
    libusb_set_option(m_context, LIBUSB_OPTION_LOG_LEVEL, LIBUSB_LOG_LEVEL_NONE);
    const ssize_t count = libusb_get_device_list(m_context, &m_devices);
    for (ssize_t i = 0; i < count; ++i)
        if (std::optional<UsbTarget> target = describe(m_devices[i]))
            m_targets.push_back(std::move(*target));
    std::sort(m_targets.begin(), m_targets.end(),
              [](const UsbTarget &a, const UsbTarget &b) { return a.place < b.place; });
}

UsbBus::~UsbBus() {
    if (m_devices)
        libusb_free_device_list(m_devices, 1);
    if (m_context)
        libusb_exit(m_context);
}

const UsbTarget *UsbBus::find(const UsbPlace &place) const {
    const auto found = std::find_if(m_targets.begin(), m_targets.end(),
                                    [&](const UsbTarget &target) { return target.place == place; });
    return found == m_targets.end() ? nullptr : &*found;
}

UsbHandle::UsbHandle(const UsbTarget &target) : m_error(libusb_open(target.device, &m_handle)) {
    if (m_error != 0)
        m_handle = nullptr;
}

UsbHandle::~UsbHandle() {
    if (m_handle)
        libusb_close(m_handle);
}

std::string UsbHandle::text(std::uint8_t number) {
    if (number == 0 || m_mute)
        return "";
    unsigned char read[longestText];
    const int length = libusb_get_string_descriptor_ascii(m_handle, number, read, longestText);
    m_mute = length == LIBUSB_ERROR_TIMEOUT;
    return printable(std::string(read, read + std::max(length, 0)));
}

std::string usbErrorText(int error) {
    switch (error) {
    case LIBUSB_ERROR_ACCESS: return errorText(EACCES);
    case LIBUSB_ERROR_BUSY: return errorText(EBUSY);
    case LIBUSB_ERROR_NO_DEVICE: return errorText(ENODEV);
    default: return libusb_strerror(static_cast<libusb_error>(error));
    }
}

} // namespace zvbl
