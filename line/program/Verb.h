#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

// The words that every verb has.
struct Asked {
    std::string station; // path of the station file, empty for that of the system
    bool json = false;   // the answer is to be JSON
};

// Does what a verb is for, after its words are parsed. Returns an exit status or throws Refusal; what it tells goes to
// standard output.
using Work = std::function<int(const Asked &)>;

// A verb: a row of line/program/Verbs.cpp, and a file with its function.
struct Verb {
    const char *word;
    const char *what;                 // one line of --help
    Work (*declare)(CLI::App &words); // tells the parser the words that not every verb has
};
