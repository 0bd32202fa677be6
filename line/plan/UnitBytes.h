#pragma once

#include <string>
#include <vector>

#include "line/job/UnitDatum.h"
#include "line/job/UnitText.h"

// The bytes of a datum for one unit, as many as it has; a text is filled up with 00. Throws Refusal, with notMade, for
// a text that has no room, and for what a hook did not supply, or not in this form.
std::string unitBytes(const UnitDatum &datum, const UnitFacts &facts);

// Throws Refusal, with badWords, for an order that no unit may have: one with control characters and, where a datum
// holds it, what is no printable ASCII.
void checkOrder(const std::vector<UnitDatum> &units, const std::string &order);
