#pragma once

#include <string>

namespace host {

// What came of the cases of one sweep of one job.
struct Count {
    unsigned cases = 0;
    unsigned right = 0;
    unsigned left = 0; // files that stay beside their place
    unsigned lies = 0;
    double seconds = 0; // of processor time
};

std::string textOf(const Count &count);
Count countOf(const std::string &text);

} // namespace host
