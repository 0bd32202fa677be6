#pragma once

#include <string>

// The first line of a run's trace, behind time and port.
inline bool isRunLine(const std::string &line) {
    return line.rfind("# run of ", 0) == 0;
}
