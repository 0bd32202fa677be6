#pragma once

#include "programs/Status.h"

constexpr int lookedWell = allDone;
