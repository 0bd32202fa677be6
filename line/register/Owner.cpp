#include "line/register/Owner.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include <sys/types.h>
#include <unistd.h>

namespace {

std::string bootId() {
    std::ifstream file("/proc/sys/kernel/random/boot_id");
    std::string id;
    if (!(file >> id))
        throw std::runtime_error("the start of this machine has no name in /proc");
    return id;
}

// When a process started, in ticks since the machine did. Empty for one that is not there, or has ended and is only
// waited for.
std::string startOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    const std::string all((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const std::size_t name = all.rfind(')'); // a name may hold anything
    if (name == std::string::npos)
        return {};
    std::istringstream rest(all.substr(name + 1));
    std::string field;
    rest >> field;
    if (field == "Z" || field == "X")
        return {};
    constexpr int stateField = 3;
    constexpr int startField = 22;
    for (int i = stateField; i < startField; ++i)
        rest >> field;
    return field;
}

} // namespace

std::string ownerOfThis() {
    const std::string start = startOf(getpid());
    if (start.empty())
        throw std::runtime_error("/proc tells nothing of this process");
    return bootId() + ' ' + std::to_string(getpid()) + ' ' + start;
}

bool lives(const std::string &owner) {
    std::istringstream fields(owner);
    std::string boot;
    std::string start;
    pid_t process = 0;
    if (!(fields >> boot >> process >> start) || process <= 0 || boot != bootId())
        return false;
    const std::string startNow = startOf(process);
    if (!startNow.empty())
        return startNow == start;
    // /proc may hide the processes of others.
    return kill(process, 0) != 0 && errno == EPERM;
}
