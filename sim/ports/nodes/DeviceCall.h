#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

struct _GError;
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

// What a call of umockdev left in `problem`, which is freed. True for none.
bool told(_GError *problem, std::string &error);

} // namespace sim
