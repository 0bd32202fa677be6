#include "bench/Process.h"

#include <chrono>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {

Cost runProcess(const std::vector<std::string> &command) {
    std::vector<char *> arguments;
    for (const std::string &word : command)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    if (::posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0)
        throw std::runtime_error("cannot start " + command.front());
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - start;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(command.front() + " failed");
    return {passed.count(), static_cast<double>(usage.ru_maxrss) / 1024};
}

// In small pieces: the peak of a child is never below what its parent has in memory.
bool sameContent(const std::string &first, const std::string &second) {
    std::ifstream a(first, std::ios::binary);
    std::ifstream b(second, std::ios::binary);
    if (!a || !b)
        return false;
    char pieceA[64 * 1024];
    char pieceB[sizeof pieceA];
    do {
        a.read(pieceA, sizeof pieceA);
        b.read(pieceB, sizeof pieceB);
        if (a.gcount() != b.gcount() || std::memcmp(pieceA, pieceB, static_cast<std::size_t>(a.gcount())) != 0)
            return false;
    } while (a);
    return true;
}

} // namespace bench
