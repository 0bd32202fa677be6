#pragma once

class CCom;

// "-u".
bool Upload(int argc, char **argv, int &arg_index, CCom *obCCom);
