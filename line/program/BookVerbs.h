#pragma once

#include "line/program/Verb.h"

// What the register tells of units that were made.
Work declareUnits(CLI::App &words);
Work declareStats(CLI::App &words);
