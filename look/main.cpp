#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include <unistd.h>

#include "look/Status.h"
#include "look/Verbs.h"
#include "programs/Border.h"
#include "programs/Json.h"

namespace {

constexpr char lookVersion[] = "zv32-look " ZV32_VERSION;

bool wantsColour() {
    const char *no = std::getenv("NO_COLOR");
    const char *terminal = std::getenv("TERM");
    return isatty(STDOUT_FILENO) != 0 && (no == nullptr || *no == '\0') &&
           (terminal == nullptr || std::string(terminal) != "dumb");
}

void print(const std::string &verb, int status, const Section &report, bool asJson) {
    if (!asJson) {
        std::cout << report.text(wantsColour());
        return;
    }
    Json whole = {{"verb", verb}, {"status", status}};
    whole.update(report.json());
    std::cout << printed(whole, 2) << '\n';
}

int run(const Verb &verb, const Look &look, std::vector<std::string> line, bool asJson) {
    Section report;
    Call call{report, std::move(line)};
    int status = look(call);
    if (status == lookedWell && report.worst() == Mark::error)
        status = somethingWrong;
    print(verb.word, status, report, asJson);
    return status;
}

// Takes the words behind "--" away, where the verb has a line of its own there.
std::vector<std::string> takeLine(std::vector<std::string> &words) {
    const auto dashes = std::find(words.begin(), words.end(), "--");
    const auto takesLine = [&words](const Verb &verb) { return verb.takesLine && words.front() == verb.word; };
    if (dashes == words.end() || std::none_of(verbs().begin(), verbs().end(), takesLine))
        return {};
    std::vector<std::string> line(dashes + 1, words.end());
    words.erase(dashes, words.end());
    return line;
}

int lookAt(std::vector<std::string> words) {
    CLI::App program("Looks at ZV32 chips, at what goes into them and at the ports they hang on, and changes nothing.",
                     "zv32-look");
    program.set_version_flag("--version", lookVersion);
    program.require_subcommand(1);
    bool asJson = false;
    std::vector<Look> looks;
    for (const Verb &verb : verbs()) {
        CLI::App *sub = program.add_subcommand(verb.word, verb.what);
        sub->set_version_flag("--version", lookVersion);
        sub->add_flag("--json", asJson, "print JSON in the place of text");
        looks.push_back(verb.declare(*sub));
    }
    std::vector<std::string> line = takeLine(words);
    return parsed(program, std::move(words), [&] {
        for (std::size_t i = 0; i < looks.size(); ++i)
            if (program.got_subcommand(verbs()[i].word))
                return run(verbs()[i], looks[i], std::move(line), asJson);
        return badWords;
    });
}

} // namespace

int main(int argc, char **argv) {
    return bordered("zv32-look", argc, argv, lookAt);
}
