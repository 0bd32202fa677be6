#pragma once

#include <string>

// All bytes of a regular file. Throws Refusal, with notAcceptable, for what is missing, is no regular file, can't be
// read or has more than the given number of bytes.
std::string bytesOfFile(const std::string &path, std::size_t most);

// In lower-case hexadecimal digits.
std::string sha256Of(const std::string &bytes);
