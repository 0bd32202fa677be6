#include "app/Process.h"

#include <csignal>
#include <cstdlib>
#include <exception>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "foundation/TraceFile.h"

namespace {

void say(const char *text) {
    // Not by a stream, which may want memory when there is none.
    const ssize_t written = write(STDERR_FILENO, text, std::char_traits<char>::length(text));
    static_cast<void>(written); // there is nobody else to tell
}

[[noreturn]] void endUnexpectedly() {
    say("ZV32_ISP_Console: unexpected end: ");
    try {
        if (const std::exception_ptr exception = std::current_exception())
            std::rethrow_exception(exception);
        say("no exception");
    } catch (const std::exception &exception) {
        say(exception.what());
    } catch (...) {
        say("unknown exception");
    }
    say("\n");
    // Without destructors: a job may be running.
    std::_Exit(unexpectedEnd);
}

} // namespace

bool holdStandardDescriptors() {
    // The lowest free number is given out first.
    for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number)
        if (fcntl(number, F_GETFD) == -1 && open("/dev/null", O_RDWR) != number)
            return false;
    return true;
}

void takeFailedWritesAsErrors() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void tellLostTrace() {
    const char *path = std::getenv("ZVBL_TRACE");
    if (path == nullptr || *path == '\0')
        return;
    std::string why;
    const int file = openTraceFile(path, why);
    if (file >= 0)
        close(file);
    else
        say(("ZV32_ISP_Console: no trace is written to " + std::string(path) + ": " + why + "\n").c_str());
}

void reportUnexpectedEnds() {
    std::set_terminate(endUnexpectedly);
}
