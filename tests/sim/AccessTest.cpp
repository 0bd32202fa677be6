// Access protection and its levels.

#include "tests/sim/Vectors.h"

namespace {

const sim::Vector protecting[] = {
    {"access_protection", "ZV32F403A_1024K", SYNC WRITE_WORD("08 00 00 00 08") R"(
        H: 82 7D
        C: 79 79
    )" AFTER_RESET R"(
        # refused: READ, WRITE, ERASE_EXT, GO, 63, 73, AC, B3, D1, D2, E1, E2
        H: 11 EE
        C: 1F
        H: 31 CE
        C: 1F
        H: 44 BB
        C: 1F
        H: 21 DE
        C: 1F
        H: 63 9C
        C: 1F
        H: 73 8C
        C: 1F
        H: AC 53
        C: 1F
        H: B3 4C
        C: 1F
        H: D1 2E
        C: 1F
        H: D2 2D
        C: 1F
        H: E1 1E
        C: 1F
        H: E2 1D
        C: 1F
        # the rest goes on
        H: 01 FE
        C: 79 21 34 12 79
        H: 02 FD
        C: 79 04 03 47 70 05 07 79
        H: D3 2C
        C: 79 00 FF FF FF FF FF FF 00
        H: 5A A5
        C: 79
        H: 00 02 00 01 03
        C: 79
        # once more changes nothing
        H: 82 7D
        C: 79 79
    )" AFTER_RESET R"(
        H: 11 EE
        C: 1F
        # off: the flash is erased
        H: 92 6D
        C: 79 79
    )" AFTER_RESET READS("08 00 00 00 08", "FF FF FF FF") READS("1F FF F8 00 18", "A5 5A FF 00")},
    {"unprotect_erases_an_open_chip_too_and_ends_group_protection", "ZV32F403A_1024K",
     SYNC WRITE_WORD("08 00 00 00 08") R"(
        H: 63 9C
        C: 79
        H: 00 00 00
        C: 79
    )" AFTER_RESET R"(
        H: 92 6D
        C: 79 79
    )" AFTER_RESET READS("08 00 00 00 08", "FF FF FF FF") WRITE_WORD("08 00 00 00 08")},
};
WIRE_VECTORS(Access, protecting);

const sim::Vector levels[] = {
    {"low_can_be_undone", "ZV32F425_64K", SYNC R"(
        H: 84 7B
        C: 79
        H: 01 FE
        C: 79 79
    )" AFTER_RESET R"(
        H: 11 EE
        C: 1F
        H: 92 6D
        C: 79 79
    )" AFTER_RESET READS("08 00 00 00 08", "FF FF FF FF")},
    {"high_stays", "ZV32F425_64K", SYNC R"(
        H: 84 7B
        C: 79
        H: 02 FD
        C: 79 79
    )" AFTER_RESET R"(
        H: 11 EE
        C: 1F
        H: 92 6D
        C: 1F
        # nothing lowers it
        H: 84 7B
        C: 79
        H: 01 FE
        C: 1F
        H: 82 7D
        C: 79 1F
        H: E2 1D
        C: 1F
        # and it survives a reset
        H: D4 2B
        C: 79
    )" AFTER_RESET R"(
        H: 92 6D
        C: 1F
        H: 02 FD
        C: 79 04 01 0F 50 09 0F 79
    )"},
    {"low_can_be_raised", "ZV32F422_64K", SYNC R"(
        H: 82 7D
        C: 79 79
    )" AFTER_RESET R"(
        H: 84 7B
        C: 79
        H: 02 FD
        C: 79 79
    )" AFTER_RESET R"(
        H: 92 6D
        C: 1F
    )"},
    {"no_other_level", "ZV32F425_64K", SYNC R"(
        H: 84 7B
        C: 79
        H: 00 FF
        C: 1F
        H: 84 7B
        C: 79
        H: 03 FC
        C: 1F
        H: 84 7B
        C: 79
        H: 01 01
        C: 1F
    )" READS("08 00 00 00 08", "FF FF FF FF")},
};
WIRE_VECTORS(Level, levels);

} // namespace
