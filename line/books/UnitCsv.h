#pragma once

#include <string>

// Records as rows of comma-separated values (RFC 4180, lines end with LF alone): text that needs it in quotes, "?" in
// the place of each control character, nothing for null and for what a record does not tell.

// The names of the columns, without the end of the line.
std::string csvHead();
// The row of a record. What is no record is a row of nothing.
std::string csvRow(const std::string &record);
