#pragma once

#include <string>

#include "device/FilesInc.h"

// The memory map of one device: its sectors and the packet size of the link, read once from
// <target>.ZVmap in the directory of the maps. A map without a file is a map without sectors.
class CMapping {
public:
    std::string m_StrTarget;
    std::string m_StrMapFile; // the target and ".ZVmap"
    BYTE m_NAlternate = 0;
    std::string m_StrName;
    MAPPINGSECTOR *m_AMappingSector = nullptr; // own copies of the records behind m_scMapping.pSectors
    unsigned int m_AMappingSectorNum = 0;
    MAPPING m_scMapping;
    PMAPPING m_ipMapping = nullptr; // what the file library is handed; shares pSectors with m_scMapping
    short m_sPacketSize = 0;        // bytes; 0 without a map file

    // Reads the map of the target, such as "ZV32F403_1_1024K".
    explicit CMapping(std::string strTarget);
    ~CMapping();
    CMapping(const CMapping &) = delete;
    CMapping &operator=(const CMapping &) = delete;

    // MEANT: the index is scaled by the record size twice, so every index but 0 points beyond the array.
    PMAPPINGSECTOR GetSectorIntPtr(int iIndex) const;

    // Number of sectors, -1 for none.
    int GetSectorNums() const;

    // Index of the first sector that starts exactly at the address, -1 for none.
    int GetSectorIndex(unsigned int uiAddress) const;

    // Reads the map file; no effect when there is none.
    void MemoryMapping();

    MAPPING GetScMapping() const;
    PMAPPING GetIpMapping() const;
    short GetPacketSize() const;

private:
    void allocateSectors(short count);
};
