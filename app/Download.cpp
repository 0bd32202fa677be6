#include "app/Download.h"

#include <filesystem>

#include <QThread>

#include "app/FileNames.h"
#include "app/Link.h"
#include "app/Progress.h"
#include "app/Report.h"
#include "app/Spim.h"
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

// Whether an image that starts at the address and ends before the other one lies in flash or SPIM. There is
// no lower bound.
bool fits(quint64 start, quint64 end, const CDevice &device) {
    if (start < ZVCHIP_SPIM_BASE_ADDRESS) {
        const quint64 flashSzie = static_cast<quint64>(device.m_IFlashSize) * 1024;
        return end <= ZVCHIP_FLASH_BASE_ADDRESS + flashSzie ||
               refuse("The file download address or file size out of flash range!");
    }
    if (!g_shareParameter.c_haveSPIM)
        return refuse("No operation can be performed without using SPIM!");
    const quint64 extFlashSzie = static_cast<quint64>(g_shareParameter.c_SPIMSize) * 1024;
    return end <= ZVCHIP_SPIM_BASE_ADDRESS + extFlashSzie ||
           refuse("The file download address or file size out of SPIM range!");
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
    for (int left = file.GetElementCount(); left > 0; --left) {
        const PIMAGEELEMENT element = file.GetElement();
        if (element != nullptr && !fits(element->dwAddress, element->dwAddress + element->dwDataLength, device))
            return false;
    }
    return true;
}

int setAddress(SubOptionWalk &walk, CCom *&) {
    if (walk.hasValue())
        g_shareParameter.c_address = g_shareParameter.StringToUInt32(walk.value(), 16);
    return 0;
}

int setVerify(SubOptionWalk &walk, CCom *&) {
    g_shareParameter.c_Verify = true;
    walk.takeBack();
    return 0;
}

int setOptimize(SubOptionWalk &walk, CCom *&) {
    g_shareParameter.c_optimize = true;
    walk.takeBack();
    return 0;
}

int setFile(SubOptionWalk &walk, CCom *&) {
    if (!IsValidFileName(walk.value())) {
        walk.reportBadParameter();
        return OP_DOWNLOAD_FAILD;
    }
    g_shareParameter.c_filename = walk.value();
    return 0;
}

const SubOption<CCom *> words[] = {{"--addr", setAddress}, {"--v", setVerify}, {"--o", setOptimize}, {"--fn", setFile}};

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
    if (runSubOptions(walk, words, obCCom, OP_DOWNLOAD_FAILD) != 0)
        return false;
    CBootLoader *control = obCCom->m_ObBootLoader;
    if (!DownloadFileAndAddressCheck(g_shareParameter.c_filename, g_shareParameter.c_address, control))
        return false;
    control->DownloadToDevice(downloadParam(erasedFlag));
    return runJob(obCCom);
}
