#pragma once

#include <vector>

#include "foundation/LibraryTypes.h"
#include "line/channel/Channel.h"

class CBootLoader;

// Option bytes by their names, {"ssb":255,"data0":18}, laid into the compact form of a chip. Throws Failure for a byte
// that this chip has not.
std::vector<BYTE> optionsIn(std::vector<BYTE> chip, const Json &wanted, const CBootLoader &control);

// Whether a compact form has a bit that protects sectors.
bool protectsSectors(const std::vector<BYTE> &chip, const CBootLoader &control);

// Writes a compact form, unless the chip holds it already, and reads it back: the chip restarts. Throws Failure.
void writeOptions(CBootLoader &control, std::vector<BYTE> wanted);

// As the chip holds them. Throws Failure.
std::vector<BYTE> readOptions(CBootLoader &control, const char *cause);
