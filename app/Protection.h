#pragma once

class CCom;

// "-p": turns access protection or erase and program protection on or off. 0, or the exit status.
int Protection(int argc, char **argv, int &arg_index, CCom *obCCom);
