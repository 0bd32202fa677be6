#include "sim/ports/nodes/Testbed.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <utility>

#include <dlfcn.h>
#include <umockdev.h>
#include <unistd.h>

#include "sim/ports/Clock.h"

namespace sim {

namespace {

// Where there is no /sys, umockdev takes that for a mock environment. A library that is not installed is in the
// environment and not in the process.
bool isPreloaded() {
    return dlopen("libumockdev-preload.so.0", RTLD_LAZY | RTLD_NOLOAD) != nullptr;
}

constexpr char fileKey[] = "zv32-file"; // what hangs on a client

std::string taken(gchar *text) {
    const std::string copy = text ? text : "";
    g_free(text);
    return copy;
}

} // namespace

struct Testbed::Node {
    Testbed &testbed;
    std::string path;
    Handler handler;
    UMockdevIoctlBase *base;
};

// A node that a client has open.
struct Testbed::File {
    std::uintptr_t number;
    unsigned generation; // in which it was opened
    DeviceCall::Settings settings;
};

Testbed::Testbed() {
    m_testbed = umockdev_testbed_new();
    if (!isPreloaded() || !umockdev_in_mock_environment()) {
        g_object_unref(m_testbed);
        throw std::runtime_error("device nodes need libumockdev-preload.so.0 as a preload, of the package umockdev");
    }
    m_root = taken(umockdev_testbed_get_root_dir(m_testbed));
}

Testbed::~Testbed() {
    for (Node *node : m_nodes)
        umockdev_testbed_detach_ioctl(m_testbed, node->path.c_str(), nullptr);
    g_object_unref(m_testbed); // ends the thread of the handlers
    for (Node *node : m_nodes) {
        g_object_unref(node->base);
        delete node;
    }
    for (_UMockdevIoctlClient *client : m_clients)
        g_object_unref(client);
}

bool Testbed::add(const std::string &description, std::string &error) {
    GError *problem = nullptr;
    umockdev_testbed_add_from_string(m_testbed, description.c_str(), &problem);
    return told(problem, error);
}

bool Testbed::attach(const std::string &path, Handler handler, std::string &error) {
    const auto same = [&](const Node *node) { return node->path == path; };
    if (std::any_of(m_nodes.begin(), m_nodes.end(), same))
        return true;
    auto *node = new Node{*this, path, std::move(handler), umockdev_ioctl_base_new()};
    m_nodes.push_back(node);
    g_signal_connect(node->base, "client-connected", G_CALLBACK(connected), node);
    g_signal_connect(node->base, "handle-ioctl", G_CALLBACK(handleIoctl), node);
    g_signal_connect(node->base, "handle-read", G_CALLBACK(handleRead), node);
    g_signal_connect(node->base, "handle-write", G_CALLBACK(handleWrite), node);
    GError *problem = nullptr;
    umockdev_testbed_attach_ioctl(m_testbed, path.c_str(), node->base, &problem);
    return told(problem, error);
}

void Testbed::remove(const std::string &path, const std::vector<std::string> &nodes) {
    cutOff();
    withdraw(path, nodes);
}

void Testbed::withdraw(const std::string &path, const std::vector<std::string> &nodes) {
    // Without an uevent: umockdev aborts the sender when a listener leaves in that moment, as a client does
    // whose device has gone. Who has the device open is told by ENODEV.
    const std::string device = "/sys" + path;
    umockdev_testbed_remove_device(m_testbed, device.c_str());
    for (const std::string &node : nodes)
        unlink((m_root + node).c_str()); // umockdev leaves the file of a node with contents
}

bool Testbed::somebodyConnected() const {
    const std::lock_guard<std::mutex> lock(m_clientsMutex);
    const auto last = std::remove_if(m_clients.begin(), m_clients.end(), [](_UMockdevIoctlClient *client) {
        if (umockdev_ioctl_client_get_connected(client))
            return false;
        g_object_unref(client);
        return true;
    });
    m_clients.erase(last, m_clients.end());
    return !m_clients.empty();
}

bool Testbed::isOpen(std::uintptr_t file) const {
    somebodyConnected(); // forgets those who left
    const std::lock_guard<std::mutex> lock(m_clientsMutex);
    return std::any_of(m_clients.begin(), m_clients.end(), [file](_UMockdevIoctlClient *client) {
        return static_cast<File *>(g_object_get_data(G_OBJECT(client), fileKey))->number == file;
    });
}

void Testbed::awaitClients() const {
    constexpr Nanoseconds longest = 2 * second;
    const Nanoseconds end = clockNow() + longest;
    while (somebodyConnected() && clockNow() < end) {
        const struct timespec moment = timespecOf(millisecond);
        nanosleep(&moment, nullptr);
    }
}

void Testbed::connected(_UMockdevIoctlBase *, _UMockdevIoctlClient *client, void *node) {
    Testbed &testbed = static_cast<Node *>(node)->testbed;
    testbed.somebodyConnected(); // forgets those who left
    const auto forget = [](void *file) { delete static_cast<File *>(file); };
    g_object_set_data_full(G_OBJECT(client), fileKey, new File{++testbed.m_files, testbed.m_generation, {}}, forget);
    const std::lock_guard<std::mutex> lock(testbed.m_clientsMutex);
    testbed.m_clients.push_back(static_cast<_UMockdevIoctlClient *>(g_object_ref(client)));
}

// An exception must not get into the C code that calls.
static std::optional<DeviceAnswer> handlerAnswer(const Testbed::Handler &handler, DeviceCall &call) {
    try {
        return handler(call);
    } catch (const std::exception &) {
        return DeviceAnswer::fail(ENOMEM);
    }
}

bool Testbed::served(DeviceCall::Kind kind, _UMockdevIoctlClient *client, const Handler &handler) {
    File &file = *static_cast<File *>(g_object_get_data(G_OBJECT(client), fileKey));
    std::optional<DeviceAnswer> answer;
    {
        const std::unique_lock<std::mutex> held = lock();
        if (file.generation == m_generation) {
            DeviceCall call(kind, client, file.number, file.settings);
            answer = handlerAnswer(handler, call);
        }
        if (file.generation != m_generation)
            answer = DeviceAnswer::fail(ENODEV);
    }
    if (answer)
        umockdev_ioctl_client_complete(client, answer->result, answer->error);
    return answer.has_value();
}

int Testbed::handleIoctl(_UMockdevIoctlBase *, _UMockdevIoctlClient *client, void *node) {
    const Node &of = *static_cast<Node *>(node);
    return of.testbed.served(DeviceCall::Kind::ioctl, client, of.handler);
}

int Testbed::handleRead(_UMockdevIoctlBase *, _UMockdevIoctlClient *client, void *node) {
    const Node &of = *static_cast<Node *>(node);
    return of.testbed.served(DeviceCall::Kind::read, client, of.handler);
}

int Testbed::handleWrite(_UMockdevIoctlBase *, _UMockdevIoctlClient *client, void *node) {
    const Node &of = *static_cast<Node *>(node);
    return of.testbed.served(DeviceCall::Kind::write, client, of.handler);
}

} // namespace sim
