#include "app/Protection.h"

#include "app/Link.h"
#include "app/Progress.h"
#include "app/Report.h"
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

int enableAccessProtection(SubOptionWalk &walk, CCom *&obCCom) {
    walk.takeBack();
    obCCom->m_ObBootLoader->AccessProtect(1);
    return runOr(OP_EFAP1_FAILD, obCCom);
}

int enableHighAccessProtection(SubOptionWalk &walk, CCom *&obCCom) {
    if (!familyOf(obCCom).has(confirmsHighProtection)) {
        walk.takeBack();
    } else if (ShareParameter::ToLower(walk.value()) != "--y") {
        printLine(confirmText);
        return OP_EFAP2_FAILD;
    }
    obCCom->m_ObBootLoader->AccessProtect(2);
    return runOr(OP_EFAP2_FAILD, obCCom);
}

int disableAccessProtection(SubOptionWalk &walk, CCom *&obCCom) {
    walk.takeBack();
    obCCom->m_ObBootLoader->ReadoutUnProtect();
    return runOr(OP_DFAP_FAILD, obCCom);
}

int enableEraseProgramProtection(SubOptionWalk &walk, CCom *&obCCom) {
    QList<int> sectors;
    if (!appendSectors(walk.value(), obCCom, sectors)) {
        walk.reportBadParameter();
        return OP_EEPP_FAILD;
    }
    obCCom->m_ObBootLoader->EraseProgramProtect(sectors);
    return runOr(OP_EEPP_FAILD, obCCom);
}

int disableEraseProgramProtection(SubOptionWalk &walk, CCom *&obCCom) {
    walk.takeBack();
    obCCom->m_ObBootLoader->WriteUnProtect();
    return runOr(OP_DEPP_FAILD, obCCom);
}

// clang-format off
const SubOption<CCom *> words[] = {
    {"--efap", enableAccessProtection},       {"--erp", enableAccessProtection},
    {"--efap1", enableAccessProtection},      {"--efap2", enableHighAccessProtection},
    {"--dfap", disableAccessProtection},      {"--drp", disableAccessProtection},
    {"--eepp", enableEraseProgramProtection}, {"--ewp", enableEraseProgramProtection},
    {"--depp", disableEraseProgramProtection}, {"--dwp", disableEraseProgramProtection},
};
// clang-format on

} // namespace

int Protection(int argc, char **argv, int &arg_index, CCom *obCCom) {
    if (!hasBootLoader(obCCom))
        return OP_CONNECT_FAILD;
    SubOptionWalk walk(argc, argv, arg_index);
    return runSubOptions(walk, words, obCCom, OP_BAD_PARAM);
}
