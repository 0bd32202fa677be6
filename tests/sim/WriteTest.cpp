// WRITE, and GO.

#include "tests/sim/Vectors.h"

namespace {

const sim::Vector writing[] = {
    {"write_and_read_back", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 03 11 22 33 44 47
        C: 79
        H: 11 EE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 04 FB
        C: 79 11 22 33 44 FF
    )"},
    {"full_packet_is_258_bytes_of_the_host", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 31 CE
        C: 79
        H: 08 0F FF 00 F8
        C: 79
        H: FF AA*256
        C: -
        H: FF
        C: 79
        H: 11 EE
        C: 79
        H: 08 0F FF 00 F8
        C: 79
        H: FF 00
        C: 79 AA*256
    )"},
    {"ff_leaves_its_cell_and_a_written_cell_refuses", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 03 11 FF 33 FF 21
        C: 79
        # the gaps can be filled
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 03 FF 22 FF 44 65
        C: 79
        # the same bytes again are an error, and so are fewer bits
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 03 11 22 33 44 47
        C: 1F
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 03 00 FF FF FF FC
        C: 1F
        H: 11 EE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 03 FC
        C: 79 11 22 33 44
    )"},
    {"a_refused_packet_touches_no_cell", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 31 CE
        C: 79
        H: 08 00 00 04 0C
        C: 79
        H: 03 11 22 33 44 47
        C: 79
        # the first four cells are erased, the next four are not
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 07 AA AA AA AA 00 00 00 00 07
        C: 1F
        H: 11 EE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 07 F8
        C: 79 FF FF FF FF 11 22 33 44
    )"},
    {"address_not_a_multiple_of_4", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 31 CE
        C: 79
        H: 08 00 00 02 0A
        C: 1F
        H: 7F
        C: 1F
    )"},
    {"length_not_a_multiple_of_4", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 02 11 22 33 02
        C: 1F
    )"},
    {"past_the_end", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 31 CE
        C: 79
        H: 08 0F FF FC 04
        C: 79
        H: 07 00*8 07
        C: 1F
        H: 11 EE
        C: 79
        H: 08 0F FF FC 04
        C: 79
        H: 03 FC
        C: 79 FF FF FF FF
    )"},
    {"wrong_checksums", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 31 CE
        C: 79
        H: 08 00 00 00 00
        C: 1F
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 03 11 22 33 44 48
        C: 1F
        H: 11 EE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 00 FF
        C: 79 FF
    )"},
    {"memories_that_cannot_be_written", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        # the size register
        H: 31 CE
        C: 79
        H: 1F FF F7 E0 F7
        C: 1F
        # the option bytes
        H: 31 CE
        C: 79
        H: 1F FF F8 00 18
        C: 1F
        # SPIM that is not enabled
        H: 31 CE
        C: 79
        H: 08 40 00 00 48
        C: 1F
    )"},
    {"ram_takes_anything_at_any_address", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 31 CE
        C: 79
        H: 20 01 7F FE A0
        C: 79
        H: 01 12 34 27
        C: 79
        H: 31 CE
        C: 79
        H: 20 01 7F FE A0
        C: 79
        H: 01 56 78 2F
        C: 79
        H: 11 EE
        C: 79
        H: 20 01 7F FE A0
        C: 79
        H: 01 FE
        C: 79 56 78
        H: 31 CE
        C: 79
        H: 20 01 80 00 A1
        C: 1F
    )"},
};
WIRE_VECTORS(Write, writing);

const sim::Vector going[] = {
    {"behind_go_the_chip_is_silent_until_a_reset", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 21 DE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 7F 7F 00 FF
        C: -
        wait 10000
        H: 7F
        C: -
        button
        wait 20
        H: 7F
        C: 79
    )"},
    {"into_ram", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 21 DE
        C: 79
        H: 20 00 00 00 20
        C: 79
        H: 7F
        C: -
    )"},
    {"to_nowhere", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 21 DE
        C: 79
        H: 40 00 00 00 40
        C: 1F
        H: 21 DE
        C: 79
        H: 1F FF F8 00 18
        C: 1F
        H: 21 DE
        C: 79
        H: 08 40 00 00 48
        C: 1F
        H: 21 DE
        C: 79
        H: 08 00 00 00 00
        C: 1F
        H: 7F
        C: 1F
    )"},
    {"last_word_of_flash_is_a_place_like_any_other", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 21 DE
        C: 79
        H: 08 0F FF FC 04
        C: 79
        wait 20
        H: 7F
        C: -
    )"},
    {"last_word_of_flash_resets_F403_1", "ZV32F403_1_1024K", R"(
        H: 7F
        C: 79
        H: 21 DE
        C: 79
        H: 08 0F FF FC 04
        C: 79
        wait 20
        H: 7F
        C: 79
    )"},
    {"last_word_of_flash_resets_F403_2", "ZV32F403_2_256K", R"(
        H: 7F
        C: 79
        H: 21 DE
        C: 79
        H: 08 03 FF FC 08
        C: 79
        wait 20
        H: 7F
        C: 79
    )"},
};
WIRE_VECTORS(Go, going);

} // namespace
