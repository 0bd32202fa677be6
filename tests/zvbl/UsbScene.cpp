#include "tests/zvbl/UsbScene.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

using zvbl::Bytes;

namespace {

constexpr auto emptyReap = std::chrono::milliseconds(1); // the node always says that it is ready
constexpr std::size_t setupSize = 8;

Bytes low16(unsigned value) {
    return {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8)};
}

void append(Bytes &bytes, const Bytes &more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

std::string packed(const Bytes &bytes) {
    std::string text = hex(bytes);
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

std::string stringDescriptor(const std::string &text) {
    Bytes bytes{static_cast<std::uint8_t>(2 + 2 * text.size()), 3};
    for (const char letter : text)
        append(bytes, {static_cast<std::uint8_t>(letter), 0});
    return hex(bytes);
}

unsigned busOf(const std::string &place) {
    return static_cast<unsigned>(std::stoul(place));
}

std::string sysPathOf(const std::string &place) {
    std::string path = "/devices/usb" + std::to_string(busOf(place));
    for (std::size_t dot = place.find('.'); dot != std::string::npos; dot = place.find('.', dot + 1))
        path += "/" + place.substr(0, dot);
    return path + "/" + place;
}

std::string nodeName(unsigned bus, int number) {
    char name[40];
    std::snprintf(name, sizeof name, "bus/usb/%03u/%03d", bus, number);
    return name;
}

std::string record(const std::string &place, int number, const Bytes &descriptors) {
    const unsigned bus = busOf(place);
    const std::string content = packed(descriptors);
    return "P: " + sysPathOf(place) + "\nN: " + nodeName(bus, number) + "=" + content +
           "\nE: DEVTYPE=usb_device\nE: SUBSYSTEM=usb\nE: DEVNAME=/dev/" + nodeName(bus, number) +
           "\nE: BUSNUM=" + nodeName(bus, number).substr(8, 3) + "\nE: DEVNUM=" + nodeName(bus, number).substr(12) +
           "\nE: MAJOR=189\nE: MINOR=" + std::to_string(128 * (bus - 1) + static_cast<unsigned>(number) - 1) +
           "\nA: busnum=" + std::to_string(bus) + "\\n\nA: devnum=" + std::to_string(number) +
           "\\n\nA: speed=12\\n\nA: bConfigurationValue=1\\n\nH: descriptors=" + content + "\n";
}

void addRecord(UMockdevTestbed *testbed, const std::string &text) {
    GError *error = nullptr;
    if (!umockdev_testbed_add_from_string(testbed, text.c_str(), &error))
        g_error("cannot add a device: %s", error->message);
}

} // namespace

UsbScene::UsbScene() : m_testbed(umockdev_testbed_new()) {}

UsbScene::~UsbScene() {
    m_devices.clear();
    g_object_unref(m_testbed);
}

UsbDevice &UsbScene::add(const UsbDeviceFacts &facts) {
    m_devices.push_back(std::make_unique<UsbDevice>(*this, facts));
    m_devices.back()->plugIn();
    return *m_devices.back();
}

// A hub counts as a port of the way to what is plugged into it.
void UsbScene::addHub(const std::string &place) {
    if (std::find(m_hubs.begin(), m_hubs.end(), place) != m_hubs.end())
        return;
    m_hubs.push_back(place);
    const Bytes hub = hex("12 01 00 02 09 00 00 40 6B 1D 02 00 00 01 00 00 00 01 09 02 12 00 01 01 00 E0 00 "
                          "09 04 00 00 00 09 00 00 00");
    addRecord(m_testbed, record(place, 100 + static_cast<int>(m_hubs.size()), hub));
}

UsbDevice::UsbDevice(UsbScene &scene, UsbDeviceFacts deviceFacts)
    : facts(std::move(deviceFacts)), m_scene(scene), m_handler(umockdev_ioctl_base_new()) {
    g_signal_connect(m_handler, "handle-ioctl", G_CALLBACK(&UsbDevice::onIoctl), this);
    for (std::size_t dot = facts.place.find('.'); dot != std::string::npos; dot = facts.place.find('.', dot + 1))
        m_scene.addHub(facts.place.substr(0, dot));
}

UsbDevice::~UsbDevice() {
    awaitUnplugged();
    unplug();
    release();
    g_object_unref(m_handler);
}

std::string UsbDevice::node() const {
    return "/dev/" + nodeName(busOf(facts.place), facts.number);
}

std::string UsbDevice::sysPath() const {
    return "/sys" + sysPathOf(facts.place);
}

Bytes UsbDevice::deviceDescriptor() const {
    Bytes bytes = hex("12 01 00 02 00 00 00 40");
    append(bytes, low16(facts.vendor));
    append(bytes, low16(facts.product));
    append(bytes, hex("00 02 00"));
    append(bytes, {static_cast<std::uint8_t>(facts.name.empty() ? 0 : 2),
                   static_cast<std::uint8_t>(facts.serial.empty() ? 0 : 3), 1});
    return bytes;
}

Bytes UsbDevice::configuration() const {
    Bytes bytes = hex("09 02 00 00 01 01 00 80 32");
    for (unsigned i = 0; i < facts.alternates; ++i)
        append(bytes, {9, 4, static_cast<std::uint8_t>(facts.interface), static_cast<std::uint8_t>(i), 0, 0xFE, 1,
                       static_cast<std::uint8_t>(facts.protocol), 0});
    if (facts.functionalDescriptor) {
        append(bytes, hex("09 21 0B FF 00"));
        append(bytes, low16(facts.transferSize));
        append(bytes, low16(facts.dfuVersion));
    }
    bytes[2] = static_cast<std::uint8_t>(bytes.size());
    return bytes;
}

void UsbDevice::plugIn() {
    Bytes descriptors = deviceDescriptor();
    append(descriptors, configuration());
    addRecord(m_scene.testbed(), record(facts.place, facts.number, descriptors));
    GError *error = nullptr;
    if (!umockdev_testbed_attach_ioctl(m_scene.testbed(), node().c_str(), m_handler, &error))
        g_error("cannot serve a device: %s", error->message);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_pluggedIn = true;
    m_vanishing = false;
}

void UsbDevice::unplug() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_pluggedIn)
            return;
        m_pluggedIn = false;
        m_vanishing = true;
        if (m_urb.urb && !m_urb.done)
            finishUrb(-ENODEV, {});
    }
    umockdev_testbed_detach_ioctl(m_scene.testbed(), node().c_str(), nullptr);
    umockdev_testbed_uevent(m_scene.testbed(), sysPath().c_str(), "remove");
    umockdev_testbed_remove_device(m_scene.testbed(), sysPath().c_str());
}

void UsbDevice::awaitUnplugged() {
    if (m_leaving.joinable())
        m_leaving.join();
}

void UsbDevice::plugInAgain() {
    awaitUnplugged();
    unplug();
    ++facts.number;
    plugIn();
}

void UsbDevice::leaveLater(int milliseconds) {
    awaitUnplugged();
    m_leaving = std::thread([this, milliseconds] {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        unplug();
    });
}

void UsbDevice::play(UsbScript script) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_script = std::move(script);
    m_turn = 0;
    m_endless = false;
    m_complaint.clear();
    m_answered = {};
}

void UsbDevice::playForEver(UsbScript script) {
    play(std::move(script));
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_endless = true;
}

std::string UsbDevice::finish() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_complaint.empty() && !m_endless && m_turn < m_script.size())
        m_complaint = "turn " + std::to_string(m_turn) + " was not played: " + m_script[m_turn].host;
    return m_complaint;
}

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
    case USBDEVFS_CLAIMINTERFACE:
        result = facts.heldByAnother ? -EBUSY : 0;
        break;
    case USBDEVFS_RELEASEINTERFACE:
    case USBDEVFS_SETINTERFACE:
        break;
    case USBDEVFS_SUBMITURB:
        result = submit(arg);
        break;
    case USBDEVFS_REAPURB:
    case USBDEVFS_REAPURBNDELAY:
        result = reap(arg);
        break;
    case USBDEVFS_DISCARDURB:
        result = discard();
        break;
    default:
        result = -ENOTTY;
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
    m_urb.buffer = umockdev_ioctl_data_resolve(m_urb.urb, offsetof(usbdevfs_urb, buffer),
                                               static_cast<gsize>(length), nullptr);
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
    case 0:  return "04 03 09 04";
    case 2:  return stringDescriptor(facts.name);
    case 3:  return stringDescriptor(facts.serial);
    default: return usbWords::stall;
    }
}

std::string UsbDevice::scriptedAnswer(const Bytes &host) {
    const auto now = std::chrono::steady_clock::now();
    const std::string seen = hex(host);
    constexpr std::size_t telling = 80; // letters of a complaint about a block
    if (m_turn >= m_script.size()) {
        if (m_complaint.empty())
            m_complaint = "behind the script: " + seen;
        return usbWords::stall;
    }
    const UsbTurn &turn = m_script[m_turn];
    if (m_complaint.empty() && seen != turn.host)
        m_complaint = "turn " + std::to_string(m_turn) + ": " + seen.substr(0, telling) + " in place of " + turn.host.substr(0, telling);
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

Forbidden::Forbidden(const UsbScene &scene, const UsbDevice &device) : m_wasRoot(geteuid() == 0) {
    gchar *root = umockdev_testbed_get_root_dir(scene.testbed());
    m_node = root + device.node();
    chmod(m_node.c_str(), 0);
    // umockdev itself needs more than the devices do: the directory for its sockets, and those of the devices.
    chmod(root, 0777);
    chmod((root + ("/ioctl" + device.node())).c_str(), 0777);
    g_free(root);
    constexpr uid_t nobody = 65534;
    if (m_wasRoot && seteuid(nobody) != 0)
        g_error("cannot become nobody");
}

Forbidden::~Forbidden() {
    if (m_wasRoot && seteuid(0) != 0)
        g_error("cannot become root again");
    chmod(m_node.c_str(), 0600);
}
