#pragma once

#include <vector>

#include "line/job/Table.h"
#include "line/job/UnitDatum.h"

// Reads the [[unit]] tables of a job, sorted by address. Refuses two that overlap, and what does not go together.
std::vector<UnitDatum> readUnits(Table &job);

// The words of a job file for these values.
const char *nameOf(UnitValue value);
const char *nameOf(UnitForm form);
