#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/faults/Machine.h"

namespace faults {

// A command line, behind its connection words.
struct CommandLine {
    const char *chip;
    LinkNumber link;
    const char *words;
    const char *before = nullptr; // words of a line that makes the chip what this one needs
};

std::string nameOf(const CommandLine &line);

// Every option word on a chip of each layout of the option bytes.
extern const std::vector<CommandLine> commandLines;

// Every kind of session behind an adapter of CAN, which only a line tells from a CAN bus.
extern const std::vector<CommandLine> adapterLines;

// The files that the lines read, and those that they write, which are there before with other content.
std::map<std::string, std::string> filesFor(const std::string &chip);

// An option word of a line with what stands behind it.
struct Action {
    std::string words;
    std::vector<int> statuses;      // with which a line ends whose action failed
    std::vector<std::string> texts; // of a failure, beside those of the library's statuses
};

std::vector<Action> actionsOf(const std::string &words);

} // namespace faults
