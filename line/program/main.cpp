#include "line/program/Verbs.h"
#include "programs/Border.h"
#include "programs/Status.h"

namespace {

constexpr char name[] = "zv32-line";
constexpr char version[] = "zv32-line " ZV32_VERSION;

Work declare(CLI::App &program, const Verb &verb, Asked &asked) {
    CLI::App *words = program.add_subcommand(verb.word, verb.what);
    words->set_version_flag("--version", version);
    Work work = verb.declare(*words);
    words->add_option("--station", asked.station,
                      "station file; without it /etc/zv32-line/station.toml, if it is there");
    words->add_flag("--json", asked.json, "print JSON in the place of text");
    return work;
}

int line(std::vector<std::string> words) {
    CLI::App program("Makes units: chips that a job tells all of.", name);
    program.set_version_flag("--version", version);
    program.require_subcommand(1);
    Asked asked;
    std::vector<Work> works;
    for (const Verb &verb : verbs())
        works.push_back(declare(program, verb, asked));
    return parsed(program, std::move(words), [&] {
        for (std::size_t i = 0; i < works.size(); ++i)
            if (program.got_subcommand(verbs()[i].word))
                return works[i](asked);
        return badWords;
    });
}

} // namespace

int main(int argc, char **argv) {
    return bordered(name, argc, argv, line);
}
