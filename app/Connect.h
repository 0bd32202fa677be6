#pragma once

class CBootLoader;
class CCom;
class CDevice;

// The five connection commands. Each reads its own sub-options, builds the link and stores it at once, connects,
// identifies the chip and prints the device lines. False ends the process with status 2; the reason is printed.

bool DFUConnect(int argc, char **argv, int &arg_index, CCom *&obCCom);
bool USARTConnect(int argc, char **argv, int &arg_index, CCom *&obCCom);
bool I2CConnect(int argc, char **argv, int &arg_index, CCom *&obCCom);
bool CANConnect(int argc, char **argv, int &arg_index, CCom *&obCCom);
bool SPIConnect(int argc, char **argv, int &arg_index, CCom *&obCCom);

// Identifies the chip; null if it could not be.
CDevice *InitDevice(CBootLoader *obBootLoader);
