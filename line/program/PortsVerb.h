#pragma once

#include "line/program/Verb.h"

// What is plugged in.
Work declarePorts(CLI::App &words);
