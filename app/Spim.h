#pragma once

class CCom;

// "-enspim": makes the external SPI flash behind the chip's SPIM interface usable for the rest of the line.
bool EnableBank3(int argc, char **argv, int &arg_index, CCom *obCCom);

// Runs the job that enables it with the values of the shared record.
bool HandleEnSPIM(CCom *obCCom);
