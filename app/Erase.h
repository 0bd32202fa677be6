#pragma once

class CCom;

// "-e": 0, or the exit status of the failure. Each "--all" and "--sec" erases at once.
int Erase(int argc, char **argv, int &arg_index, CCom *&obCCom);
