#include "app/Erase.h"

#include "app/Link.h"
#include "app/Progress.h"
#include "app/Report.h"
#include "app/Sectors.h"
#include "app/SubOptions.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"
#include "operations/Operation.h"

namespace {

int eraseAll(SubOptionWalk &, CCom *&obCCom) {
    obCCom->m_ObBootLoader->EraseFlash(EraseParam());
    const bool succeeded = runJob(obCCom);
    if (succeeded)
        return OP_SUCCESS;
    return g_shareParameter.c_haveSPIM ? OP_MCU_ALLERASE_SPIM_FAILD : OP_MCU_ALLERASE_FLASH_FAILD;
}

int eraseSectors(SubOptionWalk &walk, CCom *&obCCom) {
    EraseParam param;
    if (!appendSectors(walk.value(), deviceOf(obCCom), param.m_iSectorIndex)) {
        WriteInforAndWaitInput("bad parameter " + walk.value());
        return OP_MCU_SECERASE_FAILD;
    }
    obCCom->m_ObBootLoader->EraseFlash(param);
    return runJob(obCCom) ? OP_SUCCESS : OP_MCU_SECERASE_FAILD;
}

const SubOption<CCom *> words[] = {{SubId::all, eraseAll}, {SubId::sectors, eraseSectors}};

} // namespace

int Erase(int argc, char **argv, int &arg_index, CCom *&obCCom) {
    if (!hasBootLoader(obCCom))
        return OP_CONNECT_FAILD;
    SubOptionWalk walk(argc, argv, arg_index);
    const int status = runSubOptions(walk, OptionId::erase, words, obCCom);
    return walk.atBadWord() ? refuse(walk, OP_BAD_PARAM) : status;
}
