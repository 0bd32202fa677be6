#pragma once

#include <string>

#include "line/job/UnitDatum.h"
#include "line/job/UnitText.h"

// The bytes of a datum for one unit, as many as it has; a text is filled up with 00. Throws Refusal, with notMade, for
// a text that has no room, and for what a hook did not supply, or not in this form.
std::string unitBytes(const UnitDatum &datum, const UnitFacts &facts);
