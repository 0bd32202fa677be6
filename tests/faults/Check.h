#pragma once

#include "tests/faults/Campaign.h"
#include "tests/faults/Lines.h"

namespace faults {

// A line as it goes when nothing goes wrong, and what came before.
struct Good {
    CommandLine line;
    std::string words; // with those of the connection
    Memory start;
    std::map<std::string, std::string> files;
    Ending ending;
    std::vector<Action> actions;
    std::vector<std::size_t> lastCalls; // of each action: the number of its last call
};

// Runs it. Throws when it fails.
Good runWell(Machine &machine, const CommandLine &line);

using Complaints = std::vector<std::string>;

// What holds of every run, whatever went wrong in it: it ends by itself, files are old or new, cells that the line has
// nothing to do with are as they were, no chip is locked for ever, and 0 is the truth, unless nobody looks.
// Where one command became another, the chip did what nobody asked for, and cells may be any.
enum class Looks : std::uint8_t { yes, no };
void checkState(const Good &good, const Ending &ending, Complaints &complaints, Looks looks = Looks::yes);

// Whether it ended with 0, and left chip and files as a good run does.
bool hasDone(const Good &good, const Ending &ending);

// That the exit status is one of that action's, and that the last text is one of its own or that of the status.
void checkReport(const Action &action, const std::vector<std::string> &texts, const Ending &ending,
                 Complaints &complaints);

// Runs the line again after a run that failed, on the chip as it was left, switched off and on: it succeeds, or tells
// what stands in the way. A chip that is access-protected since has to be one that can be unprotected, and programmed
// then.
void checkSecondRun(Machine &machine, const Good &good, const Ending &first, Row &row, Complaints &complaints);

} // namespace faults
