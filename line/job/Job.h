#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "line/job/Options.h"
#include "line/job/Otp.h"
#include "line/job/Table.h"
#include "line/job/UnitDatum.h"

// What a unit becomes, as a job file says it; docs/line.md explains its keys.

enum class Verify { crc, read, both };
enum class Access { leave, on, high };

struct Job {
    std::string name;
    std::int64_t quantity;
    std::string chip;
    bool eraseProtected;
    bool makeAgain;
    std::string imageName;  // as in the file, for its suffix
    std::string imageBytes; // as read
    Verify verify;
    std::vector<UnitDatum> units;
    OptionBytes options;
    std::vector<OtpBlock> otp;
    Access access = Access::leave;
    bool run = false;
    Place chipPlace;
    Place imagePlace;
};

// Reads the job and the image that it names, each once. Throws Refusal, with notAcceptable and file, line and key, for
// whatever is wrong in it.
Job readJob(const std::string &path);

// The words of a job file for these values.
const char *nameOf(Verify verify);
const char *nameOf(Access access);
