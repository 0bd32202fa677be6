#pragma once

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

// How another program is started.
struct Start {
    struct Given {
        int ours; // stays ours too
        int theirs;
    };
    std::string path;
    std::vector<std::string> words; // behind its name
    // What it has open besides standard input, output and error. Those are ours, where nothing else is said.
    std::vector<Given> given;
    int endsWith;                                                       // the signal that it gets when we end
    bool alone = false;                                                 // in a session of its own, in the top directory
    std::optional<std::vector<std::string>> environment = std::nullopt; // as "NAME=value", in the place of ours
};

// Starts it, and returns its process. A program that can't be run ends at once with noProgram. Throws
// std::runtime_error where there is no process to be had.
pid_t start(const Start &how);
constexpr int noProgram = 127;

// Another program, which ends when we do, however we end. Ended and waited for at the end of the block.
class Child {
public:
    // Starts the program at a path, as start() does. Its standard input is empty, its output goes nowhere, and so does
    // what would be an error on a terminal, but for what is given.
    Child(const std::string &path, const std::vector<std::string> &words, const std::vector<Start::Given> &also);
    ~Child();
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

private:
    pid_t m_process;
};

// The path of a program of this installation, by its way from the directory of ours: "zv32-sim".
std::string besideUs(const std::string &way);
