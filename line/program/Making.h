#pragma once

#include "line/program/Verb.h"

// The verbs that make units.
Work declareMake(CLI::App &words);
Work declareStation(CLI::App &words);
