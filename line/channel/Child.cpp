#include "line/channel/Child.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "programs/Descriptor.h"

namespace {

constexpr int aboveAllGiven = 64;

std::vector<char *> listOf(const std::vector<std::string> &texts) {
    std::vector<char *> list;
    list.reserve(texts.size() + 1);
    for (const std::string &text : texts)
        list.push_back(const_cast<char *>(text.c_str()));
    list.push_back(nullptr);
    return list;
}

bool take(std::vector<Start::Given> &given) {
    // Out of the way of the numbers that they get.
    for (Start::Given &one : given)
        if ((one.ours = fcntl(one.ours, F_DUPFD_CLOEXEC, aboveAllGiven)) < 0)
            return false;
    // What whoever started us has left open is nothing for others. An old kernel leaves it to the marks we set.
    close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    for (const Start::Given &one : given)
        if (dup2(one.ours, one.theirs) < 0)
            return false;
    return true;
}

// In the new process, where nothing but system calls is allowed.
[[noreturn]] void become(const Start &how, std::vector<Start::Given> &given, char *const *words,
                         char *const *environment, pid_t parent) {
    // MEANT: a process that makes a unit must not go on without the one that keeps the record.
    prctl(PR_SET_PDEATHSIG, how.endsWith);
    signal(SIGPIPE, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (getppid() != parent || !take(given))
        _exit(noProgram);
    // A key of the terminal that is meant for us is nothing for what we have started.
    if (how.alone ? setsid() < 0 || chdir("/") != 0 : setpgid(0, 0) != 0)
        _exit(noProgram);
    execve(how.path.c_str(), words, environment);
    _exit(noProgram);
}

// Until it has become another program, the new process has our memory, and we wait: fork() would copy the tables of all
// of it, which takes longer than all else that a unit costs us. What can be done there posix_spawn() can't: to end when
// we do. Negative where there is no process to be had.
pid_t begin(const Start &how, std::vector<Start::Given> &given, char *const *words, char *const *environment) {
    const pid_t parent = getpid();
    const pid_t process = vfork(); // NOLINT(clang-analyzer-security.insecureAPI.vfork,clang-analyzer-unix.Vfork)
    if (process == 0)
        become(how, given, words, environment, parent); // NOLINT(clang-analyzer-unix.Vfork)
    return process;
}

// Nothing that a signal does with our memory happens twice.
class NoSignals {
public:
    NoSignals() {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_SETMASK, &all, &m_before);
    }
    ~NoSignals() { sigprocmask(SIG_SETMASK, &m_before, nullptr); }
    NoSignals(const NoSignals &) = delete;
    NoSignals &operator=(const NoSignals &) = delete;

private:
    sigset_t m_before{};
};

} // namespace

pid_t start(const Start &how) {
    std::vector<std::string> all = {how.path};
    all.insert(all.end(), how.words.begin(), how.words.end());
    const std::vector<char *> words = listOf(all);
    const std::vector<char *> environment = how.environment ? listOf(*how.environment) : std::vector<char *>();
    std::vector<Start::Given> given = how.given;
    const NoSignals meanwhile;
    const pid_t process = begin(how, given, words.data(), how.environment ? environment.data() : environ);
    if (process < 0)
        throw std::runtime_error(std::string("no process to be had: ") + std::strerror(errno));
    return process;
}

Child::Child(const std::string &path, const std::vector<std::string> &words, const std::vector<Start::Given> &also) {
    const Descriptor nothing(open("/dev/null", O_RDWR | O_CLOEXEC));
    std::vector<Start::Given> given = {{nothing.number(), STDIN_FILENO}, {nothing.number(), STDOUT_FILENO}};
    // What it writes there would stand in the middle of a screen.
    if (isatty(STDERR_FILENO) != 0)
        given.push_back({nothing.number(), STDERR_FILENO});
    given.insert(given.end(), also.begin(), also.end());
    m_process = start({path, words, given, SIGTERM});
}

Child::~Child() {
    kill(m_process, SIGTERM);
    kill(m_process, SIGCONT); // one that was stopped would not end
    while (waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

std::string besideUs(const std::string &way) {
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / way).lexically_normal();
}
