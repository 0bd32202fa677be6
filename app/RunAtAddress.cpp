#include "app/RunAtAddress.h"

#include <cstdio>

#include "app/Link.h"
#include "app/Report.h"
#include "app/SubOptions.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

int setAddress(SubOptionWalk &walk, unsigned int &address) {
    if (walk.hasValue())
        address = g_shareParameter.StringToUInt32(walk.value(), 16);
    return 0;
}

const SubOption<unsigned int> words[] = {{"--addr", setAddress}};

} // namespace

bool RunAtAddress(int argc, char **argv, int &arg_index, CCom *obCCom) {
    if (!hasBootLoader(obCCom))
        return false;
    unsigned int address = ZVCHIP_FLASH_BASE_ADDRESS; // not that of "-d"
    SubOptionWalk walk(argc, argv, arg_index);
    if (runSubOptions(walk, words, address, OP_RUN_AT_ADDR_FAILD) != 0)
        return false;
    const int result = obCCom->m_ObBootLoader->JumpToUserProgram(address);
    char text[64];
    std::snprintf(text, sizeof text, "Your code is running... (0x%08X)", address);
    // MEANT: a failed jump says the same; the exit status alone tells them apart.
    printLine(text);
    return result == 0;
}
