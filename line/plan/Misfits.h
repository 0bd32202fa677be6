#pragma once

#include "line/job/Job.h"
#include "line/plan/Chip.h"

// Throws Refusal, with notAcceptable, for an option byte, a sector or a block of OTP memory that a chip has not.
void refuseMisfits(const Job &job, const Chip &chip);
