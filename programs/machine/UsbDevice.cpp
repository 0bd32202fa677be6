#include "programs/machine/UsbDevice.h"

#include <cstdio>
#include <cstdlib>

namespace {

const char *const devices = "/sys/bus/usb/devices/";

} // namespace

std::string usbAttribute(const Machine &machine, const std::string &place, const char *which) {
    return machine.line(devices + place + "/" + which).value_or("");
}

std::string usbNodeOf(const std::string &place, const Machine &machine) {
    char text[64];
    std::snprintf(text, sizeof text, "/dev/bus/usb/%03d/%03d",
                  std::atoi(usbAttribute(machine, place, "busnum").c_str()),
                  std::atoi(usbAttribute(machine, place, "devnum").c_str()));
    return text;
}

std::string dfuInterfaceOf(const std::string &place, const Machine &machine) {
    for (const std::string &entry : machine.names(devices))
        if (entry.rfind(place + ":", 0) == 0 && usbAttribute(machine, entry, "bInterfaceClass") == "fe" &&
            usbAttribute(machine, entry, "bInterfaceSubClass") == "01")
            return entry;
    return {};
}

bool isDfuDevice(const std::string &place, const Machine &machine) {
    return !dfuInterfaceOf(place, machine).empty();
}
