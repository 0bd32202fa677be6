#pragma once

#include <string>

#include "look/Report.h"

class CDevice;

// Tells what is in one image file: its format, its ranges and their sums, what lies where no memory is, and why the
// console would not take it. Null: no chip is named. Returns an exit status. Throws Refusal for a file that can't be
// read.
int tellOfImage(const std::string &path, const CDevice *device, Section &report);
