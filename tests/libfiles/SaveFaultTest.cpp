// FILES_ImageToFile with every one of its system calls failing in turn, and with the process killed
// before every one of them. The calls are caught on their way out of the library.

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <ostream>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

// Those of SystemFaultTest.cpp.
bool befallsOpen();
bool befallsWrite();
bool befallsSync();
bool befallsLink();

namespace {

enum class Fault { none, fails, kills, loses }; // it loses the answer of a call that gives a name

struct {
    bool armed = false;
    Fault fault = Fault::none;
    int at = 0; // which call, from 1
    int calls = 0;
    bool unnamedFiles = true; // the file system has O_TMPFILE
    std::string hit;          // the call that the fault met
    unsigned mode = 0;        // that the new file was opened with
} plan;

// True when this call has to fail.
bool meets(const char *call) {
    if (!plan.armed || ++plan.calls != plan.at)
        return false;
    if (plan.fault == Fault::kills)
        ::kill(::getpid(), SIGKILL);
    plan.hit = call;
    return plan.fault == Fault::fails;
}

// Whether this call is done and its answer is lost, as a file server may do.
bool losesAnswer(const char *call) {
    if (!plan.armed || plan.fault != Fault::loses || plan.calls != plan.at)
        return false;
    plan.hit = call;
    return true;
}

int failure(int error) {
    errno = error;
    return -1;
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) int open(const char *path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const unsigned mode = va_arg(arguments, unsigned);
    va_end(arguments);
    const bool unnamed = (flags & O_TMPFILE) == O_TMPFILE;
    if (plan.armed && unnamed && !plan.unnamedFiles)
        return failure(EOPNOTSUPP);
    if ((flags & O_ACCMODE) == O_WRONLY && befallsOpen())
        return -1;
    if (meets((flags & O_DIRECTORY) && !unnamed ? "open directory" : "open"))
        return failure(EACCES);
    if (plan.armed && (unnamed || (flags & O_CREAT)))
        plan.mode = mode;
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

__attribute__((visibility("default"))) ssize_t write(int fd, const void *bytes, size_t length) {
    if (befallsWrite())
        return -1;
    return meets("write") ? failure(ENOSPC) : ::syscall(SYS_write, fd, bytes, length);
}

__attribute__((visibility("default"))) int fsync(int fd) {
    if (befallsSync())
        return -1;
    return meets("fsync") ? failure(EIO) : static_cast<int>(::syscall(SYS_fsync, fd));
}

__attribute__((visibility("default"))) int linkat(int from, const char *path, int to, const char *name, int flags) {
    if (befallsLink())
        return -1;
    if (meets("linkat"))
        return failure(EIO);
    const auto result = static_cast<int>(::syscall(SYS_linkat, from, path, to, name, flags));
    return losesAnswer("linkat") ? failure(EIO) : result;
}

__attribute__((visibility("default"))) int rename(const char *from, const char *to) noexcept {
    if (meets("rename"))
        return failure(EIO);
    const auto result = static_cast<int>(::syscall(SYS_rename, from, to));
    return losesAnswer("rename") ? failure(EIO) : result;
}

} // extern "C"

namespace {

const std::string oldText = "old";
const Bytes newBytes = pattern(600000);

struct Case {
    const char *name;
    bool unnamedFiles;
    bool exists;
};

void PrintTo(const Case &one, std::ostream *out) {
    *out << one.name;
}

const Case cases[] = {
    {"UnnamedOver", true, true}, {"UnnamedNew", true, false}, {"NamedOver", false, true}, {"NamedNew", false, false}};

struct Outcome {
    int calls = 0;
    unsigned int status = 0;
    std::string hit;
    bool isOld = false;
    bool isNew = false;
    std::size_t litter = 0;
    unsigned firstMode = 0; // permissions that the new file began with
    unsigned mode = 0;      // and those of the file in place
};

class SaveFaults : public testing::TestWithParam<Case> {
protected:
    Outcome save(Fault fault, int at) const {
        const TempDir dir;
        const std::string path = dir / "o.bin";
        if (GetParam().exists)
            writeFile(path, oldText);
        Outcome outcome = fault == Fault::kills ? killed(path, at) : failed(path, fault, at);
        const auto entries = dir.entries();
        const bool present = std::find(entries.begin(), entries.end(), "o.bin") != entries.end();
        outcome.isNew = present && readBytes(path) == newBytes;
        outcome.isOld = GetParam().exists ? present && readFile(path) == oldText : !present;
        outcome.litter = entries.size() - (present ? 1 : 0);
        struct stat info {};
        if (::stat(path.c_str(), &info) == 0)
            outcome.mode = info.st_mode & 07777;
        return outcome;
    }

private:
    Outcome failed(const std::string &path, Fault fault, int at) const {
        Handle image;
        EXPECT_EQ(FILES_CreateImage(image.out(), 1), noError);
        EXPECT_EQ(image.insert(0, 0, Bytes(newBytes.begin(), newBytes.begin() + 300000)), noError);
        EXPECT_EQ(image.insert(1, 300000, Bytes(newBytes.begin() + 300000, newBytes.end())), noError);
        plan = {true, fault, at, 0, GetParam().unnamedFiles, {}, 0};
        Outcome outcome;
        outcome.status = FILES_ImageToFile(path.c_str(), image.get());
        plan.armed = false;
        outcome.calls = plan.calls;
        outcome.hit = plan.hit;
        outcome.firstMode = plan.mode;
        return outcome;
    }

    Outcome killed(const std::string &path, int at) const {
        const pid_t child = ::fork();
        if (child == 0) {
            (void)failed(path, Fault::kills, at);
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << at;
        return {};
    }
};

TEST_P(SaveFaults, WithoutAFault) {
    const Outcome outcome = save(Fault::none, 0);
    EXPECT_EQ(outcome.status, noError);
    EXPECT_TRUE(outcome.isNew);
    EXPECT_EQ(outcome.litter, 0u);
    EXPECT_GE(outcome.calls, 6); // open, two writes, fsync, a name, the directory
}

// What may be read by others is only what they could read before, or what is complete. A new file without a
// name cannot be found by anybody.
TEST_P(SaveFaults, NobodyElseReadsWhatIsNotComplete) {
    const mode_t old = ::umask(022);
    const Outcome outcome = save(Fault::none, 0);
    ::umask(old);
    const bool hidden = GetParam().unnamedFiles && !GetParam().exists;
    EXPECT_EQ(outcome.firstMode, hidden ? 0666u : 0600u);
    EXPECT_EQ(outcome.mode, 0644u);
}

TEST_P(SaveFaults, EachCallFails) {
    const int calls = save(Fault::none, 0).calls;
    for (int at = 1; at <= calls; ++at) {
        const Outcome outcome = save(Fault::fails, at);
        SCOPED_TRACE(std::to_string(at) + " " + outcome.hit);
        EXPECT_EQ(outcome.litter, 0u);
        EXPECT_TRUE(outcome.isOld || outcome.isNew);
        // A failure after the last step leaves the new file, and one that another way is found
        // around is none.
        if (outcome.status == noError)
            EXPECT_TRUE(outcome.isNew);
        else if (at < calls)
            EXPECT_TRUE(outcome.isOld);
    }
}

TEST_P(SaveFaults, TheAnswerOfEachCallThatGivesANameIsLost) {
    const int calls = save(Fault::none, 0).calls;
    int lost = 0;
    for (int at = 1; at <= calls; ++at) {
        const Outcome outcome = save(Fault::loses, at);
        SCOPED_TRACE(std::to_string(at) + " " + outcome.hit);
        lost += outcome.hit.empty() ? 0 : 1;
        EXPECT_EQ(outcome.litter, 0u);
        EXPECT_TRUE(outcome.isOld || outcome.isNew);
        if (outcome.status == noError)
            EXPECT_TRUE(outcome.isNew);
    }
    EXPECT_GE(lost, 1);
}

TEST_P(SaveFaults, KilledBeforeEachCall) {
    const int calls = save(Fault::none, 0).calls;
    for (int at = 1; at <= calls; ++at) {
        const std::string call = save(Fault::fails, at).hit;
        const Outcome outcome = save(Fault::kills, at);
        SCOPED_TRACE(std::to_string(at) + " " + call);
        EXPECT_TRUE(outcome.isOld || outcome.isNew);
        // Without a name, the file has one only for the moment before the rename.
        if (GetParam().unnamedFiles && call != "rename")
            EXPECT_EQ(outcome.litter, 0u);
    }
}

INSTANTIATE_TEST_SUITE_P(Files, SaveFaults, testing::ValuesIn(cases),
                         [](const auto &one) { return std::string(one.param.name); });

} // namespace
