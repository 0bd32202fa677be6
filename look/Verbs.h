#pragma once

#include <vector>

#include "look/Verb.h"

// In the order of --help.
const std::vector<Verb> &verbs();
