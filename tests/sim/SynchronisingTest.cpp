// Synchronising, and the time limits.

#include "tests/sim/Vectors.h"

namespace {

const sim::Vector synchronising[] = {
    {"sync_first_ack_then_nack", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 7F
        C: 1F
        H: 7F
        C: 1F
    )"},
    {"everything_before_the_first_sync_is_ignored", "ZV32F403A_1024K", R"(
        H: 00 FF 31 CE 80
        C: -
        H: 7F
        C: 79
    )"},
    {"wrong_complement", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 00 FE
        C: 1F
        H: 02 FD
        C: 79 04 03 47 70 05 07 79
    )"},
    {"unknown_opcode", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 03 FC
        C: 1F
        H: 71 8E
        C: 1F
        H: 81 7E
        C: 1F
        # one-byte sector numbers are for the oldest chip
        H: 43 BC
        C: 1F
        # levels are for other chips
        H: 84 7B
        C: 1F
    )"},
    {"sync_between_opcode_and_complement_is_a_wrong_complement", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 00 7F
        C: 1F
        H: 7F
        C: 1F
    )"},
    {"frame_limit_keeps_a_command_that_goes_on_in_time", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 11
        wait 500
        H: EE
        C: 79
        wait 500
        H: 08
        wait 500
        H: 00 00 00 08
        C: 79
        wait 500
        H: 00 FF
        C: 79 FF
    )"},
    {"frame_limit_drops_an_opcode", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 11
        wait 501
        H: 7F
        C: 1F
    )"},
    {"frame_limit_drops_a_half_sent_write", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 03 11 22 33 44
        wait 501
        # the checksum would be 47
        H: 47
        C: -
        wait 501
        H: 7F
        C: 1F
        H: 11 EE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 03 FC
        C: 79 FF FF FF FF
    )"},
    {"frame_limit_drops_behind_an_answer", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 31 CE
        C: 79
        wait 501
        H: 7F
        C: 1F
    )"},
    {"no_limit_between_commands", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        wait 100000
        H: 02 FD
        C: 79 04 03 47 70 05 07 79
    )"},
    {"bytes_while_the_chip_starts_are_lost", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        button
        wait 19
        H: 7F
        C: -
        wait 1
        H: 7F
        C: 79
        H: 7F
        C: 1F
    )"},
    {"a_reset_ends_a_command", "ZV32F403A_1024K", R"(
        H: 7F
        C: 79
        H: 31 CE
        C: 79
        button
        wait 20
        H: 7F
        C: 79
        H: 7F
        C: 1F
    )"},
};
WIRE_VECTORS(Synchronising, synchronising);

} // namespace
