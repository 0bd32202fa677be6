#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

#include "look/Report.h"

// What a verb is given when it runs.
struct Call {
    Section &report;
    std::vector<std::string> line; // what stands behind "--", where the verb takes a whole line
};

// Runs a verb after its words are parsed. Returns an exit status; a Refusal ends it too. With 0, a warning in the
// report changes nothing, and an error makes it somethingWrong.
using Look = std::function<int(Call &)>;

// A verb: a row of look/Verbs.cpp, and a file with its function.
struct Verb {
    const char *word;
    const char *what;                 // one line of --help
    bool takesLine;                   // what stands behind "--" is a line of its own, and none of our words
    Look (*declare)(CLI::App &words); // tells the parser the words of the verb
};
