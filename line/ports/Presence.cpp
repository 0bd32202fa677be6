#include "line/ports/Presence.h"

#include <fcntl.h>
#include <net/if.h>
#include <sys/stat.h>
#include <unistd.h>

#include "programs/machine/UsbDevice.h"

namespace {

bool mayOpen(const std::string &path) {
    return faccessat(AT_FDCWD, path.c_str(), R_OK | W_OK, AT_EACCESS) == 0;
}

// Whether the system makes a new inode for each name there; elsewhere the number of one that has gone comes again.
bool hasNewInodes(const std::string &path) {
    return path.rfind("/dev/", 0) == 0 && path.rfind("/dev/pts/", 0) != 0;
}

std::string text(const timespec &time) {
    return std::to_string(time.tv_sec) + '.' + std::to_string(time.tv_nsec);
}

Presence presenceOfNode(const std::string &path) {
    struct stat name {};
    struct stat node {};
    if (lstat(path.c_str(), &name) != 0 || stat(path.c_str(), &node) != 0 || !S_ISCHR(node.st_mode))
        return {};
    std::string identity =
        std::to_string(name.st_ino) + ' ' + std::to_string(node.st_rdev) + ' ' + std::to_string(node.st_ino);
    // MEANT: elsewhere alone: udev changes this time too, and so does whoever gives a node to a group.
    if (!hasNewInodes(path))
        identity += ' ' + text(name.st_ctim);
    return {identity, mayOpen(path), ""};
}

Presence presenceOnUsb(const std::string &place, const Machine &machine) {
    const std::string number = usbAttribute(machine, place, "devnum");
    if (number.empty() || !isDfuDevice(place, machine))
        return {};
    return {number, mayOpen(machine.path(usbNodeOf(place, machine))), usbAttribute(machine, place, "serial")};
}

Presence presenceOfInterface(const std::string &name) {
    const unsigned index = if_nametoindex(name.c_str());
    return index == 0 ? Presence{} : Presence{std::to_string(index), true, ""};
}

} // namespace

Presence presenceAt(const std::string &port, LinkKind kind, const Machine &machine) {
    if (port.front() == '/')
        return presenceOfNode(port);
    return kind == LinkKind::dfu ? presenceOnUsb(port, machine) : presenceOfInterface(port);
}
