#pragma once

#include <string>

#include "look/Report.h"

class CBootLoader;

// Tells in what the option bytes of a chip, which have been read, differ from those of a file, byte by byte; or, where
// the file's name ends with .toml, from what this job of zv32-line leaves: bytes by their names, sectors that have to
// be protected, access protection. What a job does not name counts as equal. The status: somethingWrong where there is
// any difference. Throws Refusal for a file that the console would not take, a job that zv32-line would not take, and a
// byte that this chip has not.
int tellOptionDifference(const CBootLoader &control, const std::string &path, Section &report);
