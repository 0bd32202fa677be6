#include "sim/ChipTable.h"

#include "libs/zvbl/wire/Wire.h"

#include <algorithm>

namespace sim {

namespace {

std::vector<std::size_t> wideEpp() {
    std::vector<std::size_t> bytes = {4, 5, 6, 7};
    for (std::size_t i = 10; i <= 25; ++i) {
        bytes.push_back(i);
    }
    return bytes;
}

const std::vector<OptionLayout> &layouts() {
    static const std::vector<OptionLayout> rows = {
        //     address     access  protection    wide   resets
        {'A', 0x1FFFF800, 0, {4, 5, 6, 7}, false, true},
        {'B', 0x1FFFF800, 0, {4, 5, 6, 7}, false, true},
        {'C', 0x1FFFF800, 0, {4, 5, 6, 7}, false, true},
        {'D', 0x1FFFF800, 0, {4, 5, 6, 7}, false, true},
        {'E', 0x1FFFC000, 0, wideEpp(), true, false},
        {'F', 0x1FFFF800, 0, {4, 5, 6, 7}, false, true},
    };
    return rows;
}

constexpr bool yes = true;
constexpr bool no = false;

} // namespace

const std::vector<ChipFacts> &chipTable() {
    // clang-format off
    static const std::vector<ChipFacts> rows = {
        // name               series pid        id KB    sector grp lay  len   ver   bid   res   RAM  spim lvl  goEnd old  OTP
        {"ZV32F403_1_1024K",  0x01, 0x70050341, 5, 1024, 2048, 2, 'A', 24,   0x20, 0x03, 0xFF, 96,  yes, no,  yes, no,  0, 0},
        {"ZV32F403_2_256K",   0x02, 0x0242,     2, 256,  2048, 2, 'A', 24,   0x10, 0x00, 0x00, 64,  yes, no,  yes, yes, 0, 0},
        {"ZV32F413_256K",     0x04, 0x70030244, 5, 256,  2048, 2, 'A', 24,   0x21, 0x13, 0x01, 64,  yes, no,  no,  no,  0, 0},
        {"ZV32F403A_1024K",   0x07, 0x70050347, 5, 1024, 2048, 2, 'A', 24,   0x21, 0x12, 0x34, 96,  yes, no,  no,  no,  0, 0},
        {"ZV32F407_512K",     0x08, 0x700502C8, 5, 512,  2048, 2, 'A', 24,   0x21, 0x12, 0xFF, 96,  yes, no,  no,  no,  0, 0},
        {"ZV32F415_256K",     0x05, 0x70030245, 5, 256,  2048, 2, 'B', 512,  0x22, 0x46, 0x02, 32,  no,  no,  no,  no,  0, 0},
        {"ZV32F415_128K",     0x05, 0x700301C5, 5, 128,  1024, 2, 'B', 16,   0x22, 0x46, 0x01, 32,  no,  no,  no,  no,  0, 0},
        {"ZV32WB415_256K",    0x11, 0x70041251, 5, 256,  2048, 2, 'B', 512,  0x22, 0x47, 0x01, 32,  no,  no,  no,  no,  0, 0},
        {"ZV32F421_64K",      0x09, 0x50020109, 5, 64,   1024, 4, 'C', 256,  0x20, 0x21, 0xFF, 16,  no,  no,  no,  no,  0, 0},
        {"ZV32F425_64K",      0x0F, 0x5009010F, 5, 64,   1024, 4, 'C', 256,  0x20, 0x25, 0x01, 20,  no,  yes, no,  no,  0, 0},
        {"ZV32L021_64K",      0x10, 0x10010110, 5, 64,   1024, 4, 'C', 256,  0x20, 0x21, 0x02, 8,   no,  yes, no,  no,  0, 0},
        {"ZV32M412_256K",     0x19, 0x50042259, 5, 256,  2048, 2, 'C', 256,  0x20, 0x41, 0x02, 32,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32F405_256K",     0x13, 0x70053253, 5, 256,  2048, 2, 'D', 256,  0x20, 0x40, 0x05, 96,  yes, yes, no,  no,  0, 0},
        {"ZV32F457_1024K",    0x17, 0x70016350, 5, 1024, 2048, 2, 'D', 256,  0x20, 0x45, 0x07, 192, yes, yes, no,  no,  0x1FFFE400, 4096},
        {"ZV32F435_4032K",    0x0D, 0x70084540, 5, 4032, 4096, 1, 'E', 2048, 0x21, 0x43, 0x05, 384, yes, no,  no,  no,  0, 0},
        {"ZV32F435_448K",     0x0D, 0x70084583, 5, 448,  2048, 2, 'E', 256,  0x21, 0x43, 0x05, 384, yes, no,  no,  no,  0, 0},
        {"ZV32F437_4032K",    0x0E, 0x70083541, 5, 4032, 4096, 1, 'E', 2048, 0x21, 0x43, 0x07, 384, yes, no,  no,  no,  0, 0},
        {"ZV32F437_1024K",    0x0E, 0x70083342, 5, 1024, 2048, 2, 'E', 256,  0x21, 0x43, 0x07, 384, yes, no,  no,  no,  0, 0},
        {"ZV32F422_64K",      0x1F, 0x5008111F, 5, 64,   1024, 4, 'F', 256,  0x20, 0x42, 0x02, 16,  no,  yes, no,  no,  0x1FFFF000, 1024},
    };
    // clang-format on
    return rows;
}

const ChipFacts *findChip(std::string_view name) {
    for (const ChipFacts &chip : chipTable()) {
        if (chip.name == name) {
            return &chip;
        }
    }
    return nullptr;
}

const OptionLayout &layoutOf(const ChipFacts &chip) {
    return *std::find_if(layouts().begin(), layouts().end(),
                         [&](const OptionLayout &row) { return row.name == chip.layout; });
}

Bytes opcodesOf(const ChipFacts &chip) {
    using namespace wire;
    // Clients of the fixed convention read these eleven by their position.
    Bytes list = {opGet,      opGetVerRops,  opGetId,          opRead,
                  opGo,       opWrite,       chip.oldest ? opErase : opEraseExt,
                  opEppProtect, opEppUnprotect, opAccessProtect, opAccessUnprotect};
    Bytes further = {opReset, opUserDataRead, opUserDataWrite};
    if (!chip.oldest) {
        further.insert(further.end(),
                       {opToolExchange, opFirmwareCrc, opEnableSlib, opDisableSlib, opSlibStatus});
    }
    if (chip.levels) {
        further.push_back(opAccessProtectLevel);
    }
    if (chip.spim) {
        further.insert(further.end(), {opEnableBank3, opRemap});
    }
    std::sort(further.begin(), further.end());
    list.insert(list.end(), further.begin(), further.end());
    return list;
}

Bytes identifierOf(const ChipFacts &chip) {
    const auto byte = [&](unsigned shift) { return static_cast<std::uint8_t>(chip.pid >> shift); };
    if (chip.idLength == 2) {
        return {byte(8), byte(0)};
    }
    return {byte(8), byte(0), byte(24), byte(16), chip.series};
}

} // namespace sim
