// User system data in the compact form.

#include "tests/sim/Vectors.h"

namespace {

const sim::Vector userData[] = {
    {"read_24", "ZV32F403A_1024K", SYNC R"(
        H: E1 1E
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 17 17
        C: 79 A5 FF*23 5A
        H: E1 1E
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 00 00
        C: 79 A5 A5
    )"},
    {"read_2048", "ZV32F437_4032K", SYNC R"(
        H: E1 1E
        C: 79
        H: 1F FF C0 00 20
        C: 79
        H: 07 FF F8
        C: 79 A5 FF*2047 5A
    )"},
    {"read_refusals", "ZV32F403A_1024K", SYNC R"(
        H: E1 1E
        C: 79
        H: 1F FF C0 00 20
        C: 1F
        H: E1 1E
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 18 18
        C: 1F
        H: E1 1E
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 17 16
        C: 1F
    )"},
    {"write_resets_and_then_holds", "ZV32F403A_1024K", SYNC R"(
        H: E2 1D
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 17 A5 12 34 56 FE FF FF FF 00 FF*15 3C
        C: 79 79
    )" AFTER_RESET R"(
        H: E1 1E
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 17 17
        C: 79 A5 12 34 56 FE FF FF FF 00 FF*15 2B
        # every byte has its complement in memory
        H: 11 EE
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 09 F6
        C: 79 A5 5A 12 ED 34 CB 56 A9 FE 01
        # and sectors 0 and 1 are protected
        H: 44 BB
        C: 79
        H: 00 00 00 01 01
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 00 02 02
        C: 79
    )"},
    {"series_13_waits_for_a_reset", "ZV32F435_448K", SYNC R"(
        H: E2 1D
        C: 79
        H: 1F FF C0 00 20
        C: 79
        H: 00 FF 00 FF FF FF FE FF*251 01
        C: 79 79
        # still open
        H: 44 BB
        C: 79
        H: 00 00 00 00 00
        C: 79
    )" READS("1F FF C0 00 20", "00 FF FF 00") R"(
        H: D4 2B
        C: 79
    )" AFTER_RESET R"(
        H: 11 EE
        C: 1F
        H: 92 6D
        C: 79 79
    )" AFTER_RESET READS("1F FF C0 00 20", "A5 5A FF 00")},
    {"write_refusals", "ZV32F403A_1024K", SYNC R"(
        H: E2 1D
        C: 79
        H: 1F FF F8 08 10
        C: 1F
        # one byte fewer and one more
        H: E2 1D
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 16 A5 FF*22 B3
        C: 1F
        H: E2 1D
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 18 A5 FF*24 BD
        C: 1F
        # checksum
        H: E2 1D
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 17 00 FF*23 E9
        C: 1F
        # nothing was written, nothing was reset
        H: E1 1E
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 01 01
        C: 79 A5 FF 5A
    )"},
    {"the_high_level_by_option_byte_where_there_are_levels", "ZV32M412_256K", SYNC R"(
        H: E2 1D
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 FF CC FF*255 CC
        C: 79 79
    )" AFTER_RESET R"(
        H: 92 6D
        C: 1F
    )"},
    {"the_same_byte_is_a_plain_protection_where_there_are_none", "ZV32F421_64K", SYNC R"(
        H: E2 1D
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 FF CC FF*255 CC
        C: 79 79
    )" AFTER_RESET R"(
        H: 11 EE
        C: 1F
        H: 92 6D
        C: 79 79
    )"},
};
WIRE_VECTORS(UserData, userData);

} // namespace
