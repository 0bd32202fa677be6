#pragma once

#include <string>
#include <vector>

#include "look/Value.h"

// A chip at the other end of the line: the name of its map, and what the recording double answers as it.
struct LineChip {
    std::string name;
    std::string script; // of the double
};

// What a line came to: the exit status, and what was done to the chip, in order: "connect ttyS0 115200 8 2", "erase 3",
// "erase FFFE", "write 08000000 2048", "verify 08000000 2048", "read 08000000 2048", "protect access 1", "go 08000000"
// and so on. Neighbours that are written, verified or read are one.
struct LineOutcome {
    int status = -1;
    std::vector<std::string> done;
};

// What zv32-look says of a line, as JSON; no chip is named for an empty name.
Json lookAtLine(const std::string &chip, const std::vector<std::string> &words);

// Runs the console itself in the working directory, against the recording double of the bootloader library.
LineOutcome runConsole(const LineChip &chip, const std::vector<std::string> &words);

// What zv32-look says of the same line.
LineOutcome lookAtConsoleLine(const LineChip &chip, const std::vector<std::string> &words);
