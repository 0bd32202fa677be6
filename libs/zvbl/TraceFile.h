#pragma once

#include <string>

namespace zvbl {

// Opens the file of a trace for appending; -1: it can't be. A name that is a link is not followed where
// others may write to its directory, unless the link belongs to us or to the owner of the directory: it
// could lead to any file of ours.
int openTraceFile(const std::string &path);

} // namespace zvbl
