#pragma once

#include <string>

// The file that ZVBL_TRACE of the environment names: the link library writes into it, and a program that uses the
// library can tell its user why it would not.

// Opens such a file for appending, and makes it if it is not there; -1: it can't be, and `why` tells. A name that is
// a link is not followed where others may write to its directory, unless the link belongs to us or to the owner of
// the directory: it could lead to any file of ours.
int openTraceFile(const std::string &path, std::string &why);
