#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

struct _UMockdevTestbed;
struct _UMockdevIoctlBase;
struct _UMockdevIoctlClient;
struct _UMockdevIoctlData;

namespace sim {

// A copy of a piece of a client's memory, fetched over a socket. What is changed in it travels back when the
// call is answered. It may be kept beyond the call that showed it, as the buffer of a request that is
// answered later. Empty for a null pointer, for no length, and when the client is gone.
class ClientMemory {
public:
    ClientMemory() = default;
    explicit ClientMemory(_UMockdevIoctlData *taken) : m_data(taken) {} // takes the reference over
    ClientMemory(const ClientMemory &other);
    ClientMemory &operator=(ClientMemory other);
    ~ClientMemory();

    explicit operator bool() const { return m_data != nullptr; }
    std::size_t size() const;
    std::uint8_t *bytes() const;

    // A number or a kernel structure at `offset`; it has to lie inside.
    template <typename T>
    T get(std::size_t offset = 0) const {
        T value{};
        std::memcpy(&value, bytes() + offset, sizeof value);
        return value;
    }
    template <typename T>
    void set(const T &value, std::size_t offset = 0) const {
        std::memcpy(bytes() + offset, &value, sizeof value);
    }

    // What the pointer at `offset` points to.
    ClientMemory behind(std::size_t offset, std::size_t length) const;

    // Fetches it again: a client may fill in more between two calls.
    bool reload() const;

    // Lets the pointer at `offset` point to `target`, another piece of the same client's memory, which
    // travels back with this call.
    void point(std::size_t offset, const ClientMemory &target) const;

private:
    _UMockdevIoctlData *m_data = nullptr;
};

// What a call returns: its result, or -1 and an errno.
struct DeviceAnswer {
    long result = 0;
    int error = 0;

    static DeviceAnswer fail(int number) { return {-1, number}; }
};

// A client's call on an emulated node; the client waits until it is answered.
class DeviceCall {
public:
    enum class Kind { ioctl, read, write };

    // What a driver keeps for each open file; all 0 when it is opened.
    using Settings = std::array<unsigned long, 4>;

    DeviceCall(Kind what, _UMockdevIoctlClient *client, std::uintptr_t number, Settings &ofFile)
        : kind(what), file(number), settings(ofFile), m_client(client) {}

    const Kind kind;
    const std::uintptr_t file; // a number for each open(), above 0 and never used again
    Settings &settings;

    unsigned long request() const; // the ioctl's number
    unsigned long number() const;  // the ioctl's argument, when it is a number

    // The memory that the ioctl's argument points to. Many requests carry no size: the handler says it.
    ClientMemory memory(std::size_t length) const;

    // The buffer of a read or a write, as long as the client said.
    ClientMemory buffer() const;

    // Lets the client make the call itself, on what really is behind the node.
    DeviceAnswer execute() const;

private:
    _UMockdevIoctlClient *m_client;
};

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

    // The other end of a node that is a terminal; -1 if it is none.
    int terminal(const std::string &node) const;

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
