// Erase and program protection of groups of sectors.

#include "tests/sim/Vectors.h"

namespace {

const sim::Vector protecting[] = {
    // Groups of two sectors: bit 1 covers 2 and 3.
    {"a_group_and_its_neighbours", "ZV32F403A_1024K", SYNC WRITE_WORD("08 00 10 00 18") R"(
        H: 63 9C
        C: 79
        H: 00 01 01
        C: 79
    )" AFTER_RESET R"(
        # sector 2: no write, no erase
        H: 31 CE
        C: 79
        H: 08 00 10 04 1C
        C: 79
        H: 03 01 02 03 04 07
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 00 02 02
        C: 1F
        # sector 3 likewise
        H: 44 BB
        C: 79
        H: 00 00 00 03 03
        C: 1F
        # one protected sector refuses the whole request, and so does its bank
        H: 44 BB
        C: 79
        H: 00 01 00 01 00 02 02
        C: 1F
        H: 44 BB
        C: 79
        H: FF FE 01
        C: 1F
        H: 44 BB
        C: 79
        H: FF FF 00
        C: 1F
        # sectors 1 and 4 are open, and so is bank 2
        H: 44 BB
        C: 79
        H: 00 01 00 01 00 04 04
        C: 79
        H: 44 BB
        C: 79
        H: FF FD 02
        C: 79
    )" WRITE_WORD("08 00 08 00 00") READS("08 00 10 00 18", "01 02 03 04") R"(
        # the bit is clear in the option bytes: EPP byte 0 is compact byte 4
        H: 11 EE
        C: 79
        H: 1F FF F8 08 10
        C: 79
        H: 03 FC
        C: 79 FD 02 FF 00
        # unprotect
        H: 73 8C
        C: 79 79
    )" AFTER_RESET R"(
        H: 44 BB
        C: 79
        H: 00 00 00 02 02
        C: 79
    )"},
    {"further_groups_add_up", "ZV32F403A_1024K", SYNC R"(
        H: 63 9C
        C: 79
        H: 00 00 00
        C: 79
    )" AFTER_RESET R"(
        H: 63 9C
        C: 79
        H: 01 08 1F 16
        C: 79
    )" AFTER_RESET R"(
        H: 11 EE
        C: 79
        H: 1F FF F8 08 10
        C: 79
        H: 07 F8
        C: 79 FE 01 FE 01 FF 00 7F 80
    )"},
    {"group_31_reaches_to_the_end", "ZV32F403A_1024K", SYNC R"(
        H: 63 9C
        C: 79
        H: 00 1F 1F
        C: 79
    )" AFTER_RESET R"(
        # sector 61 is open, 62 and 511 are not
        H: 44 BB
        C: 79
        H: 00 00 00 3D 3D
        C: 79
        H: 44 BB
        C: 79
        H: 00 00 00 3E 3E
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 01 FF FE
        C: 1F
    )"},
    {"groups_of_four_sectors", "ZV32F421_64K", SYNC R"(
        H: 63 9C
        C: 79
        H: 00 00 00
        C: 79
    )" AFTER_RESET R"(
        H: 44 BB
        C: 79
        H: 00 00 00 03 03
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 00 04 04
        C: 79
    )"},
    // 4096-byte sectors: one a bit in the first 128 KiB, 128 KiB a bit after.
    {"wide_groups", "ZV32F437_4032K", SYNC R"(
        H: 63 9C
        C: 79
        H: 02 1F 20 3E 03
        C: 79
    )" AFTER_RESET R"(
        H: 44 BB
        C: 79
        H: 00 00 00 1E 1E
        C: 79
        H: 44 BB
        C: 79
        H: 00 00 00 1F 1F
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 00 20 20
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 00 3F 3F
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 00 40 40
        C: 79
        # the last group: sectors 3E0 to 3EF
        H: 44 BB
        C: 79
        H: 00 00 03 DF DC
        C: 79
        H: 44 BB
        C: 79
        H: 00 00 03 E0 E3
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 03 EF EC
        C: 1F
        # bit 20 (32) is bit 0 of compact byte 10, bit 3E (62) bit 6 of byte 13
        H: E1 1E
        C: 79
        H: 1F FF C0 00 20
        C: 79
        H: 00 0D 0D
        C: 79 A5 FF FF FF FF FF FF 7F FF FF FE FF FF BF 9B
    )"},
    {"wide_groups_of_2048_byte_sectors", "ZV32F435_448K", SYNC R"(
        H: 63 9C
        C: 79
        H: 01 1F 21 3F
        C: 79
    )" AFTER_RESET R"(
        # bit 31: sectors 62 and 63; bit 33: 128 to 191
        H: 44 BB
        C: 79
        H: 00 00 00 3D 3D
        C: 79
        H: 44 BB
        C: 79
        H: 00 00 00 3F 3F
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 00 40 40
        C: 79
        H: 44 BB
        C: 79
        H: 00 00 00 7F 7F
        C: 79
        H: 44 BB
        C: 79
        H: 00 00 00 80 80
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 00 BF BF
        C: 1F
    )"},
    {"no_such_group", "ZV32F403A_1024K", SYNC R"(
        H: 63 9C
        C: 79
        H: 01 00 20 21
        C: 1F
        H: 63 9C
        C: 79
        H: 00 01 02
        C: 1F
        # no reset: still synchronised
        H: 7F
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 00 00 00
        C: 79
    )"},
};
WIRE_VECTORS(Protect, protecting);

} // namespace
