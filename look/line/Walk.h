#pragma once

#include "look/line/Line.h"

// Looks at all words of a line as the console walks over them, and fills the report. Returns the exit status that the
// words lead to, on a chip that takes everything.
int lookAtWords(Line &line);
