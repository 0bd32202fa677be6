#pragma once

#include <string>

#include "app/SubOptions.h"

// Sets the shared record to what it is without a word.
void loadStartValues();

// Reads the sub-options of a connection into the shared record as the walk reaches them. False at a word that is
// neither option nor sub-option.
bool readLinkSettings(SubOptionWalk &walk, OptionId connection);

// The number in a port name, from its first digit on; 0 if there is none.
int portNumberOf(const std::string &portName);
