#pragma once

#include <mutex>
#include <string>

#include <umockdev.h>

// A device node whose ioctls are answered by a test, in a thread of its own. The test has to run under
// libumockdev-preload.so.0; this process is then the only one that sees the node.
class FakeNode {
public:
    FakeNode(const std::string &subsystem, const std::string &name);
    virtual ~FakeNode();
    FakeNode(const FakeNode &) = delete;
    FakeNode &operator=(const FakeNode &) = delete;

    const std::string &name() const { return m_name; }
    std::string file() const; // where the node really is
    void unplug();            // its path is gone, the open file stays, as with a device that went away

protected:
    // What an ioctl gives: its result, or -1 and an error. `argument` holds the pointer.
    virtual long answer(unsigned long request, UMockdevIoctlData *argument, int &error) = 0;

    std::mutex m_mutex; // held while answering

private:
    static gboolean handle(UMockdevIoctlBase *base, UMockdevIoctlClient *client, gpointer self);

    const std::string m_name;
    UMockdevTestbed *m_testbed;
    UMockdevIoctlBase *m_handler;
};

// What a pointer inside the argument leads to: `length` bytes after the pointer at `offset`.
class Pointed {
public:
    Pointed(UMockdevIoctlData *from, std::size_t offset, std::size_t length);
    ~Pointed() { g_object_unref(m_data); }
    Pointed(const Pointed &) = delete;
    Pointed &operator=(const Pointed &) = delete;

    UMockdevIoctlData *data() const { return m_data; }
    template <class T>
    const T *as() const {
        return reinterpret_cast<const T *>(m_data->data);
    }
    void set(const void *bytes, std::size_t count); // changes it in the caller's memory

private:
    UMockdevIoctlData *m_data;
};

int errorNamed(const std::string &name); // "ENXIO"
