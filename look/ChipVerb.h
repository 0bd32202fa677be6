#pragma once

#include "look/Verb.h"

// "chip LINK-WORDS": who is at a link, and what it allows.
Look declareChip(CLI::App &words);
