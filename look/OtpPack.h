#pragma once

#include <string>

class CDevice;

// Makes a file of -otp from a text with a line for each block: its number; its 32 bytes as hexadecimal digits, as a
// text in quotes (both filled up with FF) or "-" to leave it as it is; and "lock", if it is to be locked. Behind "#"
// stands a comment. The file has a record for each block up to the last one that is named, so that lock bytes meet
// their blocks, and the padding that makes all of them count. Throws Refusal, with the line, for what is none of this,
// and for a block that the chip does not have. Null: no chip is named.
void packOtp(const std::string &table, const std::string &output, const CDevice *device);
