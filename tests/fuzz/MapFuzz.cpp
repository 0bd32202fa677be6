#include <memory>

#include "device/FilesInc.h"
#include "tests/fuzz/PlainReaders.h"
#include "tests/fuzz/Target.h"
#include "tests/fuzz/Workplace.h"

namespace {

constexpr short room = 32767;

void compare(const MAPPING &map, const std::vector<fuzz::PlainSector> &plain) {
    fuzz::require(map.NbSectors == plain.size(), "both readers find as many sectors");
    for (std::size_t i = 0; i < plain.size(); ++i)
        fuzz::require(map.pSectors[i].dwStartAddress == plain[i].address &&
                          map.pSectors[i].dwSectorSize == plain[i].size && map.pSectors[i].dwSectorIndex == i,
                      "both readers find the same sectors");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string content(data, data + size);
    const auto plain = fuzz::readMapPlainly(content);
    const std::string path = fuzz::workplace() / "input.ZVmap";
    fuzz::fill(path, content);

    static const std::unique_ptr<MAPPINGSECTOR[]> sectors(new MAPPINGSECTOR[room]);
    MAPPING map{};
    map.pSectors = sectors.get();
    map.NbSectors = room;
    char name[256] = {};
    short count = room;
    short packet = 0;
    BYTE perSector = 0;
    const unsigned int status = FILES_GetMemoryMapping(path.c_str(), &count, name, &packet, &map, &perSector);
    fuzz::require((status == 0) == plain.has_value(), "both readers take the map, or both refuse it");
    if (!plain) {
        fuzz::require(count == 0, "a map that is refused has no sectors");
        return 0;
    }
    fuzz::require(count == static_cast<short>(plain->size()), "the count is that of the sectors");
    compare(map, *plain);
    return 0;
}
