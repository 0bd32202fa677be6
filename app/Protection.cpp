#include "app/Protection.h"

#include "app/Link.h"
#include "app/Progress.h"
#include "app/Report.h"
#include "app/Requests.h"
#include "app/Sectors.h"
#include "app/SubOptions.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

const char *const confirmText = "ZV32F425/F423/A423/L021/F405/F402/F455/F456/F457/F490/M412/M416/G412/F422/F426 need "
                                "a parameter \"--y\" for operation \"--efap2\"!";

int runOr(int failure, CCom *obCCom) {
    return runJob(obCCom) ? OP_SUCCESS : failure;
}

int enableAccessProtection(SubOptionWalk &, CCom *&obCCom) {
    obCCom->m_ObBootLoader->AccessProtect(1);
    return runOr(OP_EFAP1_FAILD, obCCom);
}

int enableHighAccessProtection(SubOptionWalk &walk, CCom *&obCCom) {
    if (!readConfirmation(walk, deviceOf(obCCom))) {
        printLine(confirmText);
        return OP_EFAP2_FAILD;
    }
    obCCom->m_ObBootLoader->AccessProtect(2);
    return runOr(OP_EFAP2_FAILD, obCCom);
}

int disableAccessProtection(SubOptionWalk &, CCom *&obCCom) {
    obCCom->m_ObBootLoader->ReadoutUnProtect();
    return runOr(OP_DFAP_FAILD, obCCom);
}

int enableEraseProgramProtection(SubOptionWalk &walk, CCom *&obCCom) {
    QList<int> sectors;
    if (!appendSectors(walk.value(), deviceOf(obCCom), sectors))
        return refuse(walk, OP_EEPP_FAILD);
    obCCom->m_ObBootLoader->EraseProgramProtect(sectors);
    return runOr(OP_EEPP_FAILD, obCCom);
}

int disableEraseProgramProtection(SubOptionWalk &, CCom *&obCCom) {
    obCCom->m_ObBootLoader->WriteUnProtect();
    return runOr(OP_DEPP_FAILD, obCCom);
}

const SubOption<CCom *> words[] = {
    {SubId::protectAccess, enableAccessProtection},           {SubId::protectAccessHigh, enableHighAccessProtection},
    {SubId::unprotectAccess, disableAccessProtection},        {SubId::protectSectors, enableEraseProgramProtection},
    {SubId::unprotectSectors, disableEraseProgramProtection},
};

} // namespace

int Protection(int argc, char **argv, int &arg_index, CCom *obCCom) {
    if (!hasBootLoader(obCCom))
        return OP_CONNECT_FAILD;
    SubOptionWalk walk(argc, argv, arg_index);
    const int status = runSubOptions(walk, OptionId::protection, words, obCCom);
    return walk.atBadWord() ? refuse(walk, OP_BAD_PARAM) : status;
}
