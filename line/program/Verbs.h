#pragma once

#include <vector>

#include "line/program/Verb.h"

// In the order of --help.
const std::vector<Verb> &verbs();
