#pragma once

#include <sys/types.h>

#include "tests/host/Watched.h"

namespace host {

// Starts a program that stops before its first step, and lets us watch it.
pid_t startChild(const Command &command);

// Where it leaves what it says.
std::string outputOf(const Command &command);
std::string errorsOf(const Command &command);

} // namespace host
