// The bootloader at a CAN bus, frame by frame.

#include "tests/sim/CanRig.h"

#include <gtest/gtest.h>

namespace sim {
namespace {

#define OPEN "\nH: 07F\nC: 17F 79\n"
#define READS(ADDRESS, WORD_AND_XOR)                                                                                   \
    "\nH: 011\nC: 111 79\nH: 011 " ADDRESS "\nC: 111 79\nH: 011 03 FC\nC: 111 79 / 111 " WORD_AND_XOR "\n"
#define WRITES(ADDRESS) "\nH: 031\nC: 131 79\nH: 031 " ADDRESS "\nC: 131 79\nH: 031 03 01 02 03 04 07\nC: 131 79\n"

struct Conversation {
    const char *name;
    std::vector<std::string> faults;
    const char *text;
};

void PrintTo(const Conversation &conversation, std::ostream *out) { *out << conversation.name; }

std::string nameOfRow(const ::testing::TestParamInfo<Conversation> &row) { return row.param.name; }

class CanWire : public ::testing::TestWithParam<Conversation> {};

TEST_P(CanWire, goesFrameForFrame) {
    CanRig rig(GetParam().faults);
    EXPECT_EQ(rig.play(GetParam().text), "");
}

const Conversation steps[] = {
    {"opening_frame_ack_then_nack", {}, R"(
        H: 07F
        C: 17F 79
        H: 07F
        C: 17F 1F
        H: 07F
        C: 17F 1F
    )"},
    {"everything_before_the_opening_frame_is_ignored", {}, R"(
        H: 000 / 07F 7F / 031 08 00 00 00 08
        C: -
        told ignored: frame 000: there was no opening frame
        told ignored: frame 07F: there was no opening frame
        told ignored: frame 031: there was no opening frame
    )" OPEN},
    {"other_frames_are_none_of_the_chips_business", {}, OPEN R"(
        H: 00000002 / r002 / 0000007F / 700 / 200 01
        C: -
        H: 002
        C: 102 79 / 102 04 03 47 70 05 07 32 / 102 79
    )"},
    {"the_chips_own_identifiers_have_one_sender", {}, OPEN R"(
        H: 102 / 1FF 01
        C: -
        told ignored: frame 102: the identifier is the chip's own
        told ignored: frame 1FF: the identifier is the chip's own
    )"},
    {"a_frame_without_data_ends_a_command", {}, OPEN R"(
        H: 031
        C: 131 79
        H: 031 08 00 00 00 08
        C: 131 79
        H: 031 07 01 02 03 04 05 06 07
        C: -
        H: 002
        C: 102 79 / 102 04 03 47 70 05 07 32 / 102 79
        told refused: WRITE: ended by another frame without data
        H: 031 08 00
        C: -
        told ignored: frame 031: its data belong to no open command
    )" READS("08 00 00 00 08", "FF FF FF FF 00")},
    {"so_does_the_opening_frame", {}, OPEN R"(
        H: 011
        C: 111 79
        H: 07F
        C: 17F 1F
        told refused: READ: ended by another frame without data
        H: 011 08 00 00 00 08
        C: -
        told ignored: frame 011: its data belong to no open command
    )"},
    {"the_same_opcode_begins_anew", {}, OPEN R"(
        H: 011
        C: 111 79
    )" READS("08 00 00 00 08", "FF FF FF FF 00") "told refused: READ: ended by another frame without data\n"},
    {"data_of_another_command_leave_the_open_one_alone", {}, OPEN R"(
        H: 011
        C: 111 79
        H: 031 08 00 00 00 08 / 07F 7F
        C: -
        told ignored: frame 031: its data belong to no open command
        told ignored: frame 07F: its data belong to no open command
        H: 011 08 00 00 00 08
        C: 111 79
        H: 011 00 FF
        C: 111 79 / 111 FF FF
    )"},
    {"more_than_the_group_needs", {}, OPEN R"(
        H: 011
        C: 111 79
        H: 011 08 00 00 00 08 00
        C: 111 1F
        told refused: READ: a frame with more than its group needs
        H: 011 08 00 00 00 08
        C: -
        told ignored: frame 011: its data belong to no open command
    )" READS("08 00 00 00 08", "FF FF FF FF 00")},
    {"two_groups_in_one_frame_are_one_too_many", {}, OPEN R"(
        H: 011
        C: 111 79
        H: 011 08 00 00 00 08 00 FF
        C: 111 1F
        told refused: READ: a frame with more than its group needs
    )"},
    {"more_than_the_group_needs_in_a_later_frame_writes_nothing", {}, OPEN R"(
        H: 031
        C: 131 79
        H: 031 08 00 00 00 08
        C: 131 79
        H: 031 07 01 02 03 04 05 06 07 / 031 08 0F 00
        C: 131 1F
        told refused: WRITE 08000000: a frame with more than its group needs
    )" READS("08 00 00 00 08", "FF FF FF FF 00")},
    {"a_short_frame_inside_a_group", {}, OPEN R"(
        H: 011
        C: 111 79
        H: 011 08 00 00 00
        C: 111 1F
        told refused: READ: a short frame inside a group
        H: 011 08
        C: -
        told ignored: frame 011: its data belong to no open command
    )"},
    {"between_its_frames_a_command_may_take_any_time", {}, OPEN R"(
        H: 031
        C: 131 79
        wait 100000
        H: 031 08 00 00 00 08
        C: 131 79
        wait 100000
        H: 031 07 01 02 03 04 05 06 07
        wait 100000
        H: 031 08 0F
        C: 131 79
    )" READS("08 00 00 00 08", "01 02 03 04 04")},
    {"unknown_opcodes", {}, OPEN R"(
        H: 071 / 0FF / 043
        C: 171 1F / 1FF 1F / 143 1F
        told refused: opcode 71: unknown command
        told refused: opcode FF: unknown command
        told refused: opcode 43: unknown command
    )"},
    {"wrong_check_byte", {}, OPEN R"(
        H: 011
        C: 111 79
        H: 011 08 00 00 00 09
        C: 111 1F
        told refused: READ: wrong checksum
        H: 003
        C: 103 79
        H: 003 03 FD
        C: 103 1F
        told refused: SET_SPEED: wrong checksum
    )"},
    {"frames_while_the_chip_starts_are_lost", {}, OPEN R"(
        button
        wait 19
        H: 07F
        C: -
        wait 1
        H: 002
        C: -
        told ignored: frame 002: there was no opening frame
    )" OPEN},
};
INSTANTIATE_TEST_SUITE_P(Step, CanWire, ::testing::ValuesIn(steps), nameOfRow);

const Conversation commands[] = {
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
INSTANTIATE_TEST_SUITE_P(Commands, CanWire, ::testing::ValuesIn(commands), nameOfRow);

TEST(CanPacket, aFullOneGoesThereAndBack) {
    CanRig rig;
    // 1 + 256 + 1 bytes are 32 frames of 8 and one of 2; 55 xor'ed 256 times is 0.
    std::string there = "H: 031 FF 55*7";
    std::string back = "C: 111 79";
    for (int i = 0; i < 31; ++i) {
        there += " / 031 55*8";
    }
    for (int i = 0; i < 32; ++i) {
        back += " / 111 55 55 55 55 55 55 55 55";
    }
    EXPECT_EQ(rig.play(OPEN "H: 031\nC: 131 79\nH: 031 08 00 00 00 08\nC: 131 79\n" + there +
                       " / 031 55 FF\nC: 131 79\n"
                       "H: 011\nC: 111 79\nH: 011 08 00 00 00 08\nC: 111 79\nH: 011 FF 00\n" + back + " / 111 00"),
              "");
}

const Conversation speeds[] = {
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
INSTANTIATE_TEST_SUITE_P(Speed, CanWire, ::testing::ValuesIn(speeds), nameOfRow);

// Bytes from the host in these: 07F is the first, an opcode one more, then the bytes of the groups.
const Conversation faults[] = {
    {"an_opening_frame_is_one_byte", {"rx-lost@1"}, R"(
        H: 07F
        C: -
        told fault: rx-lost@1
    )" OPEN},
    {"frames_of_others_do_not_count", {"rx-lost@1"}, R"(
        H: 700 01 02 / 0000007F / r07F / 07F
        C: -
        told fault: rx-lost@1
    )" OPEN},
    {"an_opcode_frame_too", {"rx-lost@2"}, OPEN R"(
        H: 002
        C: -
        told fault: rx-lost@2
        H: 002
        C: 102 79 / 102 04 03 47 70 05 07 32 / 102 79
    )"},
    {"a_lost_byte_takes_its_frame_along", {"rx-lost@5"}, OPEN R"(
        H: 011
        C: 111 79
        H: 011 08 00 00 00 08
        C: -
        told fault: rx-lost@5
        H: 011 08 00 00 00 08
        C: 111 79
    )"},
    {"the_end_of_a_group_with_a_hole_is_refused", {"rx-lost@17"}, OPEN R"(
        H: 031
        C: 131 79
        H: 031 08 00 00 00 08
        C: 131 79
        H: 031 0F 01 02 03 04 05 06 07 / 031 08*8 / 031 09 0F
        C: 131 1F
        told fault: rx-lost@17
        told refused: WRITE 08000000: a short frame inside a group
    )" READS("08 00 00 00 08", "FF FF FF FF 00")},
    {"a_doubled_frame", {"rx-double@2"}, OPEN R"(
        H: 011
        C: 111 79 / 111 79
        told fault: rx-double@2
        told refused: READ: ended by another frame without data
    )"},
    {"a_doubled_data_frame_belongs_to_no_group", {"rx-double@4"}, OPEN R"(
        H: 011
        C: 111 79
        H: 011 08 00 00 00 08
        C: 111 79 / 111 1F
        told fault: rx-double@4
        told refused: READ 08000000: a frame with more than its group needs
    )"},
    {"a_damaged_byte_damages_itself", {"rx-damage@3:01"}, OPEN R"(
        H: 011
        C: 111 79
        H: 011 08 00 00 00 08
        C: 111 1F
        told fault: rx-damage@3:01
        told refused: READ: wrong checksum
    )"},
    {"a_damaged_frame_without_data_is_another_opcode", {"rx-damage@2:13"}, OPEN R"(
        H: 011
        C: 102 79 / 102 04 03 47 70 05 07 32 / 102 79
        told fault: rx-damage@2:13
    )"},
    {"a_late_frame_comes", {"rx-late@2:700"}, OPEN R"(
        H: 002
        C: 102 79 / 102 04 03 47 70 05 07 32 / 102 79
        told fault: rx-late@2:700
    )"},
    {"a_lost_answer", {"tx-lost@1"}, R"(
        H: 07F
        C: -
        told fault: tx-lost@1
        H: 07F
        C: 17F 1F
    )"},
    {"a_lost_frame_of_a_reply", {"tx-lost@5"}, OPEN R"(
        H: 002
        C: 102 79 / 102 79
        told fault: tx-lost@5
    )"},
    {"a_damaged_byte_of_a_reply", {"tx-damage@4:FF"}, OPEN R"(
        H: 002
        C: 102 79 / 102 04 FC 47 70 05 07 32 / 102 79
        told fault: tx-damage@4:FF
    )"},
    {"a_doubled_answer", {"tx-double@2"}, OPEN R"(
        H: 011
        C: 111 79 / 111 79
        told fault: tx-double@2
    )"},
    {"nack_and_silence_count_commands", {"nack@1:31:1", "silence@3"}, OPEN R"(
        H: 031
        C: 131 79
        H: 031 08 00 00 00 08
        C: 131 1F
        told fault: nack@1:31:1
        told refused: WRITE: fault
        H: 002
        C: 102 79 / 102 04 03 47 70 05 07 32 / 102 79
        H: 002 / 07F
        C: -
        told fault: silence@3
        button
        wait 20
    )" OPEN},
    {"a_speed_whose_answer_is_lost_holds_all_the_same", {"tx-lost@3"}, "speed 250000" OPEN R"(
        H: 003
        C: 103 79
        H: 003 03 FC
        C: -
        told fault: tx-lost@3
        H: 07F
        C: -
        told ignored: frame 07F: at 250000 bits per second, the chip is at 500000
    )"},
};
INSTANTIATE_TEST_SUITE_P(Fault, CanWire, ::testing::ValuesIn(faults), nameOfRow);

TEST(CanHangup, takesItsFrameAndAllBehindIt) {
    CanRig rig({"hangup@2:250"});
    EXPECT_EQ(rig.play(OPEN "H: 002 / 07F\nC: -\ntold fault: hangup@2:250"), "");
    ASSERT_TRUE(rig.line.hangup());
    EXPECT_EQ(rig.line.hangup()->replugMs, 250U);
    rig.bootloader.losePower(rig.now);
    rig.line.replug();
    EXPECT_EQ(rig.play("wait 20" OPEN), "");
}

TEST(CanHangup, insideAReply) {
    CanRig rig({"tx-hangup@12"}); // the second frame of GET's list
    EXPECT_EQ(rig.play(OPEN "H: 000\nC: 100 79 / 100 16 21 00 01 02 11 21 31\ntold fault: tx-hangup@12"), "");
    ASSERT_TRUE(rig.line.hangup());
    EXPECT_FALSE(rig.line.hangup()->replugMs);
}

// ---- time

TEST(CanPace, aFrameHas47BitsItsDataAndATenthOfThoseThatCanBeStuffed) {
    EXPECT_EQ(bitsOf({0x031, {}}), 50U);
    EXPECT_EQ(bitsOf({0x131, {0x79}}), 59U);
    EXPECT_EQ(bitsOf({0x031, Bytes(8)}), 120U);
    EXPECT_EQ(bitsOf({0x031, Bytes(8), false, true}), 50U);
    EXPECT_EQ(bitsOf({0x031, Bytes(8), true}), 67U + 64U + 11U);
}

TEST(CanPace, theAnswerComesBehindBothFrames) {
    for (const unsigned speed : {0U, 250000U}) { // 0: as fast as the chip is
        CanRig rig({}, {}, true);
        rig.speed = speed;
        rig.send({0x07F, {}});
        const std::vector<TimedFrame> frames = rig.received();
        ASSERT_EQ(frames.size(), 1U);
        EXPECT_EQ(frames[0].at, rig.now + (50 + 59) * 4 * microsecond);
    }
}

TEST(CanPace, framesFollowEachOther) {
    CanRig rig({}, {}, true);
    rig.speed = 250000;
    EXPECT_EQ(rig.play(OPEN), "");
    rig.send({0x000, {}});
    const std::vector<TimedFrame> frames = rig.received();
    ASSERT_EQ(frames.size(), 6U);
    EXPECT_EQ(frames[0].at, rig.now + (50 + 59) * 4 * microsecond);
    EXPECT_EQ(frames[5].at, rig.now + (50 + 59 + 3 * 120 + 59 + 59) * 4 * microsecond);
}

TEST(CanPace, anotherSpeedIsAnotherPace) {
    CanRig rig({}, {}, true);
    EXPECT_EQ(rig.play("speed 250000" OPEN "H: 003\nC: 103 79\nH: 003 04 FB\nC: 103 79\nspeed 1000000"), "");
    rig.send({0x07F, {}});
    EXPECT_EQ(rig.received().at(0).at, rig.now + (50 + 59) * microsecond);
}

TEST(CanFlashTime, framesAreLostWhileTheChipWorks) {
    CanRig rig({}, {20 * millisecond, 0});
    EXPECT_EQ(rig.play(OPEN "H: 044\nC: 144 79"), "");
    rig.send({0x044, {0x00, 0x00, 0x00, 0x00, 0x00}});
    rig.now += 19 * millisecond;
    rig.send({0x07F, {}});
    const std::vector<TimedFrame> frames = rig.received();
    ASSERT_EQ(frames.size(), 1U);
    EXPECT_EQ(frames[0].at, rig.now + millisecond);
    EXPECT_EQ(rig.play("told ignored: frame 07F: the chip is at work\nwait 1\nH: 07F\nC: 17F 1F"), "");
}

} // namespace
} // namespace sim
