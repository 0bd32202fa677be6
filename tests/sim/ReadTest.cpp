// READ.

#include "tests/sim/Vectors.h"

namespace {

const sim::Vector reading[] = {
    {"flash_one_byte_and_a_full_packet", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 11 EE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 00 FF
        C: 79 FF
        H: 11 EE
        C: 79
        H: 08 0F FF 00 F8
        C: 79
        H: FF 00
        C: 79 FF*256
    )"},
    {"past_the_end_of_flash", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 11 EE
        C: 79
        H: 08 0F FF FC 04
        C: 79
        H: 04 FB
        C: 1F
        H: 11 EE
        C: 79
        H: 08 10 00 00 18
        C: 1F
    )"},
    {"wrong_checksums", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 11 EE
        C: 79
        H: 08 00 00 00 09
        C: 1F
        H: 11 EE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 00 FE
        C: 1F
        H: 7F
        C: 1F
    )"},
    {"no_memory_there", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 11 EE
        C: 79
        H: 40 00 00 00 40
        C: 1F
        # SPIM is not enabled
        H: 11 EE
        C: 79
        H: 08 40 00 00 48
        C: 1F
        # no OTP area on this chip
        H: 11 EE
        C: 79
        H: 1F FF E4 00 04
        C: 1F
    )"},
    {"size_register_and_its_end", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 11 EE
        C: 79
        H: 1F FF F7 E0 F7
        C: 79
        H: 01 FE
        C: 79 00 04
        H: 11 EE
        C: 79
        H: 1F FF F7 E0 F7
        C: 79
        H: 02 FD
        C: 1F
    )"},
    {"size_register_of_4032_kb", "ZV32F435_4032K", R"(
        H: 7F
        C: 79
        H: 11 EE
        C: 79
        H: 1F FF F7 E0 F7
        C: 79
        H: 01 FE
        C: 79 C0 0F
    )"},
    {"block_identifier_byte_6", "ZV32F403_2_256K", R"(
        H: 7F
        C: 79
        H: 11 EE
        C: 79
        H: 1F FF B1 00 51
        C: 79
        H: 07 F8
        C: 79 FF FF FF FF FF FF 41 FF
    )"},
    {"option_bytes_with_complements", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 11 EE
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 05 FA
        C: 79 A5 5A FF 00 FF 00
    )"},
    {"option_bytes_elsewhere", "ZV32F435_448K", R"(
        H: 7F
        C: 79
        H: 11 EE
        C: 79
        H: 1F FF C0 00 20
        C: 79
        H: 03 FC
        C: 79 A5 5A FF 00
        H: 11 EE
        C: 79
        H: 1F FF F8 00 18
        C: 1F
    )"},
};
WIRE_VECTORS(Read, reading);

} // namespace
