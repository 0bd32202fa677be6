// The option bytes on their way between the chip, the model and a file.

#include <cstring>
#include <memory>

#include "device/Device.h"
#include "device/Families.h"
#include "files/UserSystemDataFile.h"
#include "foundation/Result.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/Reconnect.h"
#include "usersystemdata/CUserSystemData.h"

namespace {

// Bytes of an element form that is taken at all.
constexpr quint32 longestElement = 4096;
constexpr quint32 shortestElement = USERSYSTEMDATA_LENGTH_403;

bool isElementLength(DWORD length) {
    return length >= shortestElement && length <= longestElement;
}

} // namespace

int CBootLoader::ReadOptionBytes(std::vector<BYTE> &block) {
    const int length = CUserSystemData::GetUserSystemDataLength(seriesOf(*m_ObDevice), m_BID,
                                                                static_cast<int>(m_ObDevice->m_ISectorSize));
    block.assign(static_cast<size_t>(length), 0xFF);
    const int status = TARGET_GetUserSystemData(m_handle, m_ObDevice->m_UiUserSystemDataAddress, block.data(),
                                                static_cast<unsigned int>(length));
    return CResult::Convert(status);
}

int CBootLoader::WriteOptionBytes(std::vector<BYTE> &block) {
    if (m_ObDevice == nullptr)
        return CResult::UNKNOWN_ERROR;
    int status = TARGET_SetUserSystemData(m_handle, m_ObDevice->m_UiUserSystemDataAddress, block.data(),
                                          static_cast<unsigned int>(block.size()));
    if (status == 0 && familyOf(*m_ObDevice).has(resetsForOptions))
        status = ZVBL_ResetMCU(m_handle);
    return CResult::Convert(status);
}

int CBootLoader::GetUserSystemData() {
    if (m_ObDevice == nullptr)
        return CResult::UNKNOWN_ERROR;
    std::vector<BYTE> block;
    const int result = ReadOptionBytes(block);
    if (result != CResult::SUCCESS)
        return result;
    const auto length = static_cast<quint32>(block.size());
    if (m_ObUserSystemData != nullptr)
        m_ObUserSystemData->Set(block.data(), length);
    else
        m_ObUserSystemData = new CUserSystemData(seriesOf(*m_ObDevice), m_BID, m_ObDevice, block.data(), length);
    return result;
}

int CBootLoader::ensureUserSystemData() {
    return m_ObUserSystemData != nullptr ? CResult::SUCCESS : GetUserSystemData();
}

int CBootLoader::SetUserSystemData() {
    ensureUserSystemData();
    if (m_ObDevice == nullptr || m_ObUserSystemData == nullptr)
        return CResult::UNKNOWN_ERROR;
    BYTE *bytes = nullptr;
    const quint32 length = m_ObUserSystemData->Get(bytes);
    const std::unique_ptr<BYTE[]> owned(bytes);
    std::vector<BYTE> block(bytes, bytes + length);
    const int result = WriteOptionBytes(block);
    if (result != CResult::SUCCESS)
        return result;
    reopenAfterReset(m_handle);
    waitForBootloader();
    Connect();
    return CResult::SUCCESS;
}

int CBootLoader::SaveUserSystemDatatoFile(std::string path) {
    if (m_ObDevice == nullptr)
        return CResult::UNKNOWN_ERROR;
    if (m_ObUserSystemDataFile == nullptr)
        m_ObUserSystemDataFile = new CUserSystemDataFile;
    int result = m_ObUserSystemDataFile->Create(m_ObDevice);
    if (result != CResult::SUCCESS)
        return result;
    const PIMAGEELEMENT element = m_ObUserSystemDataFile->GetElement();
    if (element == nullptr)
        return CResult::UNKNOWN_ERROR;
    result = ensureUserSystemData();
    if (result != CResult::SUCCESS)
        return result;
    BYTE *bytes = nullptr;
    const quint32 length = m_ObUserSystemData->GetElementData(bytes);
    const std::unique_ptr<BYTE[]> image(bytes);
    if (length < element->dwDataLength)
        return CResult::UNKNOWN_ERROR;
    std::memcpy(element->Data, bytes, element->dwDataLength);
    result = m_ObUserSystemDataFile->SetElement(true);
    return result != CResult::SUCCESS ? result : m_ObUserSystemDataFile->Save(path);
}

int CBootLoader::openUserSystemDataFile(const std::string &path, PIMAGEELEMENT &element) {
    if (m_ObUserSystemDataFile == nullptr)
        m_ObUserSystemDataFile = new CUserSystemDataFile;
    const int result = m_ObUserSystemDataFile->Open(path, nullptr);
    if (result != CResult::SUCCESS)
        return result;
    element = m_ObUserSystemDataFile->GetElement();
    return element == nullptr ? CResult::FILES_EMPTY : CResult::SUCCESS;
}

int CBootLoader::takeElement(PIMAGEELEMENT element) {
    if (!isElementLength(element->dwDataLength))
        return CResult::FILES_BADPARAMETER;
    if (m_ObUserSystemData == nullptr)
        return CResult::UNKNOWN_ERROR;
    return m_ObUserSystemData->SetElementData(element) ? CResult::SUCCESS : CResult::FILES_BADPARAMETER;
}

int CBootLoader::LoadUserSystemDataFromFile(std::string path) {
    PIMAGEELEMENT element = nullptr;
    const int result = openUserSystemDataFile(path, element);
    if (result != CResult::SUCCESS)
        return result;
    ensureUserSystemData();
    return takeElement(element);
}

int CBootLoader::LoadUserSystemDataFromFileToDevice(std::string path) {
    PIMAGEELEMENT element = nullptr;
    int result = openUserSystemDataFile(path, element);
    if (result == CResult::SUCCESS)
        result = ensureUserSystemData();
    if (result == CResult::SUCCESS)
        result = takeElement(element);
    return result != CResult::SUCCESS ? result : SetUserSystemData();
}

int CBootLoader::LoadUserSystemDataFromFileToDeviceExceptFAP(std::string path) {
    PIMAGEELEMENT element = nullptr;
    int result = openUserSystemDataFile(path, element);
    if (result == CResult::SUCCESS)
        result = GetUserSystemData(); // the byte to keep is the one of now
    if (result != CResult::SUCCESS)
        return result;
    const BYTE protection = m_ObUserSystemData->FAP;
    result = takeElement(element);
    m_ObUserSystemData->SetFAP(protection);
    return result != CResult::SUCCESS ? result : SetUserSystemData();
}

int CBootLoader::LoadUserSystemDataToDevice(BYTE *data, quint32 len) {
    if (data == nullptr)
        return CResult::FILES_EMPTY;
    const int result = ensureUserSystemData();
    if (result != CResult::SUCCESS)
        return result;
    if (len > longestElement)
        return CResult::FILES_BADPARAMETER;
    // MEANT: there is no lower limit here; too little data writes what the chip holds.
    m_ObUserSystemData->SetElementData(data, len);
    return SetUserSystemData();
}

int CBootLoader::LoadUserSystemDataToDeviceExceptFAP(BYTE *data, quint32 len) {
    if (data == nullptr)
        return CResult::FILES_EMPTY;
    const int result = GetUserSystemData();
    if (result != CResult::SUCCESS)
        return result;
    if (!isElementLength(len))
        return CResult::FILES_BADPARAMETER;
    const BYTE protection = m_ObUserSystemData->FAP;
    m_ObUserSystemData->SetElementData(data, len);
    m_ObUserSystemData->SetFAP(protection);
    return SetUserSystemData();
}
