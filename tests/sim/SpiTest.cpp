// The chip on an SPI bus: messages typed from the page, strictness, fetching in pieces, faults.

#include "tests/sim/MessageRig.h"

namespace sim {
namespace {

constexpr char usual[] = "ZV32F403A_1024K";
constexpr FlashTime slow{20 * millisecond, 2560 * microsecond};

#define SENDS(GROUP) "\nH: 5A " GROUP "\nF: 5A 79\n"
#define OPENS SENDS("7F")
#define GETS_ID SENDS("02 FD") "F: 5A 04 03 47 70 05 07 32 5A 79\n"
#define WRITES(ADDRESS) SENDS("31 CE") SENDS(ADDRESS) SENDS("03 01 02 03 04 07")
#define HOLDS(ADDRESS, REPLY) SENDS("11 EE") SENDS(ADDRESS) SENDS("03 FC") "F: 5A " REPLY "\n"

const MessageCase messages[] = {
    {"opening", usual, {}, {}, OPENS "H: 5A 7F\nF: 5A 1F\nH: 5A 7F\nF: 5A 1F"},
    {"get", usual, {}, {}, OPENS SENDS("00 FF") R"(
        F: 5A 15 21 00 01 02 11 21 31 44 63 73 82 92 5A AC B3 B7 D1 D2 D3 D4 E1 E2 87 5A 79
    )"},
    {"get_version", usual, {}, {}, OPENS SENDS("01 FE") "F: 5A 21 34 12 07 5A 79"},
    {"get_id", usual, {}, {}, OPENS GETS_ID},
    {"get_id_of_two_bytes", "ZV32F403_2_256K", {}, {}, OPENS SENDS("02 FD") "F: 5A 01 02 42 41 5A 79"},
    {"write_and_read",
     usual,
     {},
     {},
     OPENS WRITES("08 00 00 10 18") HOLDS("08 00 00 10 18", "01 02 03 04 04")
         HOLDS("08 00 00 14 1C", "FF FF FF FF 00")},
    {"a_reply_with_a_check_byte_of_its_own_has_no_other", usual, {}, {}, OPENS SENDS("D3 2C") "F: 5A 00 FF*6 00 00 00"},
    {"erase_as_on_usart",
     usual,
     {},
     {},
     OPENS WRITES("08 00 00 00 08") SENDS("44 BB") SENDS("00 00 00 00 00") HOLDS("08 00 00 00 08", "FF FF FF FF 00")},
    {"a_refusal", usual, {}, {}, OPENS "H: 5A 77 88\nF: 5A 1F" SENDS("11 EE") "H: 5A 08 00 00 00 09\nF: 5A 1F" GETS_ID},
    {"two_answers_in_one_fetch", usual, {}, {}, OPENS R"(
        H: 5A 02 FD
        F: 5A 79 5A 04 03 47 70 05 07 32 5A 79 00 00
    )"},
    {"one_answer_in_pieces", usual, {}, {}, OPENS R"(
        H: 5A 02 FD
        F: 5A
        F: 79
        F: 5A 04 03
        F: 47 70
        F: 05 07 32 5A
        F: 79 00
    )"},
    {"nothing_to_say", usual, {}, {}, "F: 00*8" OPENS "F: 00*8"},
};

const MessageCase strictness[] = {
    {"nothing_in_front_of_the_opening", usual, {}, {}, "H: 5A 02 FD\nF: 00*4" OPENS GETS_ID},
    {"the_opening_ends_a_command", usual, {}, {}, OPENS SENDS("11 EE") "H: 5A 7F\nF: 5A 1F" GETS_ID},
    {"a_message_is_one_whole_group", usual, {}, {}, OPENS R"(
        H: 5A 11 EE 08 00 00 00 08
        F: 5A 1F
        H: 5A
        F: 5A 1F
        H: 5A 11
        F: 5A 1F
        H: 5A 11 EE
        F: 5A 79
        H: 5A 08 00 00 00 08 00
        F: 5A 1F
        H: 5A 11 EE
        F: 5A 79
        H: 5A 08 00 00 00
        F: 5A 1F
        H: 5A 11 EE
        F: 5A 79
        H: 5A
        F: 5A 1F
    )" GETS_ID},
    {"other_messages_are_ignored", usual, {}, {}, OPENS SENDS("11 EE") R"(
        H: 11 EE
        H: FF 5A 7F
        F: 00 00
    )" SENDS("08 00 00 00 08")},
    {"what_follows_00_is_ignored", usual, {}, {}, OPENS SENDS("02 FD") R"(
        X: 00 5A 7F FF 11 EE 00 00 = 5A 04 03 47 70 05 07 32
        X: 00 5A 02 FD = 5A 79 00 00
        F: 00 00
    )"},
    {"a_message_throws_away_what_was_not_fetched", usual, {}, {}, OPENS R"(
        H: 5A 02 FD
        F: 5A 79 5A 04
        H: 5A 01 FE
        F: 5A 79 5A 21 34 12 07 5A 79 00
    )"},
    {"one_that_is_ignored_does_not", usual, {}, {}, OPENS "H: 5A 02 FD\nH: 11\nF: 5A 79 5A 04"},
    {"between_groups_any_time_may_pass",
     usual,
     {},
     {},
     OPENS SENDS("11 EE") "wait 100000" SENDS("08 00 00 00 08") "wait 100000" SENDS(
         "00 FF") "wait 100000\nF: 5A FF FF"},
    {"a_reset_waits_until_its_answer_was_fetched", usual, {}, {}, OPENS R"(
        H: 5A D4 2B
        wait 1000
        F: 5A
        wait 1000
        F: 79
        # nobody drives the line
        X: 5A 7F = FF FF
        wait 19
        X: 00 00 = FF FF
        wait 1
        H: 5A 02 FD
        F: 00 00
    )" OPENS GETS_ID},
    {"or_thrown_away", usual, {}, {}, OPENS "H: 5A D4 2B\nwait 1000\nH: 5A 7F\nX: 00 00 = FF FF\nwait 20" OPENS},
    {"gone_behind_go",
     usual,
     {},
     {},
     OPENS SENDS("21 DE") "H: 5A 08 00 00 00 08\nF: 5A 79"
                          R"(
        X: 5A 7F = FF FF
        wait 100000
        X: 00 = FF
        button
        wait 20
    )" OPENS GETS_ID},
    {"the_button_takes_everything_away", usual, {}, {}, OPENS "H: 5A 02 FD\nbutton\nwait 20\nF: 00 00" OPENS},
};

const MessageCase atWork[] = {
    {"sends_00_and_loses_messages", usual, {}, slow, OPENS SENDS("44 BB") R"(
        H: 5A 00 00 00 00 00
        F: 00 00 00
        H: 5A 7F
        wait 19
        F: 00
        wait 1
        F: 5A 79 00
    )" GETS_ID},
    {"the_answer_that_is_there_before_the_work", usual, {}, slow, OPENS R"(
        H: 5A 82 7D
        F: 5A 79 00 00
        H: 5A 7F
        wait 1000
        F: 5A 79
        X: 00 = FF
        wait 20
    )" OPENS},
};

const MessageCase faults[] = {
    {"rx_lost", usual, {"rx-lost@4"}, {}, OPENS "H: 5A 02 FD\nF: 5A 1F" GETS_ID},
    {"rx_double", usual, {"rx-double@4"}, {}, OPENS "H: 5A 02 FD\nF: 5A 1F" GETS_ID},
    {"rx_damage", usual, {"rx-damage@5:01"}, {}, OPENS "H: 5A 02 FD\nF: 5A 1F" GETS_ID},
    {"rx_damage_of_the_start", usual, {"rx-damage@3:01"}, {}, OPENS "H: 5A 02 FD\nF: 00 00" GETS_ID},
    {"rx_late", usual, {"rx-late@5:10"}, {}, OPENS "H: 5A 02 FD\nF: 00 00\nwait 10\nF: 5A 79 5A 04"},
    {"tx_lost", usual, {"tx-lost@4"}, {}, OPENS "H: 5A 02 FD\nF: 5A 5A 04 03 47 70 05 07 32 5A 79"},
    {"tx_double", usual, {"tx-double@6"}, {}, OPENS SENDS("02 FD") "F: 5A 04 04 03 47 70 05 07 32 5A 79"},
    {"tx_damage", usual, {"tx-damage@7:80"}, {}, OPENS SENDS("02 FD") "F: 5A 04 83 47 70 05 07 32 5A 79"},
    {"tx_late_is_later_as_a_whole",
     usual,
     {"tx-late@8:10"},
     {},
     OPENS SENDS("02 FD") "F: 00 00\nwait 9\nF: 00\nwait 1\nF: 5A 04 03 47 70 05 07 32 5A 79"},
    {"fetching_and_nothing_to_say_are_not_counted",
     usual,
     {"rx-damage@6:01", "tx-damage@3:20"},
     {},
     "F: 00 00" OPENS "F: 00*9\nX: 00 FF FF = 00 00 00\nH: 5A 02 FD\nF: 7A 79\nH: 5A 02 FD\nF: 5A 04"},
    {"nack",
     usual,
     {"nack@1:31:2"},
     {},
     OPENS SENDS("31 CE") SENDS("08 00 00 00 08") "H: 5A 03 01 02 03 04 07\nF: 5A 1F" GETS_ID},
    {"silence",
     usual,
     {"silence@1"},
     {},
     OPENS "H: 5A 02 FD\nF: 00*4\nH: 5A 7F\nwait 9999\nF: 00*4\nbutton\nwait 20" OPENS},
    {"powercut", usual, {"powercut@2"}, {}, OPENS SENDS("31 CE") SENDS("08 00 00 00 08") R"(
        H: 5A 03 01 02 03 04 07
        X: 00 00 = FF FF
        wait 20
        F: 00 00
    )" OPENS HOLDS("08 00 00 00 08", "01 02 FF FF 03")},
};

MESSAGE_CASES(SpiMessage, SpiRig, messages);
MESSAGE_CASES(SpiStrictness, SpiRig, strictness);
MESSAGE_CASES(SpiAtWork, SpiRig, atWork);
MESSAGE_CASES(SpiFault, SpiRig, faults);

TEST(SpiBus, whatIsIgnoredIsTold) {
    SpiRig rig(usual, {}, slow);
    EXPECT_EQ(rig.play("H: 5A 02 FD\nH: 11" OPENS SENDS("44 BB") "H: 5A FF FF 00\nH: 5A 7F\n"), "");
    EXPECT_EQ(rig.told.str(), "ignored: a message in front of the first 7F\n"
                              "ignored: a message that begins with 11\n"
                              "command: ERASE_EXT\n"
                              "ignored: a message to a chip at work\n");
}

TEST(SpiBus, whatIsRefusedIsTold) {
    SpiRig rig(usual);
    EXPECT_EQ(
        rig.play(OPENS "H: 5A 11\nF: 5A 1F" SENDS("11 EE") "H: 5A 08 00\nF: 5A 1F" SENDS("11 EE") "H: 5A 7F\nF: 5A 1F"),
        "");
    EXPECT_EQ(rig.told.str(), "refused: 1 bytes where an opcode and its complement belong\n"
                              "command: READ\n"
                              "refused: READ: 2 bytes where a group of 5 belongs\n"
                              "command: READ\n"
                              "refused: READ: ended by a new opening\n");
}

TEST(SpiBus, unpluggedInPlaceOfAByte) {
    SpiRig host(usual, {"hangup@4"});
    EXPECT_EQ(host.play(OPENS "H: 5A 02 FD"), "");
    ASSERT_TRUE(host.protocol.hangup().has_value());
    EXPECT_FALSE(host.protocol.hangup()->replugMs.has_value());
    SpiRig chip(usual, {"tx-hangup@6:50"});
    EXPECT_EQ(chip.play(OPENS SENDS("02 FD") "F: 5A"), "");
    ASSERT_TRUE(chip.protocol.hangup().has_value());
    EXPECT_EQ(chip.protocol.hangup()->replugMs, 50U);
    chip.protocol.losePower(chip.now);
    EXPECT_FALSE(chip.protocol.hangup().has_value());
    EXPECT_EQ(chip.play("wait 20" OPENS GETS_ID), "");
}

TEST(SpiBus, anAnswerComesWhenItIsReadyInTheMiddleOfAFetch) {
    SpiRig rig(usual, {}, slow);
    EXPECT_EQ(rig.play(OPENS SENDS("44 BB") "H: 5A 00 00 00 00 00"), "");
    rig.protocol.select(rig.now);
    Bytes in;
    for (int ms = 18; ms < 23; ++ms)
        in.push_back(rig.protocol.shift(0, rig.now + ms * millisecond));
    EXPECT_EQ(showBytes(in), "00 00 5A 79 00");
}

} // namespace
} // namespace sim
