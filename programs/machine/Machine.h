#pragma once

#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

// What this machine tells of itself in /sys, /proc, /run, /lib and /dev.
class Machine {
public:
    // A test gives the directory that stands for the root of its machine.
    explicit Machine(std::string root = {}) : m_root(std::move(root)) {}

    std::string path(const std::string &absolute) const { return m_root + absolute; }
    bool has(const std::string &absolute) const;
    // The first line of a file, without its end; none if it can't be read.
    std::optional<std::string> line(const std::string &absolute) const;
    // All lines of a file; none if it can't be read.
    std::vector<std::string> lines(const std::string &absolute) const;
    // The entries of a directory, sorted; none if it can't be read.
    std::vector<std::string> names(const std::string &absolute) const;
    // Where a link leads to, without links and without our root; empty for what is none.
    std::string target(const std::string &absolute) const;

    struct Process {
        int number;
        std::string name;
    };
    std::vector<Process> processes() const;
    // The other processes that have the node open, of those that we may look at.
    std::vector<Process> holdersOf(const struct stat &node) const;

private:
    bool holds(const std::string &process, const struct stat &node) const;
    bool isMaker(const std::string &process, const std::string &descriptor, const struct stat &node) const;

    std::string m_root;
};

// The last part of a path.
std::string lastPart(const std::string &path);
