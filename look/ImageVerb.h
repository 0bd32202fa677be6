#pragma once

#include "look/Verb.h"

// zv32-look image FILE...
Look declareImage(CLI::App &words);
