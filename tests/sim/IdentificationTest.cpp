// What the chip tells of itself.

#include "tests/sim/Vectors.h"

namespace {

const sim::Vector identification[] = {
    {"get", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 00 FF
        C: 79 15 21 00 01 02 11 21 31 44 63 73 82 92 5A AC B3 B7 D1 D2 D3 D4 E1 E2 79
    )"},
    {"get_of_the_oldest", "ZV32F403_2_256K", R"(
        H: 7F
        C: 79
        H: 00 FF
        C: 79 10 10 00 01 02 11 21 31 43 63 73 82 92 B3 B7 D4 E1 E2 79
        H: 5A A5
        C: 1F
        H: AC 53
        C: 1F
        H: 44 BB
        C: 1F
    )"},
    {"get_with_levels_without_spim", "ZV32F425_64K", R"(
        H: 7F
        C: 79
        H: 00 FF
        C: 79 14 20 00 01 02 11 21 31 44 63 73 82 92 5A 84 AC D1 D2 D3 D4 E1 E2 79
        H: B3 4C
        C: 1F
        H: B7 48
        C: 1F
    )"},
    {"version_and_bid", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 01 FE
        C: 79 21 34 12 79
    )"},
    {"version_without_bid", "ZV32F403_2_256K", R"(
        H: 7F
        C: 79
        H: 01 FE
        C: 79 10 00 00 79
    )"},
    {"id_short", "ZV32F403_2_256K", R"(
        H: 7F
        C: 79
        H: 02 FD
        C: 79 01 02 42 79
    )"},
    {"id_long", "ZV32F437_4032K", R"(
        H: 7F
        C: 79
        H: 02 FD
        C: 79 04 35 41 70 08 0E 79
    )"},
};
WIRE_VECTORS(Identification, identification);

} // namespace
