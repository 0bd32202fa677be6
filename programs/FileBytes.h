#pragma once

#include <string>

// All bytes of a regular file. Throws Refusal, with notAcceptable, for what is missing, is no regular file, can't be
// read or has more than the given number of bytes. What is no regular file is not opened.
std::string bytesOfFile(const std::string &path, std::size_t most);

// The same for a name in an open directory, where a symbolic link is no regular file.
std::string bytesOfFileIn(int directory, const std::string &name, std::size_t most);

// In lower-case hexadecimal digits.
std::string sha256Of(const std::string &bytes);
