#include "app/RunAtAddress.h"

#include <cstdio>

#include "app/Link.h"
#include "app/Report.h"
#include "app/Requests.h"
#include "app/SubOptions.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

bool RunAtAddress(int argc, char **argv, int &arg_index, CCom *obCCom) {
    if (!hasBootLoader(obCCom))
        return false;
    unsigned int address = 0;
    SubOptionWalk walk(argc, argv, arg_index);
    if (!readRun(walk, address))
        return refuse(walk, false);
    const int result = obCCom->m_ObBootLoader->JumpToUserProgram(address);
    char text[64];
    std::snprintf(text, sizeof text, "Your code is running... (0x%08X)", address);
    // MEANT: a failed jump says the same; the exit status alone tells them apart.
    printLine(text);
    return result == 0;
}
