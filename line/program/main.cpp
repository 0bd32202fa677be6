#include <CLI/CLI.hpp>
#include <clocale>
#include <csignal>
#include <functional>
#include <iostream>
#include <string>

#include "line/program/Work.h"
#include "programs/Status.h"
#include "programs/Text.h"

namespace {

constexpr char version[] = "zv32-line " ZV32_VERSION;

int complain(int status, const std::string &text) {
    std::cerr << "zv32-line: " << harmless(text) << std::endl;
    return status;
}

struct Verb {
    const char *word;
    const char *what; // one line of --help
    int (*work)(const Asked &asked);
    void (*declare)(CLI::App &words, Asked &asked); // those that no other verb has; may be null
};

const Verb verbs[] = {
    {"check", "read a job, tell its plan and the plan's hash, and touch nothing", check,
     [](CLI::App &words, Asked &asked) { words.add_flag("--plan", asked.plan, "the text of the plan alone"); }},
    {"approve", "approve exactly this plan, as root", approve,
     [](CLI::App &words, Asked &asked) {
         words.add_option("HASH", asked.hash, "the hash of the plan, as check tells it")->required();
     }},
    {"rehearse", "make one unit on a simulated chip", rehearse,
     [](CLI::App &words, Asked &asked) {
         words.add_option("--order", asked.order, "the order that the unit is for");
         words.add_option("--keep", asked.keep, "keep the chip's memory in this file, as zv32-sim --state does");
     }},
};

void declare(CLI::App &program, const Verb &verb, Asked &asked) {
    CLI::App *words = program.add_subcommand(verb.word, verb.what);
    words->set_version_flag("--version", version);
    words->add_option("JOB", asked.job, "job file")->required();
    words->add_option("--station", asked.station,
                      "station file; without it /etc/zv32-line/station.toml, if it is there");
    words->add_flag("--json", asked.json, "print JSON in the place of text");
    if (verb.declare != nullptr)
        verb.declare(*words, asked);
}

int run(int argc, char **argv) {
    CLI::App program("Makes units: chips that a job tells all of.", "zv32-line");
    program.set_version_flag("--version", version);
    program.require_subcommand(1);
    Asked asked;
    for (const Verb &verb : verbs)
        declare(program, verb, asked);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return program.exit(error) == 0 ? allDone : badWords;
    }
    for (const Verb &verb : verbs)
        if (program.got_subcommand(verb.word)) {
            const int status = verb.work(asked);
            std::cout.flush();
            return std::cout ? status : complain(notAcceptable, "the answer can't be written");
        }
    return badWords;
}

} // namespace

int main(int argc, char **argv) {
    std::setlocale(LC_ALL, "C");
    std::signal(SIGPIPE, SIG_IGN); // a reader that went away is a failure of a write
    try {
        return run(argc, argv);
    } catch (const Refusal &refusal) {
        return complain(refusal.status, refusal.what());
    } catch (const std::exception &failure) {
        return complain(notAcceptable, failure.what());
    }
}
