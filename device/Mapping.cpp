#include "device/Mapping.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include <system_error>

#include "device/MapDirectory.h"

namespace {

// Far above what a map name needs; the name itself is not used.
constexpr std::size_t nameBufferSize = 4096;

} // namespace

CMapping::CMapping(std::string strTarget)
    : m_StrTarget(strTarget), m_StrMapFile(strTarget + ".ZVmap"), m_scMapping{},
      m_ipMapping(static_cast<PMAPPING>(std::calloc(1, sizeof(MAPPING)))) {
    MemoryMapping();
}

CMapping::~CMapping() {
    std::free(m_scMapping.pSectors);
    std::free(m_ipMapping);
    delete[] m_AMappingSector;
}

PMAPPINGSECTOR CMapping::GetSectorIntPtr(int iIndex) const {
    // By number: the pointer may lie outside the array, where pointer arithmetic is undefined.
    const auto start = reinterpret_cast<std::uintptr_t>(m_scMapping.pSectors);
    // NOLINTNEXTLINE(bugprone-sizeof-expression): the size twice is what is asked for
    const auto scaled = static_cast<std::uintptr_t>(iIndex) * sizeof(MAPPINGSECTOR) * sizeof(MAPPINGSECTOR);
    return reinterpret_cast<PMAPPINGSECTOR>(start + scaled);
}

int CMapping::GetSectorNums() const {
    return m_AMappingSectorNum == 0 ? -1 : static_cast<int>(m_AMappingSectorNum);
}

int CMapping::GetSectorIndex(unsigned int uiAddress) const {
    for (unsigned int i = 0; i < m_AMappingSectorNum; ++i)
        if (m_AMappingSector[i].dwStartAddress == uiAddress)
            return static_cast<int>(i);
    return -1;
}

void CMapping::MemoryMapping() {
    const std::string path = mapDirectory() + m_StrMapFile;
    std::error_code ignored;
    if (m_ipMapping == nullptr || !std::filesystem::exists(path, ignored))
        return;
    std::vector<char> name(nameBufferSize, '\0');
    short count = 0;
    BYTE sectorsPerSector = 0;
    FILES_GetMemoryMapping(path.c_str(), &count, name.data(), &m_sPacketSize, nullptr, &sectorsPerSector);
    allocateSectors(count > 0 ? count : short{0});
    const short room = static_cast<short>(m_AMappingSectorNum);
    const unsigned int status =
        FILES_GetMemoryMapping(path.c_str(), &count, name.data(), &m_sPacketSize, m_ipMapping, &sectorsPerSector);
    // Here 0 is success, unlike in every other function of the library.
    if (status != 0)
        return;
    m_scMapping = *m_ipMapping;
    if (m_scMapping.pSectors != nullptr)
        std::memcpy(m_AMappingSector, m_scMapping.pSectors, static_cast<std::size_t>(room) * sizeof(MAPPINGSECTOR));
}

// Every record starts zeroed, so that a failing second read leaves nothing undefined.
void CMapping::allocateSectors(short count) {
    std::free(m_scMapping.pSectors);
    delete[] m_AMappingSector;
    m_scMapping.NbSectors = 0;
    m_scMapping.pSectors =
        static_cast<PMAPPINGSECTOR>(std::calloc(static_cast<std::size_t>(count) + 1, sizeof(MAPPINGSECTOR)));
    m_AMappingSector = new MAPPINGSECTOR[static_cast<std::size_t>(count)]();
    m_AMappingSectorNum = m_scMapping.pSectors == nullptr ? 0 : static_cast<unsigned int>(count);
    *m_ipMapping = m_scMapping;
}

MAPPING CMapping::GetScMapping() const {
    return m_scMapping;
}

PMAPPING CMapping::GetIpMapping() const {
    return m_ipMapping;
}

short CMapping::GetPacketSize() const {
    return m_sPacketSize;
}
