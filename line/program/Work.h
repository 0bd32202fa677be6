#pragma once

#include "line/program/Verb.h"

// The verbs of one job.
Work declareCheck(CLI::App &words);
Work declareApprove(CLI::App &words);
Work declareRehearse(CLI::App &words);
