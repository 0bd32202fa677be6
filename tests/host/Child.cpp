#include "tests/host/Child.h"

#include <csignal>
#include <grp.h>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <unistd.h>

namespace host {
namespace {

std::vector<char *> pointers(const std::vector<std::string> &texts) {
    std::vector<char *> all;
    for (const std::string &text : texts)
        all.push_back(const_cast<char *>(text.c_str()));
    all.push_back(nullptr);
    return all;
}

void openAs(const char *path, int flags, int number) {
    const int opened = open(path, flags | O_CLOEXEC, 0666);
    if (opened < 0 || dup2(opened, number) < 0)
        _exit(126);
}

void take(const Command &command) {
    openAs("/dev/null", O_RDONLY, 0);
    if (command.output < 0)
        openAs(outputOf(command).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 1);
    else
        dup2(command.output, 1);
    openAs(errorsOf(command).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 2);
    for (const int descriptor : command.closed)
        close(descriptor);
    for (const auto &[resource, value] : command.limits) {
        const rlimit limit{value, value};
        setrlimit(static_cast<__rlimit_resource_t>(resource), &limit);
    }
    const gid_t group = command.user;
    if (command.user != 0 && (setgroups(0, nullptr) != 0 || setgid(group) != 0 || setuid(command.user) != 0))
        _exit(126);
    // A dump of a crash would be a file too many, and take time.
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

} // namespace

std::string outputOf(const Command &command) {
    return command.directory + ".out";
}

std::string errorsOf(const Command &command) {
    return command.directory + ".err";
}

pid_t startChild(const Command &command) {
    const std::vector<char *> words = pointers(command.words);
    const std::vector<char *> environment = pointers(command.environment);
    const pid_t child = fork();
    if (child != 0)
        return child;
    take(command);
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    raise(SIGSTOP);
    if (chdir(command.directory.c_str()) == 0)
        execve(words[0], words.data(), environment.data());
    _exit(127);
}

} // namespace host
