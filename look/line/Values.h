#pragma once

#include <string>

#include "app/SubOptions.h"

class CDevice;

// Whether a value is written as what it is read as: what else it holds is passed over or counts as 0.
bool isDecimal(const std::string &text);
bool isHex(const std::string &text); // with or without 0x
bool isSectorRange(const std::string &text);

// The "--y" of "--efap2". A chip that is not known is taken for one that asks for what the line says.
bool isConfirmed(SubOptionWalk &walk, const CDevice *device);
