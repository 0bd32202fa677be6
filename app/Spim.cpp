#include "app/Spim.h"

#include <exception>

#include <QString>

#include "app/FileNames.h"
#include "app/Link.h"
#include "app/Progress.h"
#include "app/Report.h"
#include "app/SubOptions.h"
#include "app/UserSystemData.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

QString valueOf(const SubOptionWalk &walk) {
    return QString::fromStdString(walk.value());
}

int setRemap(SubOptionWalk &walk, CCom *&obCCom) {
    if (obCCom->GetInterfaceType() == INTERFACE_USART) {
        g_shareParameter.c_bRemapFlag = valueOf(walk).toInt() != 0;
        g_shareParameter.c_bNeedRemap = g_shareParameter.c_bRemapFlag;
    }
    return 0;
}

int setType(SubOptionWalk &walk, CCom *&) {
    g_shareParameter.c_SPIMType = static_cast<BYTE>(valueOf(walk).toShort());
    return 0;
}

int setSize(SubOptionWalk &walk, CCom *&) {
    g_shareParameter.c_SPIMSize = valueOf(walk).toUInt() << 10; // MB to KB
    return 0;
}

// Throws std::logic_error at the end of the line, its own or that of the scan.
int setFlashDA(SubOptionWalk &walk, CCom *&) {
    g_shareParameter.c_SPIMDA = g_shareParameter.StringToUInt32(wordAt(walk.argc, walk.argv, walk.argIndex), 16);
    if (g_shareParameter.c_SPIMDA != 0)
        GetUserSystemDataFile(walk.argc, walk.argv);
    return 0;
}

const SubOption<CCom *> words[] = {{"--remap", setRemap}, {"--ft", setType}, {"--fs", setSize}, {"--fda", setFlashDA}};

bool readSettings(SubOptionWalk &walk, CCom *obCCom) {
    try {
        return runSubOptions(walk, words, obCCom, OP_ENSPIM_FAILD) == 0;
    } catch (const std::exception &) {
        walk.reportBadParameter();
        return false;
    }
}

void describeBank3(CDevice &device) {
    device.m_haveBank3 = true;
    device.m_Bank3Type = g_shareParameter.c_SPIMType;
    device.m_Bank3Szie = g_shareParameter.c_SPIMSize;
    device.m_Bank3FlashDA = g_shareParameter.c_SPIMDA;
    device.m_Nank3RemapFlag = g_shareParameter.c_bRemapFlag;
}

} // namespace

BYTE spimTypeByte(BYTE type) {
    // MEANT: no type at all is 0x90 too, although the usage text promises 1 as the default.
    return type == 1 ? 0x91 : 0x90;
}

bool EnableBank3(int argc, char **argv, int &arg_index, CCom *obCCom) {
    if (!hasBootLoader(obCCom))
        return false;
    SubOptionWalk walk(argc, argv, arg_index);
    if (!readSettings(walk, obCCom))
        return false;
    g_shareParameter.c_haveSPIM = true;
    if (CDevice *device = obCCom->m_ObBootLoader->m_ObDevice)
        describeBank3(*device);
    return HandleEnSPIM(obCCom);
}

bool HandleEnSPIM(CCom *obCCom) {
    if (!hasBootLoader(obCCom))
        return false;
    EnBank3Param param;
    param.m_bRemapFlag = g_shareParameter.c_bRemapFlag;
    param.m_bNeedRemap = g_shareParameter.c_bNeedRemap;
    param.m_bFlashType = spimTypeByte(g_shareParameter.c_SPIMType);
    param.m_uiFlashSize = g_shareParameter.c_SPIMSize;
    param.m_uiFlashDA = g_shareParameter.c_SPIMDA;
    CBootLoader *control = obCCom->m_ObBootLoader;
    // MEANT: the scan never stores a name that passes here, so the file is not loaded.
    if (g_shareParameter.c_SPIMDA != 0 && IsValidFileName(g_shareParameter.c_strFilePath))
        control->LoadUserSystemDataFromFileToDeviceExceptFAP(g_shareParameter.c_strFilePath);
    control->EnableBank3Func(param);
    return runJob(obCCom);
}
