#pragma once

class CCom;

// "-usd" and "-o": the chip's user system data into a file, and a file into the chip. 0, or the exit status.
int UserSystemData(int argc, char **argv, int &arg_index, CCom *obCCom);
