#pragma once

#include "look/line/Line.h"

// What each option of a line would do. The index stands on the option's word and ends where the console's does. Returns
// the exit status that the words lead to, on a chip that takes everything.
int lookAtConnection(Line &line, OptionId option);
int lookAtErase(Line &line);
int lookAtProtection(Line &line);
int lookAtDownload(Line &line);
int lookAtUpload(Line &line);
int lookAtUserSystemData(Line &line);
int lookAtRun(Line &line);
int lookAtSpim(Line &line);
int lookAtOtp(Line &line);

// Tells of the words of an option that do not do what they seem to: swallowed ones, values that are missing or are
// none. Returns all of the option's words as one text. The index stays.
std::string checkWords(const Line &line, OptionId option, Section &findings);
