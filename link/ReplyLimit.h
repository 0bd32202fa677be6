#pragma once

#include <QtGlobal>

#include "foundation/LibraryTypes.h"

// How long the link waits for the chip's answers, in milliseconds.
namespace replylimit {

constexpr uint whileErasing = 100000; // a chip that erases all of its flash answers after that
constexpr uint usual = 5000;

// Sets the limit back to what the command line asked for; the result is a status byte.
BYTE restore(HANDLE link);

} // namespace replylimit
