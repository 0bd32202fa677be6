#pragma once

#include "look/Verb.h"

// zv32-look otp FILE [--chip NAME], and zv32-look otp --pack TABLE -o FILE
Look declareOtp(CLI::App &words);
