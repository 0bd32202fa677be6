#pragma once

#include <string>

#include "line/plan/Plan.h"
#include "line/station/Station.h"

// Approvals of plans: in a directory of root's, a file with the name of the plan's hash that holds its text. Only what
// belongs to root and nobody else may write counts, the directory too.

// Whether a plan has to be approved at this station before units are made by it.
bool needsApproval(const Station &station, const Plan &plan);

// Whether exactly this plan is approved. Anything that is not as it should be is no approval.
bool isApproved(const std::string &directory, const Plan &plan);

// Approves this plan; the file is whole or not there. Throws Refusal, with notApproved, for another hash than the
// plan's and where the directory is not one of root's alone or can't be written.
void approve(const std::string &directory, const Plan &plan, const std::string &hash);
