#pragma once

#include <QList>

#include "look/Value.h"

class CDevice;

// Sector numbers as ranges: "0-3, 7 (5 sectors)"; in JSON a list of [first, last].
Value sectorsValue(const QList<int> &sectors);

// Without the number of them.
std::string rangesText(const QList<int> &sectors);
