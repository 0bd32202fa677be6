#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

// Another program, which ends when we do, however we end. Ended and waited for at the end of the block.
class Child {
public:
    // Starts the program at a path. Its standard input is empty; the descriptor, which stays ours too, becomes number
    // `as` there. Throws std::runtime_error where there is no process to be had. A program that is not there ends at
    // once.
    Child(const std::string &path, const std::vector<std::string> &words, int descriptor, int as);
    ~Child();
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

private:
    pid_t m_process;
};

// The path of a program of this installation, by its way from the directory of ours: "zv32-sim".
std::string besideUs(const std::string &way);
