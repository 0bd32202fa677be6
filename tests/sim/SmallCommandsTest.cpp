// Tool exchange, reset, checksum.

#include "tests/sim/Vectors.h"

namespace {

const sim::Vector smallOnes[] = {
    {"tool_exchange_takes_any_version", "ZV32F403A_1024K", SYNC R"(
        H: 5A A5
        C: 79
        H: 00 02 00 01 03
        C: 79
        H: 5A A5
        C: 79
        H: 12 34 56 78 08
        C: 79
        H: 5A A5
        C: 79
        H: 00 02 00 01 02
        C: 1F
    )"},
    {"reset_by_command", "ZV32F403A_1024K", SYNC R"(
        H: D4 2B
        C: 79
        H: 7F
        C: -
    )" AFTER_RESET R"(
        H: 7F
        C: 1F
    )"},
    {"crc_of_erased_sectors", "ZV32F403A_1024K", SYNC R"(
        H: AC 53
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 00 01 01
        C: 79 3F 55 D1 7F C4
        H: AC 53
        C: 79
        H: 08 00 08 00 00
        C: 79
        H: 00 02 02
        C: 79 F1 54 67 0A C8
    )"},
    {"crc_of_content", "ZV32F403A_1024K", SYNC WRITE_WORD("08 00 08 00 00") R"(
        H: AC 53
        C: 79
        H: 08 00 08 00 00
        C: 79
        H: 00 01 01
        C: 79 FA E1 40 8C D7
        H: AC 53
        C: 79
        H: 08 00 08 00 00
        C: 79
        H: 00 02 02
        C: 79 21 BE 0A 6E FB
    )"},
    {"crc_of_no_sector_is_the_size_of_one", "ZV32F403A_1024K", SYNC R"(
        H: AC 53
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 00 00 00
        C: 79 00 00 08 00 08
    )"},
    {"crc_of_each_sector", "ZV32F403A_1024K", SYNC WRITE_WORD("08 00 08 00 00") R"(
        H: AC 53
        C: 79
        H: 08 00 08 00 00
        C: 79
        H: 80 02 82
        C: 79 FA E1 40 8C 3F 55 D1 7F 13
    )"},
    {"crc_of_each_sector_of_too_many", "ZV32F403A_1024K", SYNC R"(
        H: AC 53
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 80 00 80
        C: 1F
        H: AC 53
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 80 41 C1
        C: 1F
        # beyond the end
        H: AC 53
        C: 79
        H: 08 0F F8 00 FF
        C: 79
        H: 80 02 82
        C: 1F
    )"},
    {"size_of_a_sector_of_1_KB", "ZV32F421_64K", SYNC R"(
        H: AC 53
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 00 00 00
        C: 79 00 00 04 00 04
    )"},
    {"crc_refusals", "ZV32F403A_1024K", SYNC R"(
        # no sector starts there
        H: AC 53
        C: 79
        H: 08 00 00 04 0C
        C: 1F
        # no sectors there
        H: AC 53
        C: 79
        H: 20 00 00 00 20
        C: 1F
        H: AC 53
        C: 79
        H: 08 40 00 00 48
        C: 1F
        # one too many
        H: AC 53
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 02 01 03
        C: 1F
        # all of them
        H: AC 53
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 00 01 00
        C: 1F
    )"},
};
WIRE_VECTORS(Small, smallOnes);

} // namespace
