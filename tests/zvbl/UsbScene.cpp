#include "tests/zvbl/UsbScene.h"

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

using zvbl::Bytes;

namespace {

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
    unplug();
    for (const std::string &served : m_served)
        umockdev_testbed_detach_ioctl(m_scene.testbed(), served.c_str(), nullptr);
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
    m_served.push_back(node());
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_pluggedIn = true;
    m_vanishing = false;
}

void UsbDevice::unplug() {
    awaitUnplugged();
    leave();
}

void UsbDevice::leave() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_pluggedIn)
            return;
        m_pluggedIn = false;
        m_vanishing = true;
        if (m_urb.urb && !m_urb.done)
            finishUrb(-ENODEV, {});
    }
    // Who still has it open asks on, and is told that it is gone: the handler stays. Nobody waits for an
    // uevent, and umockdev takes it amiss when its receiver closes at this moment.
    umockdev_testbed_remove_device(m_scene.testbed(), sysPath().c_str());
}

void UsbDevice::awaitUnplugged() {
    if (m_leaving.joinable())
        m_leaving.join();
}

void UsbDevice::plugInAgain() {
    unplug();
    ++facts.number;
    plugIn();
}

void UsbDevice::leaveLater(int milliseconds) {
    awaitUnplugged();
    m_leaving = std::thread([this, milliseconds] {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        leave();
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
