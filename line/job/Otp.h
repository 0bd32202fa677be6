#pragma once

#include <string>
#include <vector>

#include "line/job/Table.h"

// A block of the memory that is written once. Neither can be undone.
struct OtpBlock {
    static constexpr int size = 32;

    int number;
    std::string bytes; // from its start, whole words of 4; empty where it is only locked
    bool lock;
    Place place; // of "block"
};

// Reads the [[otp]] tables of a job, by rising number. Refuses a second one for a block.
std::vector<OtpBlock> readOtp(Table &job);
