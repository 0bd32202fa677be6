#include "line/hooks/Hook.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "line/channel/Child.h"
#include "line/hooks/HookFile.h"

namespace {

constexpr std::size_t mostOutput = 64 * 1024; // both streams together
constexpr std::size_t longestReason = 200;    // of what it says of a failure
constexpr int killTakes = 200;                // milliseconds, at most
const std::vector<std::string> environment = {"PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin",
                                              "LC_ALL=C.UTF-8"};

[[noreturn]] void fail(const std::string &what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

// A file without a name: whoever does not read it holds nobody up.
Descriptor fileOf(const std::string &text) {
    Descriptor file(memfd_create("said", MFD_CLOEXEC));
    const bool written =
        file.isOpen() && write(file.number(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (!written || lseek(file.number(), 0, SEEK_SET) != 0)
        fail("no room for what it is told");
    return file;
}

struct Pipe {
    Pipe() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            fail("no pipe to be had");
        reading = Descriptor(ends[0]);
        writing = Descriptor(ends[1]);
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
    Descriptor reading;
    Descriptor writing;
};

std::string lastLineOf(std::string text) {
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text.substr(text.rfind('\n') + 1).substr(0, longestReason);
}

std::string failureOf(const siginfo_t &how, const std::string &complained) {
    const std::string line = lastLineOf(complained);
    const std::string why = line.empty() ? "" : ": " + line;
    if (how.si_code != CLD_EXITED)
        return "was ended by signal " + std::to_string(how.si_status) + why;
    if (how.si_status == noProgram && line.empty())
        return "can't be run";
    return how.si_status == 0 ? "" : "exit status " + std::to_string(how.si_status) + why;
}

} // namespace

Hook::Hook(const HookCall &call, const Json &said)
    : m_call(call), m_deadline(Clock::now() + std::chrono::seconds(call.seconds)) {
    try {
        checkHook(call); // it may be another by now
        begin(said);
    } catch (const std::exception &failure) {
        finish(failure.what());
    }
}

Hook::~Hook() {
    finish("");
}

void Hook::begin(const Json &said) {
    const Descriptor input = fileOf(said.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n');
    Pipe output;
    Pipe complaints;
    const std::vector<std::string> words(m_call.run.begin() + 1, m_call.run.end());
    m_process = start({m_call.run.front(),
                       words,
                       {{input.number(), STDIN_FILENO},
                        {output.writing.number(), STDOUT_FILENO},
                        {complaints.writing.number(), STDERR_FILENO}},
                       SIGKILL,
                       true,
                       environment});
    m_output = std::move(output.reading);
    m_complaints = std::move(complaints.reading);
    m_exit = Descriptor(static_cast<int>(syscall(SYS_pidfd_open, m_process, 0)));
    if (!m_exit.isOpen())
        fail("its end can't be waited for");
}

void Hook::watch(std::vector<pollfd> &all) const {
    for (const Descriptor *one : {&m_exit, &m_output, &m_complaints})
        if (one->isOpen())
            all.push_back({one->number(), POLLIN, 0});
}

bool Hook::isFlooded() const {
    return m_end.output.size() + m_complained.size() > mostOutput;
}

void Hook::listen(Descriptor &from, std::string &into) {
    char part[4096];
    while (from.isOpen() && !isFlooded()) {
        const ssize_t got = read(from.number(), part, sizeof part);
        if (got > 0)
            into.append(part, static_cast<std::size_t>(got));
        else if (got == 0 || errno != EINTR) {
            if (got == 0 || errno != EAGAIN)
                from.reset();
            return;
        }
    }
}

bool Hook::hasExited() const {
    pollfd exit = {m_exit.number(), POLLIN, 0};
    return poll(&exit, 1, 0) == 1;
}

bool Hook::proceed() {
    if (m_process == 0)
        return true;
    const bool exited = hasExited(); // what it has written is in the pipes
    listen(m_output, m_end.output);
    listen(m_complaints, m_complained);
    if (isFlooded())
        finish("writes more than " + std::to_string(mostOutput / 1024) + " KB");
    else if (exited)
        collect();
    else if (Clock::now() >= m_deadline)
        finish("has not ended within " + std::to_string(m_call.seconds) + " s");
    return m_process == 0;
}

void Hook::collect() {
    siginfo_t how = {};
    if (waitid(P_PID, static_cast<id_t>(m_process), &how, WEXITED | WNOWAIT) != 0)
        finish(std::string("its end is not known: ") + std::strerror(errno));
    else
        finish(failureOf(how, m_complained));
}

// The end, with what it has left behind.
void Hook::finish(const std::string &failure) {
    m_end.failure = failure.empty() ? "" : m_call.run.front() + ": " + failure;
    if (m_process > 0) {
        // Before it is waited for: its number is its own until then.
        kill(-m_process, SIGKILL);
        kill(m_process, SIGKILL); // it may not have got to a session of its own
        pollfd exit = {m_exit.number(), POLLIN, 0};
        poll(&exit, 1, killTakes); // a file system that does not answer can hold a process for ever
        waitpid(m_process, nullptr, WNOHANG);
    }
    m_process = 0;
    m_exit.reset();
    m_output.reset();
    m_complaints.reset();
}
