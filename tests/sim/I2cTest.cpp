// The chip on an I2C bus: transfers typed from the page, strictness, busy, faults.

#include "tests/sim/MessageRig.h"

namespace sim {
namespace {

constexpr char usual[] = "ZV32F403A_1024K";
constexpr FlashTime slow{20 * millisecond, 2560 * microsecond};

#define SENDS(GROUP) "\nW: " GROUP "\nR: 79\n"
#define GETS_ID SENDS("02 FD") "R: 04 03 47 70 05 07\nR: 79\n"
#define WRITES(ADDRESS) SENDS("31 CE") SENDS(ADDRESS) SENDS("03 01 02 03 04 07")
#define HOLDS(ADDRESS, WORD) SENDS("11 EE") SENDS(ADDRESS) SENDS("03 FC") "R: " WORD "\n"

const MessageCase transfers[] = {
    {"get", usual, {}, {}, SENDS("00 FF") R"(
        R: 15 21 00 01 02 11 21 31 44 63 73 82 92 5A AC B3 B7 D1 D2 D3 D4 E1 E2
        R: 79
    )"},
    {"get_version", usual, {}, {}, SENDS("01 FE") "R: 21 34 12\nR: 79"},
    {"get_id", usual, {}, {}, GETS_ID},
    {"get_id_of_two_bytes", "ZV32F403_2_256K", {}, {}, SENDS("02 FD") "R: 01 02 42\nR: 79"},
    {"write_and_read", usual, {}, {}, WRITES("08 00 00 10 18") HOLDS("08 00 00 10 18", "01 02 03 04")},
    {"a_reply_with_a_check_byte_of_its_own", usual, {}, {}, SENDS("D3 2C") "R: 00 FF*6 00"},
    {"several_groups", usual, {}, {}, SENDS("E1 1E") SENDS("1F FF F8 00 18") SENDS("00 02 02") "R: A5 FF FF A5"},
    {"erase_one_sector", usual, {}, {}, WRITES("08 00 00 00 08") WRITES("08 00 08 00 00") R"(
        # the count with its own check byte, then the numbers with theirs
        W: 44 BB
        R: 79
        W: 00 00 00
        R: 79
        W: 00 01 01
        R: 79
    )" HOLDS("08 00 00 00 08", "01 02 03 04") HOLDS("08 00 08 00 00", "FF FF FF FF")},
    {"erase_two_sectors",
     usual,
     {},
     {},
     WRITES("08 00 00 00 08") WRITES("08 00 08 00 00") SENDS("44 BB") SENDS("00 01 01") SENDS("00 00 00 01 01")
         HOLDS("08 00 00 00 08", "FF FF FF FF") HOLDS("08 00 08 00 00", "FF FF FF FF")},
    {"erase_everything",
     usual,
     {},
     {},
     WRITES("08 00 00 00 08") WRITES("08 08 00 00 00") SENDS("44 BB") SENDS("FF FF 00")
         HOLDS("08 00 00 00 08", "FF FF FF FF") HOLDS("08 08 00 00 00", "FF FF FF FF")},
    {"erase_a_bank",
     usual,
     {},
     {},
     WRITES("08 00 00 00 08") WRITES("08 08 00 00 00") SENDS("44 BB") SENDS("FF FD 02")
         HOLDS("08 00 00 00 08", "01 02 03 04") HOLDS("08 08 00 00 00", "FF FF FF FF")},
    {"erase_a_block",
     usual,
     {},
     {},
     WRITES("08 00 00 00 08") WRITES("08 01 00 00 09") SENDS("44 BB") SENDS("FF FB 04") SENDS("08 01 00 00 09")
         HOLDS("08 00 00 00 08", "01 02 03 04") HOLDS("08 01 00 00 09", "FF FF FF FF")},
    {"erase_refused", usual, {}, {}, WRITES("08 00 00 00 08") R"(
        # sector 512 is none
        W: 44 BB
        R: 79
        W: 00 00 00
        R: 79
        W: 02 00 02
        R: 1F
        # wrong check bytes
        W: 44 BB
        R: 79
        W: 00 00 01
        R: 1F
        W: 44 BB
        R: 79
        W: 00 00 00
        R: 79
        W: 00 00 01
        R: 1F
        # SPIM is off
        W: 44 BB
        R: 79
        W: FF FC 03
        R: 1F
    )" HOLDS("08 00 00 00 08", "01 02 03 04")},
    {"erase_by_one_byte_numbers",
     "ZV32F403_2_256K",
     {},
     {},
     SENDS("43 BC") SENDS("00 03 03") SENDS("43 BC") SENDS("FF 00")},
    {"unknown_commands", usual, {}, {}, "W: 77 88\nR: 1F\nW: 03 FC\nR: 1F\nW: 00 FE\nR: 1F" GETS_ID},
};

const MessageCase strictness[] = {
    {"a_transfer_is_one_whole_group", usual, {}, {}, R"(
        # opcode and address together
        W: 11 EE 08 00 00 00 08
        R: 1F
        # an opcode alone
        W: 11
        R: 1F
        # a byte more, a byte less
        W: 11 EE
        R: 79
        W: 08 00 00 00 08 00
        R: 1F
        W: 11 EE
        R: 79
        W: 08 00 00 00
        R: 1F
        # the command is over
        W: 08
        R: 1F
    )" GETS_ID},
    {"numbers_do_not_follow_their_count", usual, {}, {}, "W: 44 BB\nR: 79\nW: 00 00 00 00 00\nR: 1F" GETS_ID},
    {"numbers_are_as_many_as_was_said", usual, {}, {}, SENDS("44 BB") SENDS("00 01 01") "W: 00 00 00\nR: 1F" GETS_ID},
    {"a_data_group_is_as_long_as_it_says",
     usual,
     {},
     {},
     SENDS("31 CE") SENDS("08 00 00 00 08") "W: 03 01 02 03 04 05 02\nR: 1F" HOLDS("08 00 00 00 08", "FF FF FF FF")},
    {"between_groups_any_time_may_pass",
     usual,
     {},
     {},
     SENDS("11 EE") "wait 100000" SENDS("08 00 00 00 08") "wait 100000" SENDS("03 FC") "wait 100000\nR: FF FF FF FF"},
    {"lost_step", usual, {}, {}, SENDS("11 EE") "W: 00 FF\nR: 1F" SENDS("00 FF") "R: 15"},
    {"a_write_throws_away_what_was_not_read", usual, {}, {}, R"(
        W: 02 FD
        W: 01 FE
        R: 79
        R: 21 34 12
        R: 79
        R: FF
    )"},
    {"a_scan_changes_nothing", usual, {}, {}, R"(
        W: -
        W: 11 EE
        W: -
        R: 79
        W: -
    )" SENDS("08 00 00 00 08") SENDS("00 FF") "W: -\nR: FF"},
    {"reading_more_than_there_is", usual, {}, {}, R"(
        R: FF FF
        W: 02 FD
        R: 79 FF FF
        R: 04 03 47 70 05 07 FF
        R: 79
        R: FF
    )"},
    {"reading_less_loses_the_rest", usual, {}, {}, R"(
        W: 02 FD
        R: 79
        R: 04
        R: 79
        W: 02 FD
        R: 79
        R: 04 03 47 70 05 07
    )"},
    {"a_reset_waits_until_its_answer_was_read", usual, {}, {}, R"(
        W: D4 2B
        wait 1000
        R: 79
        W! 02 FD
        R! 1
        wait 19
        W! -
        wait 1
    )" GETS_ID},
    {"or_thrown_away", usual, {}, {}, "W: D4 2B\nwait 1000\nW! 02 FD\nwait 19\nW! 02 FD\nwait 1" GETS_ID},
    {"a_protecting_command_answers_twice_and_resets", usual, {}, {}, R"(
        W: 82 7D
        R: 79
        R: 79
        R! 1
        wait 20
        W: 11 EE
        R: 1F
    )"},
    {"gone_behind_go",
     usual,
     {},
     {},
     SENDS("21 DE") "W: 08 00 00 00 08\nR: 79"
                    R"(
        W! 02 FD
        R! 1
        wait 100000
        W! -
        button
        W! -
        wait 20
    )" GETS_ID},
    {"the_button_takes_everything_away", usual, {}, {}, "W: 02 FD\nbutton\nR! 1\nwait 20\nR: FF" GETS_ID},
};

const MessageCase atWork[] = {
    {"busy_is_76_and_no_write_is_acknowledged", usual, {}, slow, SENDS("44 BB") SENDS("00 00 00") R"(
        W: 00 00 00
        R: 76
        W! 02 FD
        W! -
        R: 76 FF FF
        wait 19
        R: 76
        wait 1
        R: 79
        R: FF
    )" GETS_ID},
    {"programming", usual, {}, {0, 2560 * millisecond}, SENDS("31 CE") SENDS("08 00 00 00 08") R"(
        W: 03 01 02 03 04 07
        R: 76
        wait 40
        R: 79
    )"},
    {"the_answer_that_is_there_before_the_work", usual, {}, slow, R"(
        W: 82 7D
        R: 79
        R: 76
        W! 02 FD
        wait 1000
        R: 79
        R! 1
        wait 20
        W: 02 FD
        R: 79
    )"},
};

const MessageCase faults[] = {
    {"rx_lost", usual, {"rx-lost@2"}, {}, "W: 02 FD\nR: 1F" GETS_ID},
    {"rx_lost_inside_a_group", usual, {"rx-lost@4"}, {}, SENDS("11 EE") "W: 08 00 00 00 08\nR: 1F" GETS_ID},
    {"rx_double", usual, {"rx-double@1"}, {}, "W: 02 FD\nR: 1F" GETS_ID},
    {"rx_damage", usual, {"rx-damage@2:01"}, {}, "W: 02 FD\nR: 1F" GETS_ID},
    {"rx_late", usual, {"rx-late@2:10"}, {}, "W: 02 FD\nR: 76\nwait 10\nR: 79\nR: 04 03 47 70 05 07\nR: 79"},
    {"tx_lost", usual, {"tx-lost@2"}, {}, SENDS("02 FD") "R: 03 47 70 05 07 FF\nR: 79"},
    {"tx_lost_answer", usual, {"tx-lost@1"}, {}, "W: 02 FD\nR: FF\nR: 04 03 47 70 05 07\nR: 79"},
    {"tx_double", usual, {"tx-double@3"}, {}, SENDS("02 FD") "R: 04 03 03 47 70 05\nR: 79"},
    {"tx_damage", usual, {"tx-damage@3:80"}, {}, SENDS("02 FD") "R: 04 83 47 70 05 07\nR: 79"},
    {"tx_late_answer", usual, {"tx-late@1:10"}, {}, "W: 02 FD\nR: 76\nwait 9\nR: 76\nwait 1\nR: 79\nR: 04"},
    {"what_is_busy_or_fill_is_not_counted",
     usual,
     {"tx-damage@2:01"},
     slow,
     "R: FF FF" SENDS("44 BB") "W: FF FF 00\nR: 76\nR: 76\nwait 20000\nR: 78"},
    {"nack", usual, {"nack@2"}, {}, GETS_ID "W: 02 FD\nR: 1F" GETS_ID},
    {"nack_behind_a_group_of_this_link",
     usual,
     {"nack@1:44:2"},
     {},
     SENDS("44 BB") SENDS("00 00 00") "W: 00 00 00\nR: 1F" GETS_ID},
    {"silence", usual, {"silence@1"}, {}, "W: 02 FD\nR! 1\nW! 02 FD\nwait 100000\nR! 1\nbutton\nwait 20" GETS_ID},
    {"powercut", usual, {"powercut@2"}, {}, SENDS("31 CE") SENDS("08 00 00 00 08") R"(
        W: 03 01 02 03 04 07
        R! 1
        wait 20
        R: FF
    )" HOLDS("08 00 00 00 08", "01 02 FF FF")},
};

MESSAGE_CASES(I2cTransfer, I2cRig, transfers);
MESSAGE_CASES(I2cStrictness, I2cRig, strictness);
MESSAGE_CASES(I2cAtWork, I2cRig, atWork);
MESSAGE_CASES(I2cFault, I2cRig, faults);

TEST(I2cBus, whatIsRefusedIsTold) {
    I2cRig rig(usual);
    EXPECT_EQ(rig.play("W: 11\nR: 1F" SENDS("11 EE") "W: 08 00\nR: 1F\nW: 11 EF\nR: 1F"), "");
    EXPECT_EQ(rig.told.str(), "refused: 1 bytes where an opcode and its complement belong\n"
                              "command: READ\n"
                              "refused: READ: 2 bytes where a group of 5 belongs\n"
                              "refused: an opcode with a wrong complement\n");
}

TEST(I2cBus, aLateReplyHoldsTheClock) {
    I2cRig rig(usual, {"tx-late@3:10"});
    const Nanoseconds begin = rig.now;
    EXPECT_EQ(rig.play(SENDS("02 FD") "R: 04 03 47 70 05 07"), "");
    EXPECT_EQ(rig.now, begin + 10 * millisecond);
}

TEST(I2cBus, unpluggedInPlaceOfAByte) {
    I2cRig host(usual, {"hangup@3"});
    EXPECT_EQ(host.play(SENDS("11 EE") "W: 08 00 00 00 08"), "");
    ASSERT_TRUE(host.protocol.hangup().has_value());
    EXPECT_FALSE(host.protocol.hangup()->replugMs.has_value());
    I2cRig chip(usual, {"tx-hangup@3:50"});
    EXPECT_EQ(chip.play(SENDS("02 FD") "R: 04 FF FF FF FF FF"), "");
    ASSERT_TRUE(chip.protocol.hangup().has_value());
    EXPECT_EQ(chip.protocol.hangup()->replugMs, 50U);
    chip.protocol.losePower(chip.now);
    EXPECT_FALSE(chip.protocol.hangup().has_value());
    EXPECT_EQ(chip.play("W! -\nwait 20" GETS_ID), "");
}

TEST(I2cBus, theAddressIsAcknowledgedToReadersOfAChipAtWork) {
    I2cRig rig(usual, {}, slow);
    EXPECT_EQ(rig.play(SENDS("44 BB") "W: FF FF 00"), "");
    EXPECT_TRUE(rig.protocol.acknowledges(true, rig.now));
    EXPECT_FALSE(rig.protocol.acknowledges(false, rig.now));
}

} // namespace
} // namespace sim
