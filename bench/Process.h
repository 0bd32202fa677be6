#pragma once

#include <string>
#include <vector>

namespace bench {

struct Cost {
    double milliseconds; // from the start of the process to its end
    double peakMegabytes;
};

// Runs a program to its end; throws std::runtime_error if it fails.
Cost runProcess(const std::vector<std::string> &command);

bool sameContent(const std::string &first, const std::string &second);

} // namespace bench
