#pragma once

#include <string>

#include "look/Report.h"

// Tells what is in one image file. Throws Refusal for a file that can't be read.
void tellOfImage(const std::string &path, Section &report);
