#include "programs/machine/Machine.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include <dirent.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace {

// Numbers of the kernel's list of devices: /dev/ptmx, and the ends of its pseudo terminals that a user opens.
const dev_t pseudoTerminals = makedev(5, 2);
constexpr unsigned firstSlave = 136;
constexpr unsigned lastSlave = 143;

} // namespace

std::string lastPart(const std::string &path) {
    return path.substr(path.find_last_of('/') + 1);
}

bool Machine::has(const std::string &absolute) const {
    struct stat info {};
    return stat(path(absolute).c_str(), &info) == 0;
}

std::vector<std::string> Machine::lines(const std::string &absolute) const {
    std::ifstream file(path(absolute));
    std::vector<std::string> all;
    for (std::string line; std::getline(file, line);)
        all.push_back(line);
    return all;
}

std::optional<std::string> Machine::line(const std::string &absolute) const {
    std::ifstream file(path(absolute));
    std::string text;
    if (!file || (!std::getline(file, text) && file.bad()))
        return std::nullopt;
    return text;
}

std::vector<std::string> Machine::names(const std::string &absolute) const {
    std::vector<std::string> all;
    DIR *directory = opendir(path(absolute).c_str());
    if (directory == nullptr)
        return all;
    while (const dirent *entry = readdir(directory))
        if (const std::string name = entry->d_name; name != "." && name != "..")
            all.push_back(name);
    closedir(directory);
    std::sort(all.begin(), all.end());
    return all;
}

std::string Machine::target(const std::string &absolute) const {
    char *resolved = realpath(path(absolute).c_str(), nullptr);
    if (resolved == nullptr)
        return {};
    const std::string whole = resolved;
    std::free(resolved);
    return whole.rfind(m_root, 0) == 0 ? whole.substr(m_root.size()) : whole;
}

std::vector<Machine::Process> Machine::processes() const {
    std::vector<Process> all;
    for (const std::string &name : names("/proc"))
        if (name.find_first_not_of("0123456789") == std::string::npos)
            if (const auto command = line("/proc/" + name + "/comm"))
                all.push_back({std::atoi(name.c_str()), *command});
    return all;
}

bool Machine::holds(const std::string &process, const struct stat &node) const {
    bool isOpen = false;
    for (const std::string &descriptor : names("/proc/" + process + "/fd")) {
        struct stat info {};
        if (stat(path("/proc/" + process + "/fd/" + descriptor).c_str(), &info) != 0)
            continue;
        // Who made a pseudo terminal keeps it open, so that it stays when its user leaves: no rival.
        if (S_ISCHR(info.st_mode) && info.st_rdev == pseudoTerminals && S_ISCHR(node.st_mode) &&
            isMaker(process, descriptor, node))
            return false;
        isOpen |= S_ISCHR(node.st_mode) && S_ISCHR(info.st_mode) && info.st_rdev == node.st_rdev;
        isOpen |= info.st_dev == node.st_dev && info.st_ino == node.st_ino;
    }
    return isOpen;
}

bool Machine::isMaker(const std::string &process, const std::string &descriptor, const struct stat &node) const {
    const unsigned kind = major(node.st_rdev);
    if (kind < firstSlave || kind > lastSlave)
        return false;
    const unsigned index = (kind - firstSlave) * 256 + minor(node.st_rdev);
    const auto facts = lines("/proc/" + process + "/fdinfo/" + descriptor);
    return std::find(facts.begin(), facts.end(), "tty-index:\t" + std::to_string(index)) != facts.end();
}

std::vector<Machine::Process> Machine::holdersOf(const struct stat &node) const {
    std::vector<Process> all;
    for (const Process &process : processes())
        if (process.number != getpid() && holds(std::to_string(process.number), node))
            all.push_back(process);
    return all;
}
