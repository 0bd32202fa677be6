#include "sim/ports/pty/UsartPort.h"

namespace sim {

UsartPort::UsartPort(const Machine &machine, std::string path)
    : path_(std::move(path)), bootloader_(machine.chip, machine.faults, machine.log),
      line_(pty_, machine.pace, bootloader_, machine.faults, machine.log) {}

bool UsartPort::plugIn(std::string &error) {
    if (!pty_.open(path_, error))
        return false;
    ready_ = path_;
    return true;
}

void UsartPort::reset(Nanoseconds now) {
    line_.forget();
    bootloader_.reset(now);
}

void UsartPort::losePower(Nanoseconds now) {
    bootloader_.losePower(now);
    line_.replug();
}

bool UsartPort::work(Nanoseconds now, std::string &) {
    if (line_.work())
        rest_.disturb(now);
    return true;
}

std::unique_ptr<Port> makeUsartPort(const Machine &machine, const std::string &path, std::string &) {
    return std::make_unique<UsartPort>(machine, path);
}

} // namespace sim
