#include "app/Download.h"

#include <filesystem>

#include <QThread>

#include "app/Link.h"
#include "app/Progress.h"
#include "app/Report.h"
#include "app/Requests.h"
#include "app/SubOptions.h"
#include "files/CFiles.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"
#include "operations/Operation.h"

namespace {

bool refuse(const std::string &reason) {
    printLine("Error:  " + reason);
    return false;
}

bool fits(quint64 start, quint64 end, const CDevice &device) {
    if (const char *reason = misfitOf(start, end, device))
        return refuse(reason);
    return true;
}

// A file that cannot be opened at once may still be on its way, from a build or a share.
bool openPatiently(CProgramFile &file, const std::string &fileName, CDevice *device) {
    for (int tries = 0; tries < 10; ++tries) {
        if (file.Open(fileName, device) == 0)
            return true;
        QThread::msleep(1000);
    }
    return false;
}

bool elementsFit(CProgramFile &file, const CDevice &device) {
    file.ResetElement();
    while (const PIMAGEELEMENT element = file.GetElement())
        if (!fits(element->dwAddress, element->dwAddress + element->dwDataLength, device))
            return false;
    return true;
}

DownloadParam downloadParam(bool erasedFlag) {
    DownloadParam param;
    param.m_strDownPathFile.append(g_shareParameter.c_filename);
    param.m_uiStartAddress.append(g_shareParameter.c_address);
    // MEANT: an "-e" before it turns the erase off even if it had nothing to erase.
    param.m_enEraseMode = erasedFlag ? ERASEMODE_NONE : NECESSARY;
    param.m_bOptimize = g_shareParameter.c_optimize;
    param.m_bVerify = g_shareParameter.c_Verify;
    param.m_bFAPLevel = 1;
    param.m_bEnBank3 = g_shareParameter.c_haveSPIM;
    param.m_bRemapFlag = g_shareParameter.c_bRemapFlag;
    param.m_bNeedRemap = g_shareParameter.c_bNeedRemap;
    param.m_bFlashType = spimTypeByte(g_shareParameter.c_SPIMType);
    param.m_uiFlashSize = g_shareParameter.c_SPIMSize;
    param.m_uiFlashDA = g_shareParameter.c_SPIMDA;
    return param;
}

} // namespace

bool DownloadFileAndAddressCheck(const std::string &fileName, unsigned int downlaodAddress,
                                 CBootLoader *m_obBootLoader) {
    std::error_code ignored;
    if (!std::filesystem::exists(fileName, ignored))
        return refuse("Please select download file! File Name is " + fileName);
    if (m_obBootLoader == nullptr || m_obBootLoader->m_ObDevice == nullptr)
        return refuse("Device operation failed");
    CDevice &device = *m_obBootLoader->m_ObDevice;
    CProgramFile file;
    if (!openPatiently(file, fileName, &device))
        return refuse("Download file open failed!");
    if (file.m_Type != BIN)
        return elementsFit(file, device);
    return fits(downlaodAddress, downlaodAddress + file.m_UiFileSize, device); // the sum wraps at 32 bits
}

bool Download(int argc, char **argv, int &arg_index, bool erasedFlag, CCom *obCCom) {
    if (!hasBootLoader(obCCom))
        return false;
    SubOptionWalk walk(argc, argv, arg_index);
    if (!readDownload(walk))
        return refuse(walk, false);
    CBootLoader *control = obCCom->m_ObBootLoader;
    if (!DownloadFileAndAddressCheck(g_shareParameter.c_filename, g_shareParameter.c_address, control))
        return false;
    control->DownloadToDevice(downloadParam(erasedFlag));
    return runJob(obCCom);
}
