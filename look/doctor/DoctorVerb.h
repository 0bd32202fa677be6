#pragma once

#include "look/Verb.h"

// "doctor [PORT]...": what keeps ports from working, and what to do about it.
Look declareDoctor(CLI::App &words);
