#pragma once

#include <string>

#include "look/Report.h"

class CDevice;

// Tells what an OTP file would write, write by write, and what nobody can undo. Without a chip, addresses are places in
// the file. False for a file that the console does not take: of more than 1 MB.
bool tellOtp(const std::string &path, const CDevice *device, Section &report);
