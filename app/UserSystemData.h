#pragma once

class CCom;

// "-usd" and "-o": the chip's user system data into a file, and a file into the chip. 0, or the exit status.
int UserSystemData(int argc, char **argv, int &arg_index, CCom *obCCom);

// Scans the whole command line for the user system data file of an "-usd" and stores it in c_strFilePath.
// 1 if it found one, else 0. Throws std::logic_error when it runs into the end of the line.
int GetUserSystemDataFile(int argc, char **argv);
