// The families and the chips. The simulator's own data, typed from the chips' papers.

#include <algorithm>
#include <iterator>

#include "sim/chip/ChipTable.h"

namespace sim {

namespace {

constexpr bool yes = true;
constexpr bool no = false;

// What the chips of a family have in common.
struct FamilyRow {
    std::string_view name;
    std::uint8_t series;
    char layout;
    std::uint8_t version;
    std::uint8_t bid;
    std::uint8_t bidReserve; // this one and the next two can differ on a single chip
    unsigned userDataLength;
    unsigned ramKb;
    bool spim;
    bool levels;
    bool goToEndResets;
    bool oldest;
    std::uint32_t otpAddress;
    std::size_t otpLength;
};

constexpr unsigned usual = 0x1000; // as in the family

struct ChipRow {
    std::string_view name;
    std::string_view family;
    std::uint32_t pid;
    unsigned flashKb;
    unsigned sectorSize;
    unsigned sectorsPerBit; // of erase and program protection
    unsigned userDataLength = usual;
    unsigned ramKb = usual;
    unsigned bidReserve = usual;
};

// clang-format off
constexpr FamilyRow families[] = {
    // name          series lay  ver   bid   res   data  RAM  spim lvl  goEnd first OTP         bytes
    {"F403_1",       0x01,  'A', 0x20, 0x03, 0xFF, 24,   64,  yes, no,  yes,  no,   0,          0},
    {"F403_2",       0x02,  'A', 0x20, 0x03, 0x02, 24,   64,  yes, no,  yes,  no,   0,          0},
    {"F403_2 first", 0x02,  'A', 0x10, 0x00, 0x00, 24,   32,  yes, no,  yes,  yes,  0,          0},
    {"F413",         0x04,  'A', 0x21, 0x13, 0x02, 24,   32,  yes, no,  no,   no,   0,          0},
    {"F403A",        0x07,  'A', 0x21, 0x12, 0x34, 24,   96,  yes, no,  no,   no,   0,          0},
    {"F407",         0x08,  'A', 0x21, 0x12, 0xFF, 24,   96,  yes, no,  no,   no,   0,          0},
    {"A403A",        0x18,  'A', 0x21, 0x12, 0x35, 24,   96,  yes, no,  no,   no,   0,          0},
    {"F415",         0x05,  'B', 0x22, 0x46, 0x01, 16,   32,  no,  no,  no,   no,   0,          0},
    {"WB415",        0x11,  'B', 0x22, 0x47, 0x01, 512,  32,  no,  no,  no,   no,   0,          0},
    {"F421",         0x09,  'C', 0x20, 0x21, 0xFF, 256,  16,  no,  no,  no,   no,   0,          0},
    {"F425",         0x0F,  'C', 0x20, 0x25, 0x01, 256,  20,  no,  yes, no,   no,   0,          0},
    {"L021",         0x10,  'C', 0x20, 0x21, 0x02, 256,  8,   no,  yes, no,   no,   0,          0},
    {"F423",         0x12,  'C', 0x20, 0x23, 0x01, 256,  48,  no,  yes, no,   no,   0,          0},
    {"M412",         0x19,  'C', 0x20, 0x41, 0x02, 256,  32,  no,  yes, no,   no,   0x1FFFF000, 1024},
    {"M416",         0x1A,  'C', 0x20, 0x41, 0x06, 256,  32,  no,  yes, no,   no,   0x1FFFF000, 1024},
    {"G412",         0x1C,  'C', 0x20, 0x41, 0x12, 256,  32,  no,  yes, no,   no,   0x1FFFF000, 1024},
    {"A423",         0x1D,  'C', 0x20, 0x23, 0x0A, 256,  48,  no,  yes, no,   no,   0,          0},
    {"F405",         0x13,  'D', 0x20, 0x40, 0x05, 256,  96,  yes, yes, no,   no,   0,          0},
    {"F402",         0x14,  'D', 0x20, 0x40, 0x02, 256,  64,  yes, yes, no,   no,   0,          0},
    {"F455",         0x15,  'D', 0x20, 0x45, 0x05, 256,  192, yes, yes, no,   no,   0x1FFFE400, 4096},
    {"F456",         0x16,  'D', 0x20, 0x45, 0x06, 256,  192, yes, yes, no,   no,   0x1FFFE400, 4096},
    {"F457",         0x17,  'D', 0x20, 0x45, 0x07, 256,  192, yes, yes, no,   no,   0x1FFFE400, 4096},
    {"F490",         0x1E,  'D', 0x20, 0x49, 0x00, 256,  96,  yes, yes, no,   no,   0,          0},
    {"F435",         0x0D,  'E', 0x21, 0x43, 0x05, 2048, 384, yes, no,  no,   no,   0,          0},
    {"F437",         0x0E,  'E', 0x21, 0x43, 0x07, 256,  384, yes, no,  no,   no,   0,          0},
    {"F422",         0x1F,  'F', 0x20, 0x42, 0x02, 256,  16,  no,  yes, no,   no,   0x1FFFF000, 1024},
    {"F426",         0x20,  'F', 0x20, 0x42, 0x06, 256,  16,  no,  yes, no,   no,   0x1FFFF000, 1024},
};

constexpr ChipRow chips[] = {
    // name              family          pid         KB    sector bit data   RAM    res
    {"ZV32F403_1_1024K", "F403_1",       0x70050341, 1024, 2048,  2,  usual, 96},
    {"ZV32F403_1_512K",  "F403_1",       0x700502CB, 512,  2048,  2},
    {"ZV32F403_1_256K",  "F403_1",       0x7005024B, 256,  2048,  2},
    {"ZV32F403_2_512K",  "F403_2",       0x700502C5, 512,  2048,  2},
    {"ZV32F403_2_256K",  "F403_2 first", 0x0242,     256,  2048,  2,  usual, 64},
    {"ZV32F403_2_128K",  "F403_2 first", 0x01C3,     128,  1024,  4},
    {"ZV32F403_2_64K",   "F403_2 first", 0x0103,     64,   1024,  4},
    {"ZV32F413_256K",    "F413",         0x70030244, 256,  2048,  2,  usual, 64,    0x01},
    {"ZV32F413_128K",    "F413",         0x700301C6, 128,  1024,  4},
    {"ZV32F413_64K",     "F413",         0x70030106, 64,   1024,  4},
    {"ZV32F403A_1024K",  "F403A",        0x70050347, 1024, 2048,  2},
    {"ZV32F403A_512K",   "F403A",        0x700502C9, 512,  2048,  2},
    {"ZV32F403A_256K",   "F403A",        0x70050248, 256,  2048,  2},
    {"ZV32F407_512K",    "F407",         0x700502C8, 512,  2048,  2},
    {"ZV32F407_256K",    "F407",         0x70050249, 256,  2048,  2},
    {"ZV32A403A_512K",   "A403A",        0x700512C4, 512,  2048,  2},
    {"ZV32A403A_256K",   "A403A",        0x70051244, 256,  2048,  2},
    {"ZV32F415_256K",    "F415",         0x70030245, 256,  2048,  2,  512,   usual, 0x02},
    {"ZV32F415_128K",    "F415",         0x700301C5, 128,  1024,  2},
    {"ZV32F415_72K",     "F415",         0x70030147, 72,   1024,  2},
    {"ZV32F415_64K",     "F415",         0x70030107, 64,   1024,  2},
    {"ZV32WB415_256K",   "WB415",        0x70041251, 256,  2048,  2},
    {"ZV32WB415_128K",   "WB415",        0x700411D2, 128,  1024,  2},
    {"ZV32F421_64K",     "F421",         0x50020109, 64,   1024,  4},
    {"ZV32F421_32K",     "F421",         0x5002008A, 32,   1024,  4},
    {"ZV32F421_16K",     "F421",         0x5002000A, 16,   1024,  4},
    {"ZV32F425_64K",     "F425",         0x5009010F, 64,   1024,  4},
    {"ZV32F425_32K",     "F425",         0x50090090, 32,   1024,  4},
    {"ZV32F425_24K",     "F425",         0x50090050, 24,   1024,  4},
    {"ZV32L021_64K",     "L021",         0x10010110, 64,   1024,  4},
    {"ZV32L021_32K",     "L021",         0x10010091, 32,   1024,  4},
    {"ZV32L021_16K",     "L021",         0x10010011, 16,   1024,  4},
    {"ZV32F423_256K",    "F423",         0x70032252, 256,  2048,  2},
    {"ZV32F423_192K",    "F423",         0x70032492, 192,  2048,  2},
    {"ZV32F423_128K",    "F423",         0x700321D2, 128,  1024,  4},
    {"ZV32F423_64K",     "F423",         0x70032112, 64,   1024,  4},
    {"ZV32M412_256K",    "M412",         0x50042259, 256,  2048,  2},
    {"ZV32M412_128K",    "M412",         0x500421DA, 128,  1024,  4},
    {"ZV32M412_64K",     "M412",         0x5004211A, 64,   1024,  4},
    {"ZV32M416_256K",    "M416",         0x5004325B, 256,  2048,  2},
    {"ZV32M416_128K",    "M416",         0x500431DB, 128,  1024,  4},
    {"ZV32M416_96K",     "M416",         0x5004319B, 96,   1024,  4},
    {"ZV32G412_128K",    "G412",         0x500441DC, 128,  1024,  4},
    {"ZV32G412_64K",     "G412",         0x5004411C, 64,   1024,  4},
    {"ZV32A423_256K",    "A423",         0x7003325D, 256,  2048,  2},
    {"ZV32A423_128K",    "A423",         0x700331DD, 128,  1024,  4},
    {"ZV32F405_256K",    "F405",         0x70053253, 256,  2048,  2},
    {"ZV32F405_192K",    "F405",         0x70053214, 192,  2048,  2},
    {"ZV32F405_128K",    "F405",         0x700531D4, 128,  1024,  4},
    {"ZV32F402_256K",    "F402",         0x70054255, 256,  2048,  2},
    {"ZV32F402_128K",    "F402",         0x700541D5, 128,  1024,  4},
    {"ZV32F402_64K",     "F402",         0x70054115, 64,   1024,  4},
    {"ZV32F455_512K",    "F455",         0x700142D6, 512,  2048,  2},
    {"ZV32F455_256K",    "F455",         0x70014256, 256,  2048,  2},
    {"ZV32F456_768K",    "F456",         0x70015317, 768,  2048,  2},
    {"ZV32F456_256K",    "F456",         0x70015257, 256,  2048,  2},
    {"ZV32F457_1024K",   "F457",         0x70016350, 1024, 2048,  2},
    {"ZV32F457_512K",    "F457",         0x700162D8, 512,  2048,  2},
    {"ZV32F457_256K",    "F457",         0x70016258, 256,  2048,  2},
    {"ZV32F490_384K",    "F490",         0x7001729E, 384,  2048,  2},
    {"ZV32F490_256K",    "F490",         0x7001725E, 256,  2048,  2},
    {"ZV32F435_4032K",   "F435",         0x70084540, 4032, 4096,  1},
    {"ZV32F435_1984K",   "F435",         0x70084505, 1984, 4096,  1},
    {"ZV32F435_960K",    "F435",         0x700844C4, 960,  2048,  2,  256},
    {"ZV32F435_448K",    "F435",         0x70084583, 448,  2048,  2,  256},
    {"ZV32F437_4032K",   "F437",         0x70083541, 4032, 4096,  1,  2048},
    {"ZV32F437_1024K",   "F437",         0x70083342, 1024, 2048,  2},
    {"ZV32F437_448K",    "F437",         0x70083586, 448,  2048,  2},
    {"ZV32F422_64K",     "F422",         0x5008111F, 64,   1024,  4},
    {"ZV32F422_48K",     "F422",         0x500810E0, 48,   1024,  4},
    {"ZV32F422_32K",     "F422",         0x500810A0, 32,   1024,  4},
    {"ZV32F426_64K",     "F426",         0x50082121, 64,   1024,  4},
    {"ZV32F426_48K",     "F426",         0x500820E1, 48,   1024,  4},
    {"ZV32F426_32K",     "F426",         0x500820A1, 32,   1024,  4},
};
// clang-format on

ChipFacts factsOf(const ChipRow &chip) {
    const FamilyRow &family = *std::find_if(std::begin(families), std::end(families),
                                            [&](const FamilyRow &row) { return row.name == chip.family; });
    const auto own = [](unsigned ofChip, unsigned ofFamily) { return ofChip != usual ? ofChip : ofFamily; };
    ChipFacts facts{};
    facts.name = chip.name;
    facts.series = family.series;
    facts.pid = chip.pid;
    facts.idLength = family.oldest ? 2 : 5;
    facts.flashKb = chip.flashKb;
    facts.sectorSize = chip.sectorSize;
    facts.sectorsPerBit = chip.sectorsPerBit;
    facts.layout = family.layout;
    facts.userDataLength = own(chip.userDataLength, family.userDataLength);
    facts.version = family.version;
    facts.bid = family.bid;
    facts.bidReserve = static_cast<std::uint8_t>(own(chip.bidReserve, family.bidReserve));
    facts.ramKb = own(chip.ramKb, family.ramKb);
    facts.spim = family.spim;
    facts.levels = family.levels;
    facts.goToEndResets = family.goToEndResets;
    facts.oldest = family.oldest;
    facts.otpAddress = family.otpAddress;
    facts.otpLength = family.otpLength;
    return facts;
}

std::vector<ChipFacts> allFacts() {
    std::vector<ChipFacts> facts;
    for (const ChipRow &chip : chips)
        facts.push_back(factsOf(chip));
    return facts;
}

} // namespace

const std::vector<ChipFacts> &chipTable() {
    static const std::vector<ChipFacts> facts = allFacts();
    return facts;
}

} // namespace sim
