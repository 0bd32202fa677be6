#pragma once

#include "line/station/Station.h"

// Whether nobody but root and whoever runs us decides what this program is. Throws Refusal, with notAcceptable and
// file, line and key, where others may write to it or to a directory above it, those that a symbolic link leads through
// included, and where it is no program. A directory in which each takes away only what is his own counts as safe.
void checkHook(const HookCall &hook);
