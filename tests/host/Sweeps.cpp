#include "tests/host/Sweeps.h"

#include <cerrno>
#include <csignal>

#include <sys/resource.h>
#include <sys/syscall.h>

namespace host {
namespace {

bool all(const Job &) {
    return true;
}

bool writes(const Job &job) {
    return job.output != nullptr || job.end == End::chip;
}

bool hasPort(const Job &job) {
    return job.end == End::chip;
}

std::vector<Case> errorsOf(const Sweep &sweep, const Run &good) {
    std::vector<Case> cases;
    const auto found = good.each.find(sweep.call);
    for (unsigned at = 1; found != good.each.end() && at <= found->second; ++at) {
        for (const int error : sweep.errors) {
            cases.push_back({{Harm::fails, sweep.call, at, error, false}, {}, 0, {}, Output::file});
            if (sweep.done)
                cases.push_back({{Harm::failsDone, sweep.call, at, error, false}, {}, 0, {}, Output::file});
        }
        for (const int error : sweep.onward)
            cases.push_back({{Harm::fails, sweep.call, at, error, true}, {}, 0, {}, Output::file});
        if (sweep.shortens)
            cases.push_back({{Harm::shortened, sweep.call, at, 0, false}, {}, 0, {}, Output::file});
    }
    return cases;
}

std::vector<Case> signalsOf(const Sweep &sweep, const Run &good) {
    std::vector<Case> cases;
    for (unsigned at = 1; at <= good.calls; ++at)
        cases.push_back({{Harm::signalled, -1, at, sweep.errors.front(), false}, {}, 0, {}, Output::file});
    return cases;
}

std::vector<Case> holdsOf(const Sweep &sweep, const Run &good) {
    std::vector<Case> cases;
    const auto found = good.each.find(sweep.call);
    for (unsigned at = 1; found != good.each.end() && at <= found->second; ++at) {
        cases.push_back({{Harm::held, sweep.call, at, 0, false}, {}, 0, {}, Output::file});
        if (sweep.shortens)
            cases.push_back({{Harm::cut, sweep.call, at, 0, false}, {}, 0, {}, Output::file});
    }
    return cases;
}

Case limited(int resource, unsigned long value, unsigned user = 0) {
    return {{}, {{resource, value}}, user, {}, Output::file};
}

std::vector<Case> memoryLimits(const Sweep &, const Run &) {
    std::vector<Case> cases;
    constexpr unsigned long step = 1 << 20;
    for (unsigned long megabytes = 8; megabytes <= 200; ++megabytes)
        cases.push_back(limited(RLIMIT_AS, megabytes * step));
    return cases;
}

std::vector<Case> descriptorLimits(const Sweep &, const Run &) {
    std::vector<Case> cases;
    for (unsigned long count = 0; count <= 16; ++count)
        cases.push_back(limited(RLIMIT_NOFILE, count));
    return cases;
}

std::vector<Case> sizeLimits(const Sweep &, const Run &) {
    std::vector<Case> cases;
    for (const unsigned long bytes : {4096, 8191, 8192, 16000, 20000, 100000})
        cases.push_back(limited(RLIMIT_FSIZE, bytes));
    return cases;
}

// Without the double, which notes its calls in a file.
std::vector<Case> tinySizes(const Sweep &, const Run &) {
    std::vector<Case> cases;
    for (const unsigned long bytes : {0, 1, 1024, 4095})
        cases.push_back(limited(RLIMIT_FSIZE, bytes));
    return cases;
}

// Root has as many as it likes.
std::vector<Case> processLimits(const Sweep &, const Run &) {
    constexpr unsigned somebody = 4711;
    return {limited(RLIMIT_NPROC, 0, somebody), limited(RLIMIT_NPROC, 1, somebody), limited(RLIMIT_NPROC, 2, somebody)};
}

std::vector<Case> streams(const Sweep &, const Run &) {
    std::vector<Case> cases;
    for (const std::vector<int> &closed : {std::vector<int>{0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 1, 2}})
        cases.push_back({{}, {}, 0, closed, Output::file});
    cases.push_back({{}, {}, 0, {}, Output::full});
    cases.push_back({{}, {}, 0, {}, Output::gone});
    return cases;
}

// System calls that fail.
std::vector<Sweep> ofCalls() {
    return {
        {"openat fails",
         all,
         errorsOf,
         SYS_openat,
         {EACCES, EINTR, EIO, EMFILE, ENOMEM, ENOSPC},
         {EMFILE},
         false,
         false},
        {"read fails or is short", all, errorsOf, SYS_read, {EINTR, EIO}, {EIO}, false, true},
        {"write fails or is short", all, errorsOf, SYS_write, {EINTR, EIO, ENOSPC}, {EIO, ENOSPC}, false, true},
        {"close fails", all, errorsOf, SYS_close, {EINTR, EIO}, {}, true, false},
        {"fstat, lstat fail", all, errorsOf, SYS_newfstatat, {EACCES, EIO, ENOMEM}, {}, false, false},
        {"statx fails", all, errorsOf, SYS_statx, {EACCES, EIO, ENOMEM}, {}, false, false},
        {"access fails", all, errorsOf, SYS_access, {EACCES, EIO}, {}, false, false},
        {"getdents64 fails", all, errorsOf, SYS_getdents64, {EIO, ENOMEM}, {}, false, false},
        {"readlink fails", all, errorsOf, SYS_readlink, {EIO, ENOMEM}, {}, false, false},
        {"fsync fails", all, errorsOf, SYS_fsync, {EIO, ENOSPC}, {}, true, false},
        {"linkat fails", all, errorsOf, SYS_linkat, {EACCES, EIO, ENOSPC}, {EIO}, true, false},
        {"rename fails", all, errorsOf, SYS_rename, {EACCES, EIO, ENOSPC}, {}, true, false},
        {"fchown, fchmod fail", all, errorsOf, SYS_fchown, {EIO, EPERM}, {}, false, false},
        {"mmap fails", all, errorsOf, SYS_mmap, {ENOMEM}, {ENOMEM}, false, false},
        {"brk fails", all, errorsOf, SYS_brk, {ENOMEM}, {ENOMEM}, false, false},
        {"clone fails", all, errorsOf, SYS_clone3, {EAGAIN, ENOMEM}, {}, false, false},
        {"eventfd fails", all, errorsOf, SYS_eventfd2, {EMFILE, ENOMEM}, {}, false, false},
        {"ioctl of the port fails", hasPort, errorsOf, SYS_ioctl, {EINTR, EIO}, {}, false, false},
        {"ppoll of the port fails", hasPort, errorsOf, SYS_ppoll, {EINTR, ENOMEM}, {}, false, false},
        {"flock of the port fails", hasPort, errorsOf, SYS_flock, {EINTR, EIO}, {}, false, false},
    };
}

std::vector<Sweep> ofTheMachine() {
    return {
        {"SIGINT", writes, signalsOf, -1, {SIGINT}, {}, false, false},
        {"SIGTERM", writes, signalsOf, -1, {SIGTERM}, {}, false, false},
        {"SIGHUP", writes, signalsOf, -1, {SIGHUP}, {}, false, false},
        {"SIGKILL", writes, signalsOf, -1, {SIGKILL}, {}, false, false},
        {"SIGSTOP and SIGCONT", writes, signalsOf, -1, {SIGSTOP}, {}, false, false},
        {"held at a write, and within one", hasPort, holdsOf, SYS_write, {}, {}, false, true},
        {"held at a read", hasPort, holdsOf, SYS_read, {}, {}, false, false},
        {"held at a wait", hasPort, holdsOf, SYS_ppoll, {}, {}, false, false},
        {"little memory", all, memoryLimits, -1, {}, {}, false, false},
        {"few descriptors", all, descriptorLimits, -1, {}, {}, false, false},
        {"small files", all, sizeLimits, -1, {}, {}, false, false},
        {"tiny files", hasPort, tinySizes, -1, {}, {}, false, false},
        {"few processes", all, processLimits, -1, {}, {}, false, false},
        {"streams closed, full, without a reader", all, streams, -1, {}, {}, false, false},
    };
}

} // namespace

const std::vector<Sweep> &sweeps() {
    static const std::vector<Sweep> table = [] {
        std::vector<Sweep> sum = ofCalls();
        for (const Sweep &sweep : ofTheMachine())
            sum.push_back(sweep);
        return sum;
    }();
    return table;
}

} // namespace host
