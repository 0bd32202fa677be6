#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "line/job/Job.h"
#include "line/job/UnitText.h"
#include "line/plan/Chip.h"

// Bytes at an address.
struct Run {
    std::uint32_t address;
    std::string bytes;

    std::uint64_t end() const { return std::uint64_t(address) + bytes.size(); }
};

// By rising address, none touching the next.
using Runs = std::vector<Run>;

// The image of a job. Throws Refusal, with the place of "image.file" and the line of the image, for one that can't be
// read or has bytes outside of the flash; and for unit data outside of it.
Runs imageOf(const Job &job, const Chip &chip);

// The image of one unit: that of the job, with the unit's data in it. Throws Refusal, with notMade, for data that have
// no room.
Runs unitImageOf(const Job &job, const Runs &image, const UnitFacts &facts);

// The same in whole words of 4 bytes, as chips are written; what a word lacks is FF.
Runs wholeWords(Runs runs);

// All bytes of them, one after the other.
std::string bytesOf(const Runs &runs);
