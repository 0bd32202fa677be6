#include "libs/zvbl/transport/UsbDevices.h"

#include <array>
#include <cstdlib>
#include <mutex>

#include <libusb.h>

#include "libs/zvbl/Trace.h"

namespace zvbl {
namespace {

struct Number {
    std::optional<UsbIdentity> device;
    bool restarts = false;
};

struct Numbers {
    std::mutex mutex;
    std::array<Number, mostUsbDevices> all;
};

Numbers &numbers() {
    static Numbers numbers;
    return numbers;
}

bool isNumber(int number) {
    return number >= 0 && static_cast<std::size_t>(number) < mostUsbDevices;
}

struct Found {
    UsbRow row;
    UsbIdentity identity;
};

// A device that may not be opened counts: the open tells of it, and not the list. One that leaves in this
// moment does not.
std::optional<Found> look(const UsbTarget &target) {
    UsbHandle handle(target);
    if (handle.error() == LIBUSB_ERROR_NO_DEVICE)
        return std::nullopt;
    UsbIdentity identity{target.place, ""};
    if (handle.error() != 0) {
        const std::string text = "usb " + target.place.name() + " cannot be opened: " + usbErrorText(handle.error());
        return Found{{target.vendor, target.product, text}, identity};
    }
    identity.serial = handle.text(target.serialText);
    const std::string text = describeUsb(identity, handle.text(target.productText));
    return Found{{target.vendor, target.product, text}, identity};
}

// Whether ZVBL_DFU leaves this device in the list: it names its place or its serial number, or nothing.
bool isWanted(const UsbIdentity &device) {
    const char *wanted = std::getenv("ZVBL_DFU");
    return wanted == nullptr || *wanted == '\0' || device.place.name() == wanted || device.serial == wanted;
}

void give(const std::vector<Found> &found) {
    Numbers &known = numbers();
    const std::lock_guard<std::mutex> lock(known.mutex);
    for (std::size_t i = 0; i < mostUsbDevices; ++i)
        if (!known.all[i].restarts)
            known.all[i].device = i < found.size() ? std::optional(found[i].identity) : std::nullopt;
}

} // namespace

Status listUsbDevices(std::vector<UsbRow> &rows) {
    Trace trace("dfu", "USB DFU");
    const UsbBus bus;
    std::vector<Found> found;
    for (const UsbTarget &target : bus.targets()) {
        std::optional<Found> device = look(target);
        if (!device || found.size() == mostUsbDevices)
            continue;
        if (!isWanted(device->identity)) {
            trace.remark("passed over: " + device->row.text);
            continue;
        }
        trace.remark("device " + std::to_string(found.size()) + ": " + device->row.text);
        rows.push_back(device->row);
        found.push_back(std::move(*device));
    }
    give(found);
    if (!bus.works())
        trace.remark("no USB: " + bus.obstacle());
    else if (found.empty())
        trace.remark("no device");
    return bus.works() ? Status::ok : Status::cantOpen;
}

std::optional<UsbIdentity> usbDeviceOf(int number) {
    if (!isNumber(number))
        return std::nullopt;
    Numbers &known = numbers();
    const std::lock_guard<std::mutex> lock(known.mutex);
    return known.all[static_cast<std::size_t>(number)].device;
}

void expectUsbRestart(int number, const UsbIdentity &device) {
    Numbers &known = numbers();
    const std::lock_guard<std::mutex> lock(known.mutex);
    known.all[static_cast<std::size_t>(number)] = {device, true};
}

void endUsbRestart(int number) {
    Numbers &known = numbers();
    const std::lock_guard<std::mutex> lock(known.mutex);
    known.all[static_cast<std::size_t>(number)].restarts = false;
}

std::string describeUsb(const UsbIdentity &device, const std::string &productName) {
    std::string text = "usb " + device.place.name();
    if (!device.serial.empty())
        text += " serial " + device.serial;
    if (!productName.empty())
        text += " " + productName;
    return text;
}

} // namespace zvbl
