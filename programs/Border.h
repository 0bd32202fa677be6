#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

// The border of a program beside the console: nothing that goes wrong inside gets past it.

// Parses the words that were declared and returns what the work returns, an exit status. Where a word is none, or asks
// for help, says so and returns badWords or allDone.
int parsed(CLI::App &program, std::vector<std::string> words, const std::function<int()> &work);

// Does the work with the words of a command line and returns its exit status, or that of the Refusal that ended it,
// told on standard error behind the program's name. What the work has written has reached standard output, or that is a
// failure too.
int bordered(const char *program, int argc, char **argv, const std::function<int(std::vector<std::string>)> &work);
