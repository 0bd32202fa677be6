#include "app/Spim.h"

#include <exception>

#include "app/FileNames.h"
#include "app/Link.h"
#include "app/Progress.h"
#include "app/Report.h"
#include "app/Requests.h"
#include "app/SubOptions.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

bool readSettings(SubOptionWalk &walk, const CCom *obCCom) {
    try {
        if (readSpim(walk, obCCom->GetInterfaceType() == INTERFACE_USART))
            return true;
    } catch (const std::exception &) {
        // The line ended where a value was needed.
    }
    return refuse(walk, false);
}

void describeBank3(CDevice &device) {
    device.m_haveBank3 = true;
    device.m_Bank3Type = g_shareParameter.c_SPIMType;
    device.m_Bank3Szie = g_shareParameter.c_SPIMSize;
    device.m_Bank3FlashDA = g_shareParameter.c_SPIMDA;
    device.m_Nank3RemapFlag = g_shareParameter.c_bRemapFlag;
}

} // namespace

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
