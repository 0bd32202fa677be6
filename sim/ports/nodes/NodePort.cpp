#include "sim/ports/nodes/NodePort.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include "sim/ports/Clock.h"

namespace sim {

NodePort::NodePort(std::string name) : name_(std::move(name)), wake_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

NodePort::~NodePort() {
    close(wake_);
}

bool NodePort::plugIn(std::string &error) {
    hangup_.reset();
    if (!addDevice(error))
        return false;
    ready();
    return true;
}

bool NodePort::work(Nanoseconds now, std::string &) {
    eventfd_t turns = 0;
    eventfd_read(wake_, &turns);
    if (!hangup_)
        workByItself(now);
    return true;
}

void NodePort::wake() {
    eventfd_write(wake_, 1);
}

void NodePort::traffic() {
    if (rest_.disturb(clockNow()))
        wake();
}

void NodePort::end() {
    hangup_ = Hangup{};
    wake();
}

void NodePort::hangUp(const Hangup &hangup) {
    testbed_->cutOff();
    hangup_ = hangup;
    wake();
}

} // namespace sim
