#pragma once

#include <string>

#include "look/Image.h"
#include "look/Report.h"

class CDevice;
class CUserSystemData;

// Tells what option bytes say, by the layout of their family.
using TellOptions = void (*)(CUserSystemData &data, Section &report);
void tellOptions(CUserSystemData &data, Section &report);
// The same as the [options] of a job of zv32-line: what is not as erased, without access protection.
void tellOptionsAsJob(CUserSystemData &data, Section &report);

// Option bytes as a file holds them: the first range, value and complement. bid: the bootloader's identifier, on which
// the layout of some chips depends. Throws Refusal for a file that the console would not take.
void tellOptionFile(const std::string &path, CDevice &device, int bid, TellOptions tell, Section &report);

// Why the console takes no option bytes from an image, empty if it does. Without a chip the least that any asks for.
std::string optionBytesRefusal(const ImageRead &image, const CDevice *device);
