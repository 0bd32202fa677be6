#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "sim/ports/nodes/DeviceCall.h"

struct _UMockdevTestbed;
struct _UMockdevIoctlBase;

namespace sim {

// Emulated device nodes in a directory of their own, which vanishes with this object. A client sees them
// when it runs with LD_PRELOAD=libumockdev-preload.so.0 and UMOCKDEV_DIR=root(). The handlers of their
// calls run in a thread of the testbed, one at a time, with lock() held.
class Testbed {
public:
    // Says how a call ends. No value: the kernel does it, with the file or terminal behind the node.
    using Handler = std::function<std::optional<DeviceAnswer>(DeviceCall &call)>;

    Testbed(); // throws std::runtime_error when the preload is missing
    ~Testbed();
    Testbed(const Testbed &) = delete;
    Testbed &operator=(const Testbed &) = delete;

    const std::string &root() const { return m_root; }

    // Adds devices from umockdev's description (P:, N:, E:, A:, H: lines, a blank line between two), as a
    // device that is plugged in: listeners are told. A node needs contents (`N: i2c-1=00`), or it becomes a
    // terminal. False and a message for a bad description.
    bool add(const std::string &description, std::string &error);

    // Who serves the calls of a node ("/dev/i2c-1") of a device that was added. It stays when the device is
    // removed, and serves it again when it is back. `handler` has to live as long as the testbed.
    bool attach(const std::string &node, Handler handler, std::string &error);

    // Unplugs a device by its path ("/devices/..."): as cutOff(), and listeners are told, its nodes vanish.
    void remove(const std::string &path, const std::vector<std::string> &nodes);

    // The same without cutting anybody off, for a handler that knows itself that its device is gone: calls that
    // are under way may have something left to tell.
    void withdraw(const std::string &path, const std::vector<std::string> &nodes);

    // Whether somebody still has a file open that made a call.
    bool isOpen(std::uintptr_t file) const;

    // From now on every call of those who have a node open fails with ENODEV, the one that is being
    // handled included. Who opens a node later is served.
    void cutOff() { ++m_generation; }

    // Waits until nobody has a node open, but not for long: a client whose call finds no testbed any more is
    // ended by its preload.
    void awaitClients() const;

    // Held while a handler runs. Whoever touches the chip from another thread takes it too.
    std::unique_lock<std::mutex> lock() { return std::unique_lock<std::mutex>(m_mutex); }

private:
    struct Node;
    struct File;
    static void connected(_UMockdevIoctlBase *base, _UMockdevIoctlClient *client, void *node);
    static int handleIoctl(_UMockdevIoctlBase *base, _UMockdevIoctlClient *client, void *node);
    static int handleRead(_UMockdevIoctlBase *base, _UMockdevIoctlClient *client, void *node);
    static int handleWrite(_UMockdevIoctlBase *base, _UMockdevIoctlClient *client, void *node);
    bool served(DeviceCall::Kind kind, _UMockdevIoctlClient *client, const Handler &handler);
    bool somebodyConnected() const;

    _UMockdevTestbed *m_testbed;
    std::string m_root;
    std::vector<Node *> m_nodes;
    std::mutex m_mutex;
    std::uintptr_t m_files = 0;            // that were ever opened
    std::atomic<unsigned> m_generation{1}; // of the clients that are served
    mutable std::mutex m_clientsMutex;
    mutable std::vector<_UMockdevIoctlClient *> m_clients;
};

} // namespace sim
