#include "tests/host/Watched.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <time.h>
#include <utility>

#include <fcntl.h>
#include <linux/futex.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/host/Child.h"
#include "tests/host/Registers.h"

namespace host {
namespace {

constexpr int longestRun = 60; // seconds
constexpr timespec hold{1, 100000000};

volatile std::sig_atomic_t timeIsOver;

void noteTheTime(int) {
    timeIsOver = 1;
}

// Ends a wait for a program that does not end. The first signal may come in the moment before the wait.
void limitTheTime(int seconds) {
    struct sigaction action {};
    action.sa_handler = noteTheTime;
    sigaction(SIGALRM, &action, nullptr);
    timeIsOver = 0;
    const itimerval timer{{1, 0}, {seconds, 0}};
    const itimerval none{};
    setitimer(ITIMER_REAL, seconds > 0 ? &timer : &none, nullptr);
}

// What is to be done to one thread when its call is over.
struct Thread {
    bool known = false;
    bool inCall = false;
    bool answered = false; // the call's answer is put in its place
    bool opensAside = false;
    long answer = 0;
    std::optional<std::pair<Argument, unsigned long>> argument; // its own one
};

class Watch {
public:
    Watch(const Command &command, const Fault &fault) : m_command(command), m_fault(fault) {}

    Run run() {
        m_child = startChild(m_command);
        int status = 0;
        waitpid(m_child, &status, 0);
        ptrace(PTRACE_SETOPTIONS, m_child, nullptr,
               PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL);
        m_threads[m_child].known = true;
        resume(m_child, 0);
        limitTheTime(longestRun);
        while (!isOver())
            continue;
        limitTheTime(0);
        return m_run;
    }

private:
    static void resume(pid_t thread, int signal) { ptrace(PTRACE_SYSCALL, thread, nullptr, long(signal)); }

    bool isOver() {
        int status = 0;
        const pid_t thread = waitpid(-1, &status, __WALL);
        if (thread < 0 && timeIsOver) {
            m_run.hung = true;
            kill(m_child, SIGKILL);
        }
        if (thread < 0)
            return errno == ECHILD;
        if (WIFSTOPPED(status)) {
            stopped(thread, status);
            return false;
        }
        m_run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return thread == m_child;
    }

    void stopped(pid_t pid, int status) {
        Thread &thread = m_threads[pid];
        const int signal = WSTOPSIG(status);
        if (signal == (SIGTRAP | 0x80))
            called(pid, thread);
        else if (status >> 16 == PTRACE_EVENT_EXEC)
            m_begun = true;
        const bool isSignal = thread.known && status >> 16 == 0 && signal != (SIGTRAP | 0x80);
        const bool isFirst = !thread.known; // a new thread stops once
        thread.known = true;
        siginfo_t info;
        const bool isGroupStop = isSignal && ptrace(PTRACE_GETSIGINFO, pid, nullptr, &info) != 0;
        resume(pid, isSignal && !isFirst && !isGroupStop ? signal : 0);
    }

    void called(pid_t pid, Thread &thread) {
        __ptrace_syscall_info info;
        if (ptrace(PTRACE_GET_SYSCALL_INFO, pid, sizeof info, &info) <= 0)
            return;
        if (info.op == PTRACE_SYSCALL_INFO_ENTRY)
            begins(pid, thread, info);
        else if (info.op == PTRACE_SYSCALL_INFO_EXIT)
            ends(pid, thread, info.exit.rval);
    }

    void begins(pid_t pid, Thread &thread, const __ptrace_syscall_info &info) {
        const long call = static_cast<long>(info.entry.nr);
        const auto first = static_cast<long>(info.entry.args[0]);
        thread.answered = thread.opensAside = false;
        if (!m_begun)
            return;
        if (call == SYS_openat && m_command.aside.count(textAt(pid, info.entry.args[1])) != 0) {
            thread.opensAside = true;
            return;
        }
        if (m_aside.count(first) != 0 && usesDescriptor(call)) {
            if (call == SYS_close)
                m_aside.erase(first);
            return;
        }
        noteWaits(info);
        ++m_run.calls;
        ++m_run.each[call];
        if (m_cut && call == m_fault.call)
            nanosleep(&hold, nullptr);
        m_cut = m_cut && call != m_fault.call;
        if (isTurn(call))
            harm(pid, thread, info);
    }

    bool isTurn(long call) const {
        if (m_fault.harm == Harm::none || (m_fault.call >= 0 && call != m_fault.call))
            return false;
        const unsigned count = m_fault.call < 0 ? m_run.calls : m_run.each.at(call);
        return count == m_fault.at || (m_fault.onward && count > m_fault.at);
    }

    void harm(pid_t pid, Thread &thread, const __ptrace_syscall_info &info) {
        m_run.hit = true;
        const long call = static_cast<long>(info.entry.nr);
        const auto first = static_cast<long>(info.entry.args[0]);
        m_run.hitOutput = m_run.hitOutput || (usesDescriptor(call) && (first == 1 || first == 2));
        if (call == SYS_brk) // fails by leaving all as it is
            return replace(pid, thread, Argument::first, info.entry.args[0], 0);
        switch (m_fault.harm) {
        case Harm::fails: skipCall(pid); [[fallthrough]];
        case Harm::failsDone:
            thread.answered = true;
            thread.answer = -m_fault.value;
            break;
        case Harm::shortened:
        case Harm::cut:
            if (info.entry.args[2] > 1)
                replace(pid, thread, Argument::third, info.entry.args[2], info.entry.args[2] / 2);
            m_cut = m_fault.harm == Harm::cut;
            break;
        case Harm::held: nanosleep(&hold, nullptr); break;
        case Harm::signalled: signal(pid); break;
        case Harm::none: break;
        }
    }

    static void replace(pid_t pid, Thread &thread, Argument which, unsigned long own, unsigned long other) {
        setArgument(pid, which, other);
        thread.argument = {which, own};
    }

    void signal(pid_t pid) {
        if (m_fault.value != SIGSTOP)
            skipCall(pid);
        kill(m_child, m_fault.value);
        if (m_fault.value == SIGSTOP)
            kill(m_child, SIGCONT);
    }

    void ends(pid_t pid, Thread &thread, long answer) {
        if (thread.opensAside && answer >= 0)
            m_aside.insert(answer);
        if (thread.answered)
            setAnswer(pid, thread.answer);
        if (thread.argument)
            setArgument(pid, thread.argument->first, thread.argument->second);
        thread.argument.reset();
        thread.answered = thread.opensAside = false;
    }

    // A wait until a time of the machine's clock ends too early or too late when that is set.
    void noteWaits(const __ptrace_syscall_info &info) {
        const auto &arguments = info.entry.args;
        if (info.entry.nr == SYS_futex)
            m_run.asksForTheTime |= (arguments[1] & FUTEX_CLOCK_REALTIME) != 0 && arguments[3] != 0;
        else if (info.entry.nr == SYS_clock_nanosleep)
            m_run.asksForTheTime |= arguments[0] == CLOCK_REALTIME && (arguments[1] & TIMER_ABSTIME) != 0;
    }

    const Command &m_command;
    const Fault &m_fault;
    pid_t m_child = 0;
    bool m_begun = false; // it is the program itself
    bool m_cut = false;   // the next such call is late
    std::map<pid_t, Thread> m_threads;
    std::set<long> m_aside;
    Run m_run;
};

std::string contentOf(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace

Run watch(const Command &command, const Fault &fault) {
    Run run = Watch(command, fault).run();
    run.text = contentOf(outputOf(command));
    run.errors = contentOf(errorsOf(command));
    return run;
}

bool mayWatch() {
    const pid_t child = fork();
    if (child == 0)
        _exit(ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 ? 0 : 1);
    int status = 1;
    waitpid(child, &status, 0);
    return status == 0;
}

} // namespace host
