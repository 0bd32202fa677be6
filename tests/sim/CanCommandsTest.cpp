// CAN: the commands in frames, and the speed of the bus.

#include "tests/sim/CanVectors.h"

namespace sim {
namespace {

const CanVector commands[] = {
    {"get_lists_set_speed_first_among_the_further_ones", {}, OPEN R"(
        H: 000
        C: 100 79 / 100 16 21 00 01 02 11 21 31 / 100 44 63 73 82 92 03 5A AC / 100 B3 B7 D1 D2 D3 D4 E1 E2 / 100 87 / 100 79
    )"},
    {"get_ver_rops", {}, OPEN R"(
        H: 001
        C: 101 79 / 101 21 34 12 07 / 101 79
    )"},
    {"get_id", {}, OPEN R"(
        H: 002
        C: 102 79 / 102 04 03 47 70 05 07 32 / 102 79
    )"},
    {"read_has_a_check_byte_here", {}, OPEN WRITES("08 00 00 00 08") READS("08 00 00 00 08", "01 02 03 04 04") R"(
        H: 011
        C: 111 79
        H: 011 08 00 00 00 08
        C: 111 79
        # eight bytes and the ninth
        H: 011 07 F8
        C: 111 79 / 111 01 02 03 04 FF FF FF FF / 111 04
        H: 011
        C: 111 79
        H: 011 08 00 00 00 08
        C: 111 79
        H: 011 06 F9
        C: 111 79 / 111 01 02 03 04 FF FF FF FB
    )"},
    {"erase_ext", {}, OPEN WRITES("08 00 00 00 08") WRITES("08 00 08 00 00") R"(
        H: 044
        C: 144 79
        H: 044 00 00 00 00 00
        C: 144 79
    )" READS("08 00 00 00 08", "FF FF FF FF 00") READS("08 00 08 00 00", "01 02 03 04 04") R"(
        # four sectors: eleven bytes
        H: 044
        C: 144 79
        H: 044 00 03 00 00 00 01 00 02 / 044 00 03 03
        C: 144 79
    )" READS("08 00 08 00 00", "FF FF FF FF 00")},
    {"erase_ext_special_codes", {}, OPEN WRITES("08 00 00 00 08") R"(
        H: 044
        C: 144 79
        H: 044 FF FF 00
        C: 144 79
        H: 044
        C: 144 79
        H: 044 FF FB 04
        C: 144 79
        H: 044 08 01 00 00 09
        C: 144 79
    )" READS("08 00 00 00 08", "FF FF FF FF 00")},
    {"firmware_crc_has_one_check_byte", {}, OPEN R"(
        H: 0AC
        C: 1AC 79
        H: 0AC 08 00 00 00 08
        C: 1AC 79
        H: 0AC 00 01 01
        C: 1AC 79 / 1AC 3F 55 D1 7F C4
    )"},
    {"slib_status", {}, OPEN R"(
        H: 0D3
        C: 1D3 79 / 1D3 00 FF FF FF FF FF FF 00
    )"},
    {"user_data", {}, OPEN R"(
        H: 0E1
        C: 1E1 79
        H: 0E1 1F FF F8 00 18
        C: 1E1 79
        H: 0E1 00 17 17
        C: 1E1 79 / 1E1 A5 FF FF FF FF FF FF FF / 1E1 FF FF FF FF FF FF FF FF / 1E1 FF FF FF FF FF FF FF FF / 1E1 5A
        H: 0E2
        C: 1E2 79
        H: 0E2 1F FF F8 00 18
        C: 1E2 79
        H: 0E2 00 17 A5 12 34 56 FF FF / 0E2 FF*8 / 0E2 FF*8 / 0E2 FF FF C2
        C: 1E2 79 / 1E2 79
        wait 20
    )" OPEN READS("1F FF F8 00 18", "A5 5A 12 ED 00")},
    {"protection_answers_twice", {}, OPEN R"(
        H: 082
        C: 182 79 / 182 79
        wait 20
        H: 011
        C: -
        told ignored: frame 011: there was no opening frame
        H: 07F
        C: 17F 79
        H: 011
        C: 111 1F
        told refused: READ: the chip is access-protected
        H: 003
        C: 103 79
        H: 003 02 FD
        C: 103 79
        H: 092
        C: 192 79 / 192 79
    )"},
    {"reset", {}, OPEN "H: 0D4\nC: 1D4 79\nwait 20\n" OPEN},
    {"go_then_silence", {}, OPEN WRITES("08 00 00 00 08") R"(
        H: 021
        C: 121 79
        H: 021 08 00 00 00 08
        C: 121 79
        H: 07F
        C: -
        button
        wait 20
    )" OPEN},
};
CAN_VECTORS(CanCommands, commands);

TEST(CanPacket, aFullOneGoesThereAndBack) {
    CanRig rig;
    // 1 + 256 + 1 bytes are 32 frames of 8 and one of 2; 55 xor'ed 256 times is 0.
    std::string there = "H: 031 FF 55*7";
    std::string back = "C: 111 79";
    for (int i = 0; i < 31; ++i)
        there += " / 031 55*8";
    for (int i = 0; i < 32; ++i)
        back += " / 111 55 55 55 55 55 55 55 55";
    EXPECT_EQ(rig.play(OPEN "H: 031\nC: 131 79\nH: 031 08 00 00 00 08\nC: 131 79\n" + there +
                       " / 031 55 FF\nC: 131 79\n"
                       "H: 011\nC: 111 79\nH: 011 08 00 00 00 08\nC: 111 79\nH: 011 FF 00\n" +
                       back + " / 111 00"),
              "");
}

const CanVector speeds[] = {
    {"every_code", {}, OPEN R"(
        H: 003
        C: 103 79
        H: 003 01 FE
        C: 103 79
        speed 125000
        H: 003
        C: 103 79
        H: 003 03 FC
        C: 103 79
        speed 500000
        H: 003
        C: 103 79
        H: 003 04 FB
        C: 103 79
        speed 1000000
        H: 003
        C: 103 79
        H: 003 05 FA
        C: 103 79
        speed 100000
        H: 003
        C: 103 79
        H: 003 06 F9
        C: 103 79
        speed 50000
        H: 003
        C: 103 79
        H: 003 07 F8
        C: 103 79
        speed 20000
        H: 003
        C: 103 79
        H: 003 08 F7
        C: 103 79
        speed 800000
        H: 003
        C: 103 79
        H: 003 02 FD
        C: 103 79
        speed 250000
        H: 07F
        C: 17F 1F
    )"},
    {"no_such_code", {}, OPEN R"(
        speed 250000
        H: 003
        C: 103 79
        H: 003 00 FF
        C: 103 1F
        told refused: SET_SPEED: there is no such speed
        H: 003
        C: 103 79
        H: 003 09 F6
        C: 103 1F
        told refused: SET_SPEED: there is no such speed
        H: 07F
        C: 17F 1F
    )"},
    {"frames_at_another_speed_are_noise", {}, R"(
        speed 500000
        H: 07F
        C: -
        told ignored: frame 07F: at 500000 bits per second, the chip is at 250000
        speed 250000
    )" OPEN R"(
        H: 003
        C: 103 79
        H: 003 03 FC
        C: 103 79
        H: 002
        C: -
        told ignored: frame 002: at 250000 bits per second, the chip is at 500000
        speed 500000
        H: 07F
        C: 17F 1F
    )"},
    {"a_reset_brings_the_first_speed_back", {}, R"(
        speed 250000
    )" OPEN R"(
        H: 003
        C: 103 79
        H: 003 04 FB
        C: 103 79
        speed 1000000
        # the answer still comes at the speed from before
        H: 0D4
        C: 1D4 79
        wait 20
        H: 07F
        C: -
        told ignored: frame 07F: at 1000000 bits per second, the chip is at 250000
        speed 250000
    )" OPEN},
};
CAN_VECTORS(CanSpeed, speeds);

} // namespace
} // namespace sim
