#include "app/Report.h"

#include <iostream>

#include "app/SubOptions.h"

void printLine(const std::string &text) {
    std::cout << text << std::endl;
}

void WriteInforAndWaitInput(const std::string &text) {
    printLine(text);
}

void WriteBadParameterInfor(char **argv, int arg_index) {
    std::cout << "bad parameter \"" << std::flush;
    const char *word = argv[arg_index];
    if (word == nullptr) {
        // MEANT: there is no word to print, and nothing is printed from here on.
        std::cout.setstate(std::ios::badbit);
        return;
    }
    std::cout << word << "\"" << std::endl;
}

int refuse(const SubOptionWalk &walk, int status) {
    WriteBadParameterInfor(walk.argv, walk.argIndex);
    return status;
}
