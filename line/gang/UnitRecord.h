#pragma once

#include <string>

#include "line/gang/Attempt.h"
#include "line/gang/Shift.h"

// The record of an attempt, key by key as docs/line.md tells of it.

// At its beginning: what is not known yet is null.
Json newRecord(const Shift &shift, const Nest &nest);

// The chip has told who it is.
void setIdentified(Json &record, const Json &identified);

// The image that it gets, in whole words: by its bytes as they are written, from the lowest address up.
void setImage(Json &record, const Runs &image);

// How it ended, after so many tries.
void setOutcome(Json &record, const Outcome &outcome, int tries);

// It ended for a reason of ours: "fail" or "refused".
void setResult(Json &record, const char *result, const std::string &cause, const std::string &text);
