#pragma once

#include <string>

#include "line/job/Job.h"
#include "line/plan/Chip.h"

// What a plan says of option bytes, in the chip's order, and sector protection: "ssb=FF data0=12 protect=0-15".
std::string optionText(const OptionBytes &options, const Chip &chip);

// Of one block of OTP memory: "block 3 00112233 locked".
std::string otpText(const OtpBlock &block);

// What can't be undone: "otp, otp locks, access high"; empty where there is nothing.
std::string irreversibleText(const Job &job);
