#include "line/unit/MemoryImage.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include <QByteArray>

#include "device/Device.h"

namespace {

void append(CProgramFile &file, unsigned int address, const QByteArray &bytes) {
    auto *copy = static_cast<BYTE *>(std::malloc(static_cast<std::size_t>(bytes.size())));
    if (copy == nullptr)
        throw std::bad_alloc();
    std::memcpy(copy, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    IMAGEELEMENT element{};
    element.dwAddress = address;
    element.dwDataLength = static_cast<DWORD>(bytes.size());
    element.Data = copy;
    file.m_lsElement.append(element);
    file.m_UiFileSize += static_cast<unsigned int>(bytes.size());
}

} // namespace

std::unique_ptr<CProgramFile> imageInMemory(const Json &runs, const CDevice &device) {
    auto file = std::make_unique<CProgramFile>();
    file->m_StrPath = "/unit"; // without a name a job does nothing
    FILES_CreateImage(&file->m_pImage, 1);
    for (const Json &run : runs) {
        auto address = run.at("at").get<unsigned int>();
        QByteArray rest = QByteArray::fromHex(QByteArray::fromStdString(run.at("bytes").get<std::string>()));
        while (!rest.isEmpty()) {
            const int length =
                std::min(rest.size(), static_cast<int>(device.m_ISectorSize - address % device.m_ISectorSize));
            append(*file, address, rest.left(length));
            rest.remove(0, length);
            address += static_cast<unsigned int>(length);
        }
    }
    return file;
}
