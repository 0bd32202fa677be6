#pragma once

#include "sim/ports/Port.h"
#include "sim/ports/nodes/Testbed.h"

namespace sim {

// A chip at an emulated device. The handlers that it attaches are called by the testbed's thread, with the
// testbed's lock held; so is all the rest, by the thread of whoever runs the port.
class NodePort : public Port {
public:
    NodePort(const NodePort &) = delete;
    NodePort &operator=(const NodePort &) = delete;
    ~NodePort() override;

    std::string takeReady() override { return std::exchange(m_ready, {}); }
    bool plugIn(std::string &error) override;
    bool work(Nanoseconds now, std::string &error) override;
    std::vector<int> fds() const override { return {m_wake}; }
    std::optional<Nanoseconds> due(Nanoseconds) override { return std::nullopt; }
    std::optional<Hangup> hangup() const override { return m_hangup; }
    void awaitClients() override { m_testbed->awaitClients(); }
    std::unique_lock<std::mutex> hold() override { return m_testbed->lock(); }

    // For handlers and the device's functions:

    Testbed &testbed() { return *m_testbed; }
    void traffic();                                              // something went by: not the time to save
    void wake();                                                 // work() has to be called
    void ready() { m_ready = m_name + " " + m_testbed->root(); } // for clients, anew
    void end();                                                  // the device is gone for good

    // A fault unplugs the device: the call that is being handled, and all others of those who have the device
    // open, fail with ENODEV.
    void hangUp(const Hangup &hangup);

protected:
    // `name` is what the ready line calls it: "i2c-1". Throws std::runtime_error when there is no testbed.
    explicit NodePort(std::string name);

    const std::string &name() const { return m_name; }

    void endTestbed() { m_testbed.reset(); }

    // Adds the device to the testbed and attaches its handlers. False and a message when it cannot.
    virtual bool addDevice(std::string &error) = 0;

    // For devices that do something by themselves.
    virtual void workByItself(Nanoseconds) {}

private:
    const std::string m_name;
    std::optional<Testbed> m_testbed{std::in_place};
    int m_wake;
    std::string m_ready;
    std::optional<Hangup> m_hangup;
};

// What a port of that kind is made of: no handler is called any more while the rest of it goes.
template <class Node>
class Whole : public Node {
public:
    using Node::Node;
    ~Whole() override { this->endTestbed(); }
};

} // namespace sim
