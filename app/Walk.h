#pragma once

// Acts on the words of the command line, without the program's name, from left to right, each option at once.
// Returns the exit status. argv is closed by a null entry.
int walkCommandLine(int argc, char **argv);
