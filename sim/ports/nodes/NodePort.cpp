#include "sim/ports/nodes/NodePort.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include "sim/ports/Clock.h"

namespace sim {

NodePort::NodePort(std::string name) : m_name(std::move(name)), m_wake(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

NodePort::~NodePort() {
    close(m_wake);
}

bool NodePort::plugIn(std::string &error) {
    m_hangup.reset();
    if (!addDevice(error))
        return false;
    ready();
    return true;
}

bool NodePort::work(Nanoseconds now, std::string &) {
    eventfd_t turns = 0;
    eventfd_read(m_wake, &turns);
    if (!m_hangup)
        workByItself(now);
    return true;
}

void NodePort::wake() {
    eventfd_write(m_wake, 1);
}

void NodePort::traffic() {
    if (m_rest.disturb(clockNow()))
        wake();
}

void NodePort::end() {
    m_hangup = Hangup{};
    wake();
}

void NodePort::hangUp(const Hangup &hangup) {
    m_testbed->cutOff();
    m_hangup = hangup;
    wake();
}

} // namespace sim
