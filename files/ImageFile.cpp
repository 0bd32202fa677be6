#include "files/ImageFile.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "device/ImageSuffixes.h"
#include "foundation/Result.h"
#include "foundation/ShareParameter.h"

namespace {

Type typeOf(ImageFormat format) {
    switch (format) {
    case ImageFormat::binary: return BIN;
    case ImageFormat::intelHex: return HEX;
    case ImageFormat::sRecord: return S19;
    }
    return UNKNOWN;
}

// A block of at least one byte, so that an empty element has bytes to point at.
BYTE *allocate(DWORD length) {
    return static_cast<BYTE *>(std::malloc(length == 0 ? 1 : length));
}

// An image with the elements of another one, null when the library fails.
HANDLE duplicateImage(HANDLE source, const std::string &name) {
    unsigned int count = 0;
    HANDLE copy = nullptr;
    bool good = FILES_GetImageNbElement(source, &count) == CFiles::FILES_NOERROR &&
                FILES_CreateImage(&copy, 1) == CFiles::FILES_NOERROR;
    if (good)
        FILES_SetImageName(copy, name.c_str());
    for (unsigned int i = 0; good && i < count; ++i) {
        IMAGEELEMENT element = {};
        good = FILES_GetImageElement(source, i, &element) == CFiles::FILES_NOERROR;
        element.Data = good ? allocate(element.dwDataLength) : nullptr;
        good = element.Data != nullptr && FILES_GetImageElement(source, i, &element) == CFiles::FILES_NOERROR &&
               FILES_SetImageElement(copy, i, 1, element) == CFiles::FILES_NOERROR;
        std::free(element.Data);
    }
    if (!good && copy != nullptr) {
        FILES_DestroyImage(&copy);
        copy = nullptr;
    }
    return copy;
}

} // namespace

CFiles::CFiles(const CFiles &other) {
    copyFrom(other);
}

CFiles &CFiles::operator=(const CFiles &other) {
    if (this != &other) {
        if (HasOpen())
            Close();
        FreeImageElement();
        copyFrom(other);
    }
    return *this;
}

CFiles::~CFiles() {
    FreeImageElement();
    // MEANT: the library is not told. Its handles are blocks that may be dropped like this.
    ::operator delete(m_pImage);
    m_pImage = nullptr;
}

void CFiles::copyFrom(const CFiles &other) {
    m_CurrentElementIndex = other.m_CurrentElementIndex;
    m_Type = other.m_Type;
    m_StrPath = other.m_StrPath;
    m_UiFileSize = other.m_UiFileSize;
    m_uiFileStatus = other.m_uiFileStatus;
    if (other.m_pImage != nullptr)
        m_pImage = duplicateImage(other.m_pImage, other.m_StrPath);
    for (IMAGEELEMENT element : other.m_lsElement) {
        const BYTE *bytes = element.Data;
        element.Data = bytes == nullptr ? nullptr : allocate(element.dwDataLength);
        if (element.Data != nullptr)
            std::memcpy(element.Data, bytes, element.dwDataLength);
        m_lsElement.append(element);
    }
}

bool CFiles::HasOpen() {
    return m_pImage != nullptr;
}

void CFiles::FreeImageElement() {
    for (const IMAGEELEMENT &element : m_lsElement)
        std::free(element.Data);
    m_lsElement.clear();
}

int CFiles::Open(std::string strPath, CDevice *) {
    if (HasOpen())
        Close();
    m_Type = ParseFileType(strPath);
    return CResult::SUCCESS;
}

int CFiles::Create(CDevice *) {
    if (HasOpen())
        Close();
    return CResult::SUCCESS;
}

void CFiles::ResetElement() {
    m_CurrentElementIndex = -1;
    m_uiFileStatus = 0;
}

int CFiles::GetElementCount() {
    return m_lsElement.count();
}

PIMAGEELEMENT CFiles::GetElement() {
    if (!HasOpen() || m_lsElement.isEmpty() || m_CurrentElementIndex + 1 >= m_lsElement.count())
        return nullptr;
    ++m_CurrentElementIndex;
    IMAGEELEMENT &element = m_lsElement[m_CurrentElementIndex];
    m_uiFileStatus += static_cast<unsigned int>(element.dwDataLength);
    return &element;
}

int CFiles::SetElement(bool bInsert) {
    if (!HasOpen())
        return CResult::FILES_NOTOPEN;
    if (m_CurrentElementIndex < 0 || m_CurrentElementIndex >= m_lsElement.count())
        return CResult::SUCCESS;
    return CResult::Convert(FILES_SetImageElement(m_pImage, static_cast<unsigned int>(m_CurrentElementIndex),
                                                  bInsert ? 1 : 0, m_lsElement.at(m_CurrentElementIndex)));
}

int CFiles::SetElement() {
    return SetElement(true);
}

int CFiles::GetStartAddress(unsigned int *uiAddress) {
    *uiAddress = 0;
    if (!HasOpen())
        return CResult::FILES_NOTOPEN;
    if (!m_lsElement.isEmpty())
        *uiAddress = static_cast<unsigned int>(m_lsElement.first().dwAddress);
    return CResult::SUCCESS;
}

int CFiles::Save(std::string strPath) {
    if (!HasOpen())
        return CResult::FILES_NOTOPEN;
    const unsigned int status = FILES_ImageToFile(strPath.c_str(), m_pImage);
    if (status == FILES_NOERROR)
        m_Type = ParseFileType(strPath);
    return CResult::Convert(status);
}

void CFiles::Close() {
    FILES_DestroyImage(&m_pImage);
    m_pImage = nullptr;
    m_StrPath.clear();
    m_UiFileSize = 0;
    m_uiFileStatus = 0;
    m_CurrentElementIndex = -1;
    FreeImageElement();
}

Type CFiles::ParseFileType(std::string strPath) {
    const std::string path = ShareParameter::ToLower(strPath);
    for (const ImageSuffix &suffix : imageSuffixes)
        if (path.find(suffix.text) != std::string::npos)
            return typeOf(suffix.format);
    return UNKNOWN;
}

unsigned int CFiles::appendElement(unsigned int index) {
    IMAGEELEMENT element = {};
    unsigned int status = FILES_GetImageElement(m_pImage, index, &element);
    if (status != FILES_NOERROR)
        return status;
    element.Data = allocate(element.dwDataLength);
    status = element.Data == nullptr ? FILES_UNEXPECTEDERROR : FILES_GetImageElement(m_pImage, index, &element);
    if (status != FILES_NOERROR) {
        std::free(element.Data);
        return status;
    }
    m_lsElement.append(element);
    m_UiFileSize += static_cast<unsigned int>(element.dwDataLength);
    return status;
}
