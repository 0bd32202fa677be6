#pragma once

#include <string>

// The text with "?" in the place of each control character, also of those that are longer in UTF-8 and of those that
// turn the direction of a text round: what comes from a file or a chip could tell a terminal something, or a reader
// what is not so.
std::string harmless(const std::string &text);

// Whether there is one in it.
bool isHarmless(const std::string &text);

// The text of JSON with escapes in the place of control characters that JSON itself lets stand: it says the same.
std::string harmlessJson(const std::string &json);

// Lower-case hexadecimal digits of bytes.
std::string hexOf(const void *bytes, std::size_t length);

// The bytes that pairs of hexadecimal digits stand for. Throws std::exception for what is none.
std::string bytesOfHex(const std::string &digits);
