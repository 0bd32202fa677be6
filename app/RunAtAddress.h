#pragma once

class CCom;

// "-r".
bool RunAtAddress(int argc, char **argv, int &arg_index, CCom *obCCom);
