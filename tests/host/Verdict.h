#pragma once

#include "tests/host/Place.h"

namespace host {

// A run that nothing went wrong in.
struct Good {
    Run run;
    std::optional<std::string> output; // the file that it makes
    std::string changes;
};

Good goodRun(Place &place, const Job &job);

// What came of a run.
struct Verdict {
    bool reached = true; // what was to go wrong did
    bool right = false;  // it ended with 0, and all is as after a good run
    bool left = false;   // the whole file stays beside its place under a name of its own
    std::string lie;     // what must not be: "" for nothing
};

Verdict judge(Place &place, const Job &job, const Case &harmed, const Good &good);

} // namespace host
