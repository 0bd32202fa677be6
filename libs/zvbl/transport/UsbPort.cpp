#include "libs/zvbl/transport/UsbPort.h"

#include <algorithm>
#include <thread>

#include <libusb.h>
#include <unistd.h>

#include "libs/zvbl/wire/Wire.h"

namespace zvbl {
namespace {

constexpr std::uint8_t toDevice = LIBUSB_REQUEST_TYPE_CLASS | LIBUSB_RECIPIENT_INTERFACE;
constexpr std::uint8_t fromDevice = toDevice | LIBUSB_ENDPOINT_IN;
constexpr std::size_t shortestTransfer = 8; // of any control endpoint
// A cable that is pulled shows as a damaged transfer first, and a moment later as a device less.
constexpr auto unplugShows = std::chrono::milliseconds(300);
constexpr auto lookEvery = std::chrono::milliseconds(20);

// libusb takes 0 for no limit.
unsigned milliseconds(Duration timeout) {
    constexpr auto longest = std::chrono::milliseconds(std::chrono::hours(24));
    const auto rounded = std::chrono::ceil<std::chrono::milliseconds>(timeout);
    return static_cast<unsigned>(std::clamp(rounded, std::chrono::milliseconds(1), longest).count());
}

// The setup packet as it travels, low bytes first.
Bytes setupPacket(std::uint8_t requestType, std::uint8_t request, std::uint16_t value, std::uint16_t index,
                  std::size_t length) {
    const auto low = [](std::size_t number) { return static_cast<std::uint8_t>(number); };
    return {requestType, request,          low(value),  low(value >> 8U),
            low(index),  low(index >> 8U), low(length), low(length >> 8U)};
}

} // namespace

bool isUsbSetting(const LinkSettings &settings) {
    return settings.portNumber >= 0 && static_cast<std::size_t>(settings.portNumber) < mostUsbDevices;
}

UsbPort::~UsbPort() {
    if (!m_claimed)
        return;
    libusb_release_interface(m_handle->get(), m_dfu.number);
    m_trace.remark("closed");
}

Status UsbPort::open(const LinkSettings &settings) {
    m_number = settings.portNumber;
    const std::optional<UsbIdentity> expected = usbDeviceOf(m_number);
    if (!expected)
        return cannotOpen("no device has the number " + std::to_string(m_number));
    m_bus = std::make_unique<UsbBus>();
    const UsbTarget *target = m_bus->find(expected->place);
    if (!target)
        return cannotOpen("usb " + expected->place.name() + " is not there");
    if (const Status status = take(*target, *expected); status != Status::ok)
        return status;
    endUsbRestart(m_number);
    m_trace.remark("open " + describeUsb(m_identity, m_handle->text(target->productText)) + ", wTransferSize " +
                   std::to_string(m_dfu.transferSize));
    return Status::ok;
}

Status UsbPort::take(const UsbTarget &target, const UsbIdentity &expected) {
    m_dfu = target.dfu;
    if (m_dfu.version != wire::dfuVersion || m_dfu.transferSize < shortestTransfer)
        return cannotOpen("its functional descriptor is none of a bootloader");
    m_handle = std::make_unique<UsbHandle>(target);
    if (m_handle->error() != 0)
        return cannotOpen(usbErrorText(m_handle->error()));
    m_identity = {target.place, m_handle->text(target.serialText)};
    if (!m_identity.isThatOf(expected))
        return cannotOpen("usb " + target.place.name() + " is another device now");
    m_node = "/sys/bus/usb/devices/" + target.place.name();
    m_hasNode = access(m_node.c_str(), F_OK) == 0;
    return claim();
}

Status UsbPort::claim() {
    if (const int error = libusb_claim_interface(m_handle->get(), m_dfu.number); error != 0)
        return cannotOpen(usbErrorText(error));
    m_claimed = true;
    if (m_dfu.onlyAlternate)
        return Status::ok;
    const int error = libusb_set_interface_alt_setting(m_handle->get(), m_dfu.number, m_dfu.alternate);
    return error == 0 ? Status::ok : cannotOpen(usbErrorText(error));
}

Status UsbPort::cannotOpen(const std::string &why) {
    m_trace.remark("cannot open: " + why);
    return Status::cantOpen;
}

Status UsbPort::reconfigure(const LinkSettings &) {
    return Status::ok;
}

Status UsbPort::setLine(ControlLine, bool) {
    m_trace.remark("USB has no control lines");
    return Status::gone;
}

Status UsbPort::send(DfuRequest request, std::uint16_t value, Bytes data, Duration timeout) {
    return transfer(toDevice, request, value, data, timeout);
}

Status UsbPort::fetch(DfuRequest request, std::uint16_t value, std::size_t size, Bytes &data, Duration timeout) {
    data.assign(size, 0);
    return transfer(fromDevice, request, value, data, timeout);
}

// Every exchange with the device goes through here.
Status UsbPort::transfer(std::uint8_t requestType, DfuRequest request, std::uint16_t value, Bytes &data,
                         Duration timeout) {
    if (m_gone)
        return Status::gone;
    const bool in = requestType & LIBUSB_ENDPOINT_IN;
    const auto code = static_cast<std::uint8_t>(request);
    Bytes sent = setupPacket(requestType, code, value, m_dfu.number, data.size());
    if (!in)
        sent.insert(sent.end(), data.begin(), data.end());
    m_trace.sent(sent.data(), sent.size());
    const int count = libusb_control_transfer(m_handle->get(), requestType, code, value, m_dfu.number, data.data(),
                                              static_cast<std::uint16_t>(data.size()), milliseconds(timeout));
    if (count < 0)
        return judge(count);
    if (!in)
        return static_cast<std::size_t>(count) == data.size() ? Status::ok : judge(LIBUSB_ERROR_IO);
    data.resize(static_cast<std::size_t>(count));
    m_trace.received(data.data(), data.size());
    return Status::ok;
}

Status UsbPort::judge(int error) {
    if (error == LIBUSB_ERROR_NO_MEM)
        throw std::bad_alloc();
    if (error == LIBUSB_ERROR_PIPE) {
        m_trace.remark("stalled");
        return Status::refused;
    }
    if (error == LIBUSB_ERROR_TIMEOUT) {
        m_trace.remark("no answer in time");
        return Status::noAnswer;
    }
    m_gone = error == LIBUSB_ERROR_NO_DEVICE || vanishesWithin(unplugShows);
    m_trace.remark(m_gone ? "the device is gone" : "a damaged transfer: " + usbErrorText(error));
    return m_gone ? Status::gone : Status::noAnswer;
}

bool UsbPort::hasVanished() const {
    return m_hasNode && access(m_node.c_str(), F_OK) != 0;
}

bool UsbPort::vanishesWithin(Duration time) {
    const TimePoint until = Clock::now() + time;
    while (!hasVanished()) {
        if (Clock::now() >= until)
            return false;
        std::this_thread::sleep_for(lookEvery);
    }
    return true;
}

Status UsbPort::wait(Duration time) {
    const TimePoint until = Clock::now() + time;
    for (TimePoint now = Clock::now(); now < until; now = Clock::now()) {
        std::this_thread::sleep_for(std::min<Duration>(until - now, lookEvery));
        // After the time the device may have left in a reset: the request that follows tells.
        if (Clock::now() < until && hasVanished()) {
            m_gone = true;
            m_trace.remark("the device is gone");
            return Status::gone;
        }
    }
    return Status::ok;
}

void UsbPort::expectRestart() {
    expectUsbRestart(m_number, m_identity);
}

void UsbPort::endRestart() {
    endUsbRestart(m_number);
}

} // namespace zvbl
