#pragma once

#include <string>
#include <vector>

#include "line/job/Job.h"
#include "line/plan/Chip.h"
#include "line/plan/UnitImage.h"

// What is done to every unit of a job, as a text that says all of it. There is no date, path or port in it.
struct Plan {
    std::string text;
    std::string hash;         // SHA-256 of the text, in lower-case hexadecimal digits
    std::string imageHash;    // that of the image file
    std::vector<int> sectors; // that are erased, rising
    bool irreversible;        // something in it can't be undone
};

// Throws Refusal, with notAcceptable, for what the chip has not.
Plan planOf(const Job &job, const Chip &chip, const Runs &image);
