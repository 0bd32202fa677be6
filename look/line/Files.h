#pragma once

#include <string>

#include "look/line/Line.h"

// Why the name of an image is refused.
std::string refusedName(const std::string &name);

// What a line says about a file that is to be read. False, with the reason told, for one that can't be.
bool canBeRead(Line &line, const std::string &path);

// How long so many bytes take on the link at the least; nothing where its rate is not the line's matter.
void tellTime(Section &action, OptionId link, unsigned long long bytes);
