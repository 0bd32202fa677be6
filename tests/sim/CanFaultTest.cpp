// CAN: what `--fault` does to frames, and how long they take.

#include "tests/sim/CanVectors.h"

namespace sim {
namespace {

// Bytes from the host in these: 07F is the first, an opcode one more, then the bytes of the groups.
const CanVector faults[] = {
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
CAN_VECTORS(CanFault, faults);

TEST(CanHangup, takesItsFrameAndAllAfterIt) {
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

TEST(CanPace, aFrameHas47BitsItsDataAndATenthOfThoseThatCanBeStuffed) {
    EXPECT_EQ(bitsOf({0x031, {}}), 50U);
    EXPECT_EQ(bitsOf({0x131, {0x79}}), 59U);
    EXPECT_EQ(bitsOf({0x031, Bytes(8)}), 120U);
    EXPECT_EQ(bitsOf({0x031, Bytes(8), false, true}), 50U);
    EXPECT_EQ(bitsOf({0x031, Bytes(8), true}), 67U + 64U + 11U);
}

TEST(CanPace, theAnswerComesAfterBothFrames) {
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
