#include "files/UserSystemDataFile.h"

#include <cstdlib>

#include "foundation/Result.h"

int CUserSystemDataFile::Open(std::string strPath, CDevice *obDevice) {
    CFiles::Open(strPath, obDevice);
    unsigned int status = FILES_ImageFromFile(strPath.c_str(), &m_pImage, 0);
    if (status != FILES_NOERROR)
        return CResult::Convert(status);
    unsigned int count = 0;
    status = FILES_GetImageNbElement(m_pImage, &count);
    // MEANT: whatever else the file holds is not looked at.
    if (status == FILES_NOERROR && count != 0)
        status = appendElement(0);
    if (status == FILES_NOERROR)
        m_StrPath = strPath;
    return CResult::Convert(status);
}

int CUserSystemDataFile::Create(CDevice *obDevice) {
    CFiles::Create(obDevice);
    if (obDevice == nullptr)
        return CResult::UNKNOWN_ERROR;
    const unsigned int status = FILES_CreateImage(&m_pImage, 1);
    if (status != FILES_NOERROR)
        return CResult::Convert(status);
    const DWORD length = obDevice->m_UiUserSystemDataLen;
    auto *bytes = static_cast<BYTE *>(std::calloc(length == 0 ? 1 : length, 1));
    if (bytes == nullptr)
        return CResult::PROGRAM_INPUT_PARAMS_MEMORY_ALLOCATION_ERROR;
    m_lsElement.append({0, length, bytes});
    m_UiFileSize += static_cast<unsigned int>(length);
    return CResult::SUCCESS;
}
