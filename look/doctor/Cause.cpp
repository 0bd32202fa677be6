#include "look/doctor/Cause.h"

#include <algorithm>
#include <iterator>

namespace {

// clang-format off
constexpr CauseRow table[] = {
    {Cause::noPort, "node", "plug it in, or take a name of \"zv32-look doctor\""},
    {Cause::moduleMissing, "module", "modprobe %1; for every start: echo %1 > /etc/modules-load.d/%1.conf"},
    {Cause::adapterWithoutModule, "module", "modprobe %1"},
    {Cause::usbNodeMissing, "node", "give this place the directory /dev/bus/usb, as a container needs it"},
    {Cause::usbNotAuthorised, "authorised", "echo 1 > %1"},
    {Cause::spiUnbound, "driver", "echo spidev > %1/driver_override; echo %2 > /sys/bus/spi/drivers/spidev/bind"},
    {Cause::canMissing, "module", "modprobe can_raw"},
    {Cause::notAPort, "node", "take a name of \"zv32-look doctor\""},
    {Cause::noGroup, "permission", "a udev rule: SUBSYSTEM==\"%1\", KERNEL==\"%2\", MODE=\"0660\", GROUP=\"plugdev\""},
    {Cause::notInGroup, "permission", "usermod -aG %1 %2, and log in again"},
    {Cause::oldLogin, "permission", "log in again, or: newgrp %1"},
    {Cause::usbNoRule, "permission",
     "a udev rule: SUBSYSTEM==\"usb\", ATTR{idVendor}==\"%1\", ATTR{idProduct}==\"%2\", MODE=\"0660\", "
     "GROUP=\"plugdev\", TAG+=\"uaccess\""},
    {Cause::loginPrompt, "held by", "systemctl disable --now serial-getty@%1"},
    {Cause::grabberHolds, "held by", "%1"},
    {Cause::held, "held by", "close it"},
    {Cause::heldUnseen, "held by", "as root: zv32-look doctor %1, which sees the processes of all users"},
    {Cause::kernelConsole, "console", "take console=%1 out of the kernel's command line, and start anew"},
    {Cause::usbDriver, "driver", "echo %1 > %2/unbind"},
    {Cause::canDown, "interface", "ip link set %1 up type can bitrate 250000"},
    {Cause::canBusOff, "interface", "ip link set %1 type can restart; then look for a wrong rate or a cable that is crossed"},
    {Cause::smbusOnly, "bus", "take another adapter"},
    {Cause::addressTaken, "address", "echo %1 > %2/unbind"},
    {Cause::gone, "bootloader", "plug it in again"},
    {Cause::talksUnasked, "bootloader", "reset the chip with BOOT set: its program runs"},
    {Cause::echo, "bootloader", "TX and RX are joined, or something echoes: look at the cable"},
    {Cause::wrongRate, "bootloader", "wrong rate or parity: reset the chip, and try --br and --pr; look at ground"},
    {Cause::unsteady, "bootloader", "look at ground and supply; try a lower rate"},
    {Cause::busStuck, "bus", "reset the chip: a line of the bus is held; look at the pull-ups"},
    {Cause::nothingAtAddress, "address", "reset the chip with BOOT set; look at SDA, SCL, ground and the pull-ups"},
    {Cause::canNotAcknowledged, "bootloader",
     "reset the chip with BOOT set; look at the rate of the bus, its 120 ohm at both ends, and the transceiver"},
    {Cause::noControlLines, "control lines", "press reset by hand, with BOOT set: --auto moves nothing here"},
    {Cause::silence, "bootloader", "reset the chip with BOOT set; look at the wires"},
    {Cause::grabberRuns, "%1", "%2"},
    {Cause::latency, "latency", "echo 1 > %1"},
};
// clang-format on

const CauseRow &rowOf(Cause cause) {
    return table[static_cast<std::size_t>(cause)]; // a test holds the order
}

std::string filled(std::string text, const std::vector<std::string> &words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string place = "%" + std::to_string(i + 1);
        for (std::size_t at = text.find(place); at != std::string::npos; at = text.find(place, at + words[i].size()))
            text.replace(at, place.size(), words[i]);
    }
    return text;
}

} // namespace

const std::vector<CauseRow> &causeRows() {
    static const std::vector<CauseRow> rows(std::begin(table), std::end(table));
    return rows;
}

void Diagnosis::good(const std::string &check, const std::string &measured) {
    m_checks.push_back({nullptr, Mark::good, check, measured, {}});
}

void Diagnosis::note(const std::string &check, const std::string &measured) {
    m_checks.push_back({nullptr, Mark::note, check, measured, {}});
}

void Diagnosis::found(Cause cause, const std::string &measured, const std::vector<std::string> &words) {
    const CauseRow &row = rowOf(cause);
    m_checks.push_back({&row, Mark::error, filled(row.check, words), measured, filled(row.cure, words)});
}

bool Diagnosis::has(Cause cause) const {
    return std::any_of(m_checks.begin(), m_checks.end(),
                       [cause](const Check &check) { return check.row != nullptr && check.row->cause == cause; });
}

bool Diagnosis::isHealthy() const {
    return first() == nullptr;
}

const Check *Diagnosis::first() const {
    const Check *first = nullptr;
    for (const Check &check : m_checks)
        if (check.row != nullptr && (first == nullptr || check.row->cause < first->row->cause))
            first = &check;
    return first;
}
