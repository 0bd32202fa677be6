#pragma once

#include "look/Verb.h"

// "options LINK-WORDS [--diff FILE]" and "options FILE --chip NAME": what option bytes say.
Look declareOptions(CLI::App &words);
