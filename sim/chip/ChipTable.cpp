#include "sim/chip/ChipTable.h"

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"

namespace sim {

namespace {

std::vector<std::size_t> wideEpp() {
    std::vector<std::size_t> bytes = {4, 5, 6, 7};
    for (std::size_t i = 10; i <= 25; ++i)
        bytes.push_back(i);
    return bytes;
}

const std::vector<OptionLayout> &layouts() {
    // clang-format off
    static const std::vector<OptionLayout> rows = {
        //     address     access  protection    wide   resets
        {'A', 0x1FFFF800, 0, {4, 5, 6, 7}, false, true},
        {'B', 0x1FFFF800, 0, {4, 5, 6, 7}, false, true},
        {'C', 0x1FFFF800, 0, {4, 5, 6, 7}, false, true},
        {'D', 0x1FFFF800, 0, {4, 5, 6, 7}, false, true},
        {'E', 0x1FFFC000, 0, wideEpp(), true, false},
        {'F', 0x1FFFF800, 0, {4, 5, 6, 7}, false, true},
    };
    // clang-format on
    return rows;
}

} // namespace

const ChipFacts *findChip(std::string_view name) {
    for (const ChipFacts &chip : chipTable())
        if (chip.name == name)
            return &chip;
    return nullptr;
}

const OptionLayout &layoutOf(const ChipFacts &chip) {
    return *std::find_if(layouts().begin(), layouts().end(),
                         [&](const OptionLayout &row) { return row.name == chip.layout; });
}

Bytes opcodesOf(const ChipFacts &chip, Bytes further) {
    using namespace wire;
    // Clients of the fixed convention read these eleven by their position.
    Bytes list = {opGet,
                  opGetVerRops,
                  opGetId,
                  opRead,
                  opGo,
                  opWrite,
                  chip.oldest ? opErase : opEraseExt,
                  opEppProtect,
                  opEppUnprotect,
                  opAccessProtect,
                  opAccessUnprotect};
    further.insert(further.end(), {opReset, opUserDataRead, opUserDataWrite});
    if (!chip.oldest)
        further.insert(further.end(), {opToolExchange, opFirmwareCrc, opEnableSlib, opDisableSlib, opSlibStatus});
    if (chip.levels)
        further.push_back(opAccessProtectLevel);
    if (chip.spim)
        further.insert(further.end(), {opEnableBank3, opRemap});
    std::sort(further.begin(), further.end());
    list.insert(list.end(), further.begin(), further.end());
    return list;
}

Bytes identifierOf(const ChipFacts &chip) {
    const auto byte = [&](unsigned shift) { return static_cast<std::uint8_t>(chip.pid >> shift); };
    if (chip.idLength == 2)
        return {byte(8), byte(0)};
    return {byte(8), byte(0), byte(24), byte(16), chip.series};
}

} // namespace sim
