#pragma once

#include <string>

// Whether a name is a path with a "/" whose last part ends in HEX, BIN, SREC or S19, in any case.
bool IsValidFileName(const std::string &fileName);

// The same for ZVTP.
bool IsValidOTPFileName(const std::string &fileName);
