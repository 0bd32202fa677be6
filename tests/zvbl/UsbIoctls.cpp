// The kernel's side of a device node of USB, and the device behind it.

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>

#include "tests/zvbl/UsbScene.h"

using zvbl::Bytes;

namespace {

constexpr auto emptyReap = std::chrono::milliseconds(1); // the node always says that it is ready
constexpr std::size_t setupSize = 8;

std::string stringDescriptor(const std::string &text) {
    Bytes bytes{static_cast<std::uint8_t>(2 + 2 * text.size()), 3};
    for (const char letter : text)
        bytes.insert(bytes.end(), {static_cast<std::uint8_t>(letter), 0});
    return hex(bytes);
}

} // namespace

gboolean UsbDevice::onIoctl(UMockdevIoctlBase *, UMockdevIoctlClient *client, gpointer self) {
    int error = 0;
    const int result = static_cast<UsbDevice *>(self)->serve(client, error);
    umockdev_ioctl_client_complete(client, result, error);
    return TRUE;
}

int UsbDevice::serve(UMockdevIoctlClient *client, int &error) {
    UMockdevIoctlData *arg = umockdev_ioctl_client_get_arg(client);
    const std::lock_guard<std::mutex> lock(m_mutex);
    int result = 0;
    switch (umockdev_ioctl_client_get_request(client)) {
    case USBDEVFS_GET_CAPABILITIES: {
        guint8 none[sizeof(__u32)] = {};
        UMockdevIoctlData *answer = umockdev_ioctl_data_resolve(arg, 0, sizeof none, nullptr);
        umockdev_ioctl_data_update(answer, 0, none, sizeof none);
        umockdev_ioctl_data_unref(answer);
        break;
    }
    case USBDEVFS_CLAIMINTERFACE: result = !m_pluggedIn ? -ENODEV : facts.heldByAnother ? -EBUSY : 0; break;
    case USBDEVFS_RELEASEINTERFACE:
    case USBDEVFS_SETINTERFACE: result = m_pluggedIn ? 0 : -ENODEV; break;
    case USBDEVFS_SUBMITURB: result = submit(arg); break;
    case USBDEVFS_REAPURB:
    case USBDEVFS_REAPURBNDELAY: result = reap(arg); break;
    case USBDEVFS_DISCARDURB: result = discard(); break;
    default: result = -ENOTTY;
    }
    error = result < 0 ? -result : 0;
    return result < 0 ? -1 : result;
}

int UsbDevice::submit(UMockdevIoctlData *arg) {
    if (!m_pluggedIn)
        return -ENODEV;
    release();
    m_urb.urb = umockdev_ioctl_data_resolve(arg, 0, sizeof(usbdevfs_urb), nullptr);
    int length = 0;
    std::memcpy(&length, m_urb.urb->data + offsetof(usbdevfs_urb, buffer_length), sizeof length);
    m_urb.buffer =
        umockdev_ioctl_data_resolve(m_urb.urb, offsetof(usbdevfs_urb, buffer), static_cast<gsize>(length), nullptr);
    perform();
    return 0;
}

void UsbDevice::perform() {
    const Bytes buffer(m_urb.buffer->data, m_urb.buffer->data + m_urb.buffer->data_len);
    const bool in = buffer[0] & 0x80;
    const Bytes host(buffer.begin(), in ? buffer.begin() + setupSize : buffer.end());
    const bool standard = (buffer[0] & 0x60) == 0;
    const std::string answer = standard ? standardAnswer(host) : scriptedAnswer(host);
    const std::size_t wished = buffer[6] | buffer[7] << 8U;
    if (answer == usbWords::silence)
        return;
    if (answer == usbWords::stall)
        return finishUrb(-EPIPE, {});
    if (answer == usbWords::damaged || answer == usbWords::pulled) {
        if (answer == usbWords::pulled)
            leaveLater(60);
        return finishUrb(-EPROTO, {});
    }
    if (answer == usbWords::gone) {
        m_vanishing = true;
        leaveLater(1);
        return finishUrb(-ENODEV, {});
    }
    Bytes data = in ? hex(answer) : Bytes(host.begin() + setupSize, host.end());
    data.resize(std::min(data.size(), wished));
    finishUrb(0, data);
}

std::string UsbDevice::standardAnswer(const Bytes &setup) const {
    if (facts.mute)
        return usbWords::silence;
    if (setup[1] != 6 || setup[3] != 3)
        return usbWords::stall;
    switch (setup[2]) {
    case 0: return "04 03 09 04";
    case 2: return stringDescriptor(facts.name);
    case 3: return stringDescriptor(facts.serial);
    default: return usbWords::stall;
    }
}

std::string UsbDevice::scriptedAnswer(const Bytes &host) {
    const auto now = std::chrono::steady_clock::now();
    const std::string seen = hex(host);
    constexpr std::size_t telling = 80; // letters of a complaint about a block
    if (m_turn >= m_script.size()) {
        if (m_complaint.empty())
            m_complaint = "after the script: " + seen;
        return usbWords::stall;
    }
    const UsbTurn &turn = m_script[m_turn];
    if (m_complaint.empty() && seen != turn.host)
        m_complaint = "turn " + std::to_string(m_turn) + ": " + seen.substr(0, telling) + " in place of " +
                      turn.host.substr(0, telling);
    if (m_complaint.empty() && now - m_answered < std::chrono::milliseconds(turn.gapMs))
        m_complaint = "turn " + std::to_string(m_turn) + " came too early";
    if (!m_complaint.empty())
        return usbWords::stall;
    if (!m_endless || m_turn + 1 < m_script.size())
        ++m_turn;
    m_answered = now;
    if (turn.unplugMs)
        leaveLater(turn.unplugMs);
    return turn.device;
}

void UsbDevice::finishUrb(int status, Bytes data) {
    m_urb.status = status;
    m_urb.data = std::move(data);
    m_urb.done = true;
}

// The host's memory can be written while the host waits in a call only.
void UsbDevice::handBack() {
    const bool in = m_urb.buffer->data[0] & 0x80;
    if (in && !m_urb.data.empty())
        umockdev_ioctl_data_update(m_urb.buffer, setupSize, m_urb.data.data(), static_cast<gint>(m_urb.data.size()));
    const auto put = [this](std::size_t at, int value) {
        umockdev_ioctl_data_update(m_urb.urb, at, reinterpret_cast<guint8 *>(&value), sizeof value);
    };
    put(offsetof(usbdevfs_urb, status), m_urb.status);
    put(offsetof(usbdevfs_urb, actual_length), static_cast<int>(m_urb.data.size()));
}

int UsbDevice::reap(UMockdevIoctlData *arg) {
    if (!m_urb.done) {
        if (m_vanishing)
            return -ENODEV;
        m_mutex.unlock();
        std::this_thread::sleep_for(emptyReap);
        m_mutex.lock();
        return -EAGAIN;
    }
    handBack();
    UMockdevIoctlData *answer = umockdev_ioctl_data_resolve(arg, 0, sizeof(void *), nullptr);
    umockdev_ioctl_data_set_ptr(answer, 0, m_urb.urb);
    umockdev_ioctl_data_unref(answer);
    release();
    return 0;
}

int UsbDevice::discard() {
    if (!m_urb.urb || m_urb.done)
        return -EINVAL;
    finishUrb(-ENOENT, {});
    return 0;
}

void UsbDevice::release() {
    if (m_urb.buffer)
        umockdev_ioctl_data_unref(m_urb.buffer);
    if (m_urb.urb)
        umockdev_ioctl_data_unref(m_urb.urb);
    m_urb = {};
}
