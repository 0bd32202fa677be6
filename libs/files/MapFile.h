#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "device/FilesInc.h"
#include "libs/files/Status.h"

namespace files {

// A group of equal sectors that follow one another: one [SectorN] section.
struct SectorGroup {
    std::uint64_t address; // of the first sector
    std::uint64_t size;    // bytes of each sector
    std::uint64_t count;
    std::uint64_t alias; // second address of the first sector
    BYTE type;
    bool operation;
    bool erase;
    bool upload;
    bool protect;
};

// What a ZVmap file says of the flash; docs/map-file.md explains its sections.
struct MapFile {
    std::string name;
    std::string serial; // the family, hexadecimal digits; as it stands there
    short packetSize = 0;
    BYTE sectorsPerSector = 0;
    BYTE alternate = 0;
    short sectorCount = 0;
    std::vector<SectorGroup> groups;

    // A file is taken in full or refused.
    Status read(const char *path);

    // Writes `sectorCount` records.
    void fill(MAPPING &mapping) const;
};

} // namespace files
