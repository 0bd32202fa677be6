#pragma once

#include "look/Verb.h"

// zv32-look line [--chip NAME] -- WORDS...
Look declareLine(CLI::App &words);
