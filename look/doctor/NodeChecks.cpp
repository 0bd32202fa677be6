#include "look/doctor/NodeChecks.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iterator>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "look/doctor/Grabbers.h"

namespace {

const char *const logins[] = {"agetty", "getty", "mgetty", "fgetty", "mingetty", "login"};

bool isLogin(const Machine::Process &process) {
    return std::any_of(std::begin(logins), std::end(logins), [&](const char *name) { return process.name == name; });
}

std::string modeText(const struct stat &node) {
    char text[5];
    std::snprintf(text, sizeof text, "%04o", node.st_mode & 07777U);
    return text;
}

std::string groupOr(const struct stat &node) {
    return "group " + groupName(node.st_gid) + ", mode " + modeText(node);
}

// Whether the lock that all programmers take is free, and the kernel lets us open it.
bool isFree(const std::string &path) {
    const int descriptor = open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return errno != EBUSY;
    const bool free = flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    close(descriptor);
    return free;
}

void tellOfHolder(const Node &node, const Machine::Process &process, Diagnosis &diagnosis) {
    const std::string measured = process.name + ", pid " + std::to_string(process.number);
    if (isLogin(process))
        diagnosis.found(Cause::loginPrompt, measured + ", a login prompt", {node.name});
    else if (const Grabber *grabber = grabberOf(process.name))
        diagnosis.found(Cause::grabberHolds, measured, {grabber->stop});
    else
        diagnosis.found(Cause::held, measured);
}

} // namespace

bool checkPlace(const Node &node, Diagnosis &diagnosis) {
    struct stat info {};
    if (stat(node.path.c_str(), &info) != 0) {
        diagnosis.found(Cause::noPort, node.path + ": " + std::strerror(errno));
        return false;
    }
    // Nodes of an emulated machine may be files of another kind; what a tty is, the tty itself tells.
    if (S_ISDIR(info.st_mode) || (node.subsystem == "tty" && S_ISREG(info.st_mode))) {
        diagnosis.found(Cause::notAPort, node.path + " is no device");
        return false;
    }
    return true;
}

bool checkPermission(const Node &node, const Person &person, Diagnosis &diagnosis) {
    struct stat info {};
    if (stat(node.path.c_str(), &info) != 0)
        return false;
    if (access(node.path.c_str(), R_OK | W_OK) == 0) {
        diagnosis.good("permission", "ok (" + (person.user == 0 ? "root" : groupName(info.st_gid)) + ")");
        return true;
    }
    const std::string measured = person.name + " may not open it: " + groupOr(info);
    const Cause why = whyDenied(info, person);
    if (why == Cause::noGroup)
        diagnosis.found(why, measured, {node.subsystem, node.name});
    else
        diagnosis.found(why, measured, {groupName(info.st_gid), person.name});
    return false;
}

bool checkHolders(const Node &node, const Machine &machine, bool mayOpen, Diagnosis &diagnosis) {
    struct stat info {};
    if (stat(node.path.c_str(), &info) != 0)
        return false;
    const auto holders = machine.holdersOf(info);
    for (const Machine::Process &holder : holders)
        tellOfHolder(node, holder, diagnosis);
    if (!holders.empty())
        return false;
    if (!mayOpen || isFree(node.path)) {
        diagnosis.good("held by", "nobody");
        return true;
    }
    diagnosis.found(Cause::heldUnseen, "a process that we may not look at", {node.path});
    return false;
}
