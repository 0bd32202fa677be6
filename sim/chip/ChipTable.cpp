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

constexpr bool yes = true;
constexpr bool no = false;

} // namespace

const std::vector<ChipFacts> &chipTable() {
    // clang-format off
    // clang-format off
    static const std::vector<ChipFacts> rows = {
        // name               series pid        id KB    sector grp lay  len   ver   bid   res   RAM  spim lvl  goEnd old  OTP
        {"ZV32F403_1_1024K",  0x01, 0x70050341, 5, 1024, 2048, 2, 'A', 24,   0x20, 0x03, 0xFF, 96,  yes, no,  yes, no,  0, 0},
        {"ZV32F403_1_512K",   0x01, 0x700502CB, 5, 512,  2048, 2, 'A', 24,   0x20, 0x03, 0xFF, 64,  yes, no,  yes, no,  0, 0},
        {"ZV32F403_1_256K",   0x01, 0x7005024B, 5, 256,  2048, 2, 'A', 24,   0x20, 0x03, 0xFF, 64,  yes, no,  yes, no,  0, 0},
        {"ZV32F403_2_512K",   0x02, 0x700502C5, 5, 512,  2048, 2, 'A', 24,   0x20, 0x03, 0x02, 64,  yes, no,  yes, no,  0, 0},
        {"ZV32F403_2_256K",   0x02, 0x0242,     2, 256,  2048, 2, 'A', 24,   0x10, 0x00, 0x00, 64,  yes, no,  yes, yes, 0, 0},
        {"ZV32F403_2_128K",   0x02, 0x01C3,     2, 128,  1024, 4, 'A', 24,   0x10, 0x00, 0x00, 32,  yes, no,  yes, yes, 0, 0},
        {"ZV32F403_2_64K",    0x02, 0x0103,     2, 64,   1024, 4, 'A', 24,   0x10, 0x00, 0x00, 32,  yes, no,  yes, yes, 0, 0},
        {"ZV32F413_256K",     0x04, 0x70030244, 5, 256,  2048, 2, 'A', 24,   0x21, 0x13, 0x01, 64,  yes, no,  no,  no,  0, 0},
        {"ZV32F413_128K",     0x04, 0x700301C6, 5, 128,  1024, 4, 'A', 24,   0x21, 0x13, 0x02, 32,  yes, no,  no,  no,  0, 0},
        {"ZV32F413_64K",      0x04, 0x70030106, 5, 64,   1024, 4, 'A', 24,   0x21, 0x13, 0x02, 32,  yes, no,  no,  no,  0, 0},
        {"ZV32F403A_1024K",   0x07, 0x70050347, 5, 1024, 2048, 2, 'A', 24,   0x21, 0x12, 0x34, 96,  yes, no,  no,  no,  0, 0},
        {"ZV32F403A_512K",    0x07, 0x700502C9, 5, 512,  2048, 2, 'A', 24,   0x21, 0x12, 0x34, 96,  yes, no,  no,  no,  0, 0},
        {"ZV32F403A_256K",    0x07, 0x70050248, 5, 256,  2048, 2, 'A', 24,   0x21, 0x12, 0x34, 96,  yes, no,  no,  no,  0, 0},
        {"ZV32F407_512K",     0x08, 0x700502C8, 5, 512,  2048, 2, 'A', 24,   0x21, 0x12, 0xFF, 96,  yes, no,  no,  no,  0, 0},
        {"ZV32F407_256K",     0x08, 0x70050249, 5, 256,  2048, 2, 'A', 24,   0x21, 0x12, 0xFF, 96,  yes, no,  no,  no,  0, 0},
        {"ZV32A403A_512K",    0x18, 0x700512C4, 5, 512,  2048, 2, 'A', 24,   0x21, 0x12, 0x35, 96,  yes, no,  no,  no,  0, 0},
        {"ZV32A403A_256K",    0x18, 0x70051244, 5, 256,  2048, 2, 'A', 24,   0x21, 0x12, 0x35, 96,  yes, no,  no,  no,  0, 0},
        {"ZV32F415_256K",     0x05, 0x70030245, 5, 256,  2048, 2, 'B', 512,  0x22, 0x46, 0x02, 32,  no,  no,  no,  no,  0, 0},
        {"ZV32F415_128K",     0x05, 0x700301C5, 5, 128,  1024, 2, 'B', 16,   0x22, 0x46, 0x01, 32,  no,  no,  no,  no,  0, 0},
        {"ZV32F415_72K",      0x05, 0x70030147, 5, 72,   1024, 2, 'B', 16,   0x22, 0x46, 0x01, 32,  no,  no,  no,  no,  0, 0},
        {"ZV32F415_64K",      0x05, 0x70030107, 5, 64,   1024, 2, 'B', 16,   0x22, 0x46, 0x01, 32,  no,  no,  no,  no,  0, 0},
        {"ZV32WB415_256K",    0x11, 0x70041251, 5, 256,  2048, 2, 'B', 512,  0x22, 0x47, 0x01, 32,  no,  no,  no,  no,  0, 0},
        {"ZV32WB415_128K",    0x11, 0x700411D2, 5, 128,  1024, 2, 'B', 512,  0x22, 0x47, 0x01, 32,  no,  no,  no,  no,  0, 0},
        {"ZV32F421_64K",      0x09, 0x50020109, 5, 64,   1024, 4, 'C', 256,  0x20, 0x21, 0xFF, 16,  no,  no,  no,  no,  0, 0},
        {"ZV32F421_32K",      0x09, 0x5002008A, 5, 32,   1024, 4, 'C', 256,  0x20, 0x21, 0xFF, 16,  no,  no,  no,  no,  0, 0},
        {"ZV32F421_16K",      0x09, 0x5002000A, 5, 16,   1024, 4, 'C', 256,  0x20, 0x21, 0xFF, 16,  no,  no,  no,  no,  0, 0},
        {"ZV32F425_64K",      0x0F, 0x5009010F, 5, 64,   1024, 4, 'C', 256,  0x20, 0x25, 0x01, 20,  no,  yes, no,  no,  0, 0},
        {"ZV32F425_32K",      0x0F, 0x50090090, 5, 32,   1024, 4, 'C', 256,  0x20, 0x25, 0x01, 20,  no,  yes, no,  no,  0, 0},
        {"ZV32F425_24K",      0x0F, 0x50090050, 5, 24,   1024, 4, 'C', 256,  0x20, 0x25, 0x01, 20,  no,  yes, no,  no,  0, 0},
        {"ZV32L021_64K",      0x10, 0x10010110, 5, 64,   1024, 4, 'C', 256,  0x20, 0x21, 0x02, 8,   no,  yes, no,  no,  0, 0},
        {"ZV32L021_32K",      0x10, 0x10010091, 5, 32,   1024, 4, 'C', 256,  0x20, 0x21, 0x02, 8,   no,  yes, no,  no,  0, 0},
        {"ZV32L021_16K",      0x10, 0x10010011, 5, 16,   1024, 4, 'C', 256,  0x20, 0x21, 0x02, 8,   no,  yes, no,  no,  0, 0},
        {"ZV32F423_256K",     0x12, 0x70032252, 5, 256,  2048, 2, 'C', 256,  0x20, 0x23, 0x01, 48,  no,  yes, no,  no,  0, 0},
        {"ZV32F423_192K",     0x12, 0x70032492, 5, 192,  2048, 2, 'C', 256,  0x20, 0x23, 0x01, 48,  no,  yes, no,  no,  0, 0},
        {"ZV32F423_128K",     0x12, 0x700321D2, 5, 128,  1024, 4, 'C', 256,  0x20, 0x23, 0x01, 48,  no,  yes, no,  no,  0, 0},
        {"ZV32F423_64K",      0x12, 0x70032112, 5, 64,   1024, 4, 'C', 256,  0x20, 0x23, 0x01, 48,  no,  yes, no,  no,  0, 0},
        {"ZV32M412_256K",     0x19, 0x50042259, 5, 256,  2048, 2, 'C', 256,  0x20, 0x41, 0x02, 32,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32M412_128K",     0x19, 0x500421DA, 5, 128,  1024, 4, 'C', 256,  0x20, 0x41, 0x02, 32,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32M412_64K",      0x19, 0x5004211A, 5, 64,   1024, 4, 'C', 256,  0x20, 0x41, 0x02, 32,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32M416_256K",     0x1A, 0x5004325B, 5, 256,  2048, 2, 'C', 256,  0x20, 0x41, 0x06, 32,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32M416_128K",     0x1A, 0x500431DB, 5, 128,  1024, 4, 'C', 256,  0x20, 0x41, 0x06, 32,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32M416_96K",      0x1A, 0x5004319B, 5, 96,   1024, 4, 'C', 256,  0x20, 0x41, 0x06, 32,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32G412_128K",     0x1C, 0x500441DC, 5, 128,  1024, 4, 'C', 256,  0x20, 0x41, 0x12, 32,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32G412_64K",      0x1C, 0x5004411C, 5, 64,   1024, 4, 'C', 256,  0x20, 0x41, 0x12, 32,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32A423_256K",     0x1D, 0x7003325D, 5, 256,  2048, 2, 'C', 256,  0x20, 0x23, 0x0A, 48,  no,  yes, no,  no,  0, 0},
        {"ZV32A423_128K",     0x1D, 0x700331DD, 5, 128,  1024, 4, 'C', 256,  0x20, 0x23, 0x0A, 48,  no,  yes, no,  no,  0, 0},
        {"ZV32F405_256K",     0x13, 0x70053253, 5, 256,  2048, 2, 'D', 256,  0x20, 0x40, 0x05, 96,  yes, yes, no,  no,  0, 0},
        {"ZV32F405_192K",     0x13, 0x70053214, 5, 192,  2048, 2, 'D', 256,  0x20, 0x40, 0x05, 96,  yes, yes, no,  no,  0, 0},
        {"ZV32F405_128K",     0x13, 0x700531D4, 5, 128,  1024, 4, 'D', 256,  0x20, 0x40, 0x05, 96,  yes, yes, no,  no,  0, 0},
        {"ZV32F402_256K",     0x14, 0x70054255, 5, 256,  2048, 2, 'D', 256,  0x20, 0x40, 0x02, 64,  yes, yes, no,  no,  0, 0},
        {"ZV32F402_128K",     0x14, 0x700541D5, 5, 128,  1024, 4, 'D', 256,  0x20, 0x40, 0x02, 64,  yes, yes, no,  no,  0, 0},
        {"ZV32F402_64K",      0x14, 0x70054115, 5, 64,   1024, 4, 'D', 256,  0x20, 0x40, 0x02, 64,  yes, yes, no,  no,  0, 0},
        {"ZV32F455_512K",     0x15, 0x700142D6, 5, 512,  2048, 2, 'D', 256,  0x20, 0x45, 0x05, 192, yes, yes, no,  no,  0x1FFFE400, 4096},
        {"ZV32F455_256K",     0x15, 0x70014256, 5, 256,  2048, 2, 'D', 256,  0x20, 0x45, 0x05, 192, yes, yes, no,  no,  0x1FFFE400, 4096},
        {"ZV32F456_768K",     0x16, 0x70015317, 5, 768,  2048, 2, 'D', 256,  0x20, 0x45, 0x06, 192, yes, yes, no,  no,  0x1FFFE400, 4096},
        {"ZV32F456_256K",     0x16, 0x70015257, 5, 256,  2048, 2, 'D', 256,  0x20, 0x45, 0x06, 192, yes, yes, no,  no,  0x1FFFE400, 4096},
        {"ZV32F457_1024K",    0x17, 0x70016350, 5, 1024, 2048, 2, 'D', 256,  0x20, 0x45, 0x07, 192, yes, yes, no,  no,  0x1FFFE400, 4096},
        {"ZV32F457_512K",     0x17, 0x700162D8, 5, 512,  2048, 2, 'D', 256,  0x20, 0x45, 0x07, 192, yes, yes, no,  no,  0x1FFFE400, 4096},
        {"ZV32F457_256K",     0x17, 0x70016258, 5, 256,  2048, 2, 'D', 256,  0x20, 0x45, 0x07, 192, yes, yes, no,  no,  0x1FFFE400, 4096},
        {"ZV32F490_384K",     0x1E, 0x7001729E, 5, 384,  2048, 2, 'D', 256,  0x20, 0x49, 0x00, 96,  yes, yes, no,  no,  0, 0},
        {"ZV32F490_256K",     0x1E, 0x7001725E, 5, 256,  2048, 2, 'D', 256,  0x20, 0x49, 0x00, 96,  yes, yes, no,  no,  0, 0},
        {"ZV32F435_4032K",    0x0D, 0x70084540, 5, 4032, 4096, 1, 'E', 2048, 0x21, 0x43, 0x05, 384, yes, no,  no,  no,  0, 0},
        {"ZV32F435_1984K",    0x0D, 0x70084505, 5, 1984, 4096, 1, 'E', 2048, 0x21, 0x43, 0x05, 384, yes, no,  no,  no,  0, 0},
        {"ZV32F435_960K",     0x0D, 0x700844C4, 5, 960,  2048, 2, 'E', 256,  0x21, 0x43, 0x05, 384, yes, no,  no,  no,  0, 0},
        {"ZV32F435_448K",     0x0D, 0x70084583, 5, 448,  2048, 2, 'E', 256,  0x21, 0x43, 0x05, 384, yes, no,  no,  no,  0, 0},
        {"ZV32F437_4032K",    0x0E, 0x70083541, 5, 4032, 4096, 1, 'E', 2048, 0x21, 0x43, 0x07, 384, yes, no,  no,  no,  0, 0},
        {"ZV32F437_1024K",    0x0E, 0x70083342, 5, 1024, 2048, 2, 'E', 256,  0x21, 0x43, 0x07, 384, yes, no,  no,  no,  0, 0},
        {"ZV32F437_448K",     0x0E, 0x70083586, 5, 448,  2048, 2, 'E', 256,  0x21, 0x43, 0x07, 384, yes, no,  no,  no,  0, 0},
        {"ZV32F422_64K",      0x1F, 0x5008111F, 5, 64,   1024, 4, 'F', 256,  0x20, 0x42, 0x02, 16,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32F422_48K",      0x1F, 0x500810E0, 5, 48,   1024, 4, 'F', 256,  0x20, 0x42, 0x02, 16,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32F422_32K",      0x1F, 0x500810A0, 5, 32,   1024, 4, 'F', 256,  0x20, 0x42, 0x02, 16,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32F426_64K",      0x20, 0x50082121, 5, 64,   1024, 4, 'F', 256,  0x20, 0x42, 0x06, 16,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32F426_48K",      0x20, 0x500820E1, 5, 48,   1024, 4, 'F', 256,  0x20, 0x42, 0x06, 16,  no,  yes, no,  no,  0x1FFFF000, 1024},
        {"ZV32F426_32K",      0x20, 0x500820A1, 5, 32,   1024, 4, 'F', 256,  0x20, 0x42, 0x06, 16,  no,  yes, no,  no,  0x1FFFF000, 1024},
    };
    // clang-format on
    // clang-format on
    return rows;
}

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
