#include "programs/Border.h"

#include <algorithm>
#include <clocale>
#include <csignal>
#include <iostream>

#include "programs/Status.h"
#include "programs/Text.h"

namespace {

int complain(const char *program, int status, const std::string &text) {
    std::cerr << program << ": " << harmless(text) << std::endl;
    return status;
}

} // namespace

int parsed(CLI::App &program, std::vector<std::string> words, const std::function<int()> &work) {
    std::reverse(words.begin(), words.end()); // as the parser wants them
    try {
        program.parse(std::move(words));
    } catch (const CLI::ParseError &error) {
        return program.exit(error) == 0 ? allDone : badWords;
    }
    return work();
}

int bordered(const char *program, int argc, char **argv, const std::function<int(std::vector<std::string>)> &work) {
    std::setlocale(LC_ALL, "C");
    std::signal(SIGPIPE, SIG_IGN); // a reader that went away is a failure of a write
    std::signal(SIGXFSZ, SIG_IGN); // so is a file that may not grow
    try {
        const int status = work(std::vector<std::string>(argv + 1, argv + argc));
        std::cout.flush();
        const int unwritten = status == allDone ? notAcceptable : status;
        return std::cout ? status : complain(program, unwritten, "the report can't be written");
    } catch (const Refusal &refusal) {
        return complain(program, refusal.status, refusal.what());
    } catch (const std::exception &failure) {
        return complain(program, notAcceptable, failure.what());
    }
}
