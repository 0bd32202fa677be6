#pragma once

#include "look/Verb.h"

// "options LINK-WORDS [--diff FILE] [--toml]" and "options FILE --chip NAME [--toml]": what option bytes say.
Look declareOptions(CLI::App &words);
