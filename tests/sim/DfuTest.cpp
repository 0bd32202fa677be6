// A chip on USB, in literal setup packets and bytes.

#include <gtest/gtest.h>

#include "tests/sim/UsbRig.h"

namespace {

using sim::UsbRig;

// A block whose GETSTATUS finds it done at once, and the words after it.
#define GETSTATUS "\nH: A1 03 00 00 00 00 06 00\n"
#define DONE "\nC: done" GETSTATUS "C: 00 00 00 00 04 00" GETSTATUS "C: 00 00 00 00 05 00\n"
#define REFUSED(STATUS) "\nC: done" GETSTATUS "C: 00 00 00 00 04 00" GETSTATUS "C: " STATUS " 00 00 00 0A 00\n"
#define ABORT "\nH: 21 06 00 00 00 00 00 00\nC: done\n"
#define CLRSTATUS "\nH: 21 04 00 00 00 00 00 00\nC: done\n"
#define CONFIGURE "\nH: 00 09 01 00 00 00 00 00\nC: done\n"
#define ERASE_ALL "\nH: 21 01 00 00 00 00 01 00 | 41" DONE
#define POINTER(BYTES) "\nH: 21 01 00 00 00 00 05 00 | 21 " BYTES DONE
#define WORD(BYTES) "\nH: 21 01 02 00 00 00 04 00 | " BYTES
#define READS(LENGTH, BYTES) "\nH: A1 02 02 00 00 00 " LENGTH " 00\nC: " BYTES "\n"

struct Vector {
    const char *name;
    const char *chip;
    const char *conversation;
};

void PrintTo(const Vector &vector, std::ostream *out) {
    *out << vector.name;
}

class Dfu : public ::testing::TestWithParam<Vector> {};

TEST_P(Dfu, goesByteForByte) {
    UsbRig rig(GetParam().chip);
    EXPECT_EQ(rig.play(GetParam().conversation), "") << rig.told.str();
}

const Vector vectors[] = {
    {"descriptors", "ZV32F403A_1024K", R"(
        H: 80 06 00 01 00 00 12 00
        C: 12 01 00 02 00 00 00 40 09 12 01 00 10 02 00 01 02 01
        H: 80 06 00 02 00 00 FF 00
        C: 09 02 1B 00 01 01 00 80 32 09 04 00 00 00 FE 01 02 03 09 21 03 00 00 00 08 1A 01
        # @Internal Flash  /0x08000000/512*002Kg
        H: 80 06 03 03 09 04 FF 00
        C: 4E 03 40 00 49 00 6E 00 74 00 65 00 72 00 6E 00 61 00 6C 00 20 00 46 00 6C 00 61 00 73 00 68 00 20 00 20 00 2F 00 30 00 78 00 30 00 38 00 30 00 30 00 30 00 30 00 30 00 30 00 2F 00 35 00 31 00 32 00 2A 00 30 00 30 00 32 00 4B 00 67 00
    )"},
    {"a_block_is_a_sector_of_1024_bytes", "ZV32F421_64K", R"(
        H: 80 06 00 02 00 00 FF 00
        C: 09 02 1B 00 01 01 00 80 32 09 04 00 00 00 FE 01 02 03 09 21 03 00 00 00 04 1A 01
        H: 21 01 03 00 00 00 00 04 | 5A*1024)" DONE ABORT R"(
        H: A1 02 02 00 00 00 02 00
        C: FF FF)" ABORT R"(
        H: A1 02 02 00 00 00 01 04
        C: stall)"},
    {"a_block_is_a_sector_of_4096_bytes", "ZV32F435_4032K", R"(
        H: 80 06 00 02 00 00 FF 00
        C: 09 02 1B 00 01 01 00 80 32 09 04 00 00 00 FE 01 02 03 09 21 03 00 00 00 10 1A 01
        H: 21 01 03 00 00 00 00 10 | 5A*4096)" DONE ABORT R"(
        H: A1 02 02 00 00 00 02 00
        C: FF FF)" ABORT},
    {"erase_a_sector_write_and_read_back", "ZV32F403A_1024K",
     R"(
        H: 21 01 00 00 00 00 05 00 | 41 00 08 00 08)" DONE POINTER("00 08 00 08") WORD("11 22 33 44")
         DONE ABORT READS("06", "11 22 33 44 FF FF") ABORT},
    {"the_pointer_is_the_start_of_flash_behind_a_reset", "ZV32F403A_1024K",
     WORD("01 02 03 04") DONE POINTER("00 00 00 20") ABORT READS("04", "00 00 00 00") R"(
        button
        away
        wait 20
        here 2)" CONFIGURE READS("04", "01 02 03 04")},
    {"blocks_follow_each_other", "ZV32F403A_1024K", R"(
        H: 21 01 02 00 00 00 00 08 | 5A*2048)" DONE R"(
        H: 21 01 03 00 00 00 04 00 | 01 02 03 04)" DONE ABORT R"(
        H: A1 02 03 00 00 00 05 00
        C: 01 02 03 04 FF
        H: A1 02 02 00 00 00 00 08
        C: 5A*2048)" ABORT},
    {"erase_everything", "ZV32F403A_1024K", WORD("01 02 03 04") DONE ERASE_ALL ABORT READS("04", "FF FF FF FF")},
    {"the_list_of_block_0", "ZV32F403A_1024K", R"(
        H: A1 02 00 00 00 00 00 08
        C: 00 21 41 92 01 02 44 63 73 82 5A AC B3 B7 D1 D2 D3 D4 E1 E2
        # A short block: dfuIDLE.
        H: A1 05 00 00 00 00 01 00
        C: 02)"},
    {"the_list_in_pieces_of_its_own_length", "ZV32F403A_1024K", R"(
        H: A1 02 00 00 00 00 04 00
        C: 00 21 41 92
        # A whole one: dfuUPLOAD-IDLE.
        H: A1 05 00 00 00 00 01 00
        C: 09)" ABORT},
    {"identifier", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 01 00 | 02)" DONE ABORT R"(
        H: A1 02 01 00 00 00 00 08
        C: 04 03 47 70 05 07)"},
    {"a_reply_is_fetched_once", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 01 00 | 01)" DONE ABORT R"(
        H: A1 02 01 00 00 00 00 08
        C: 21 34 12
        H: A1 02 01 00 00 00 00 08
        C: stall
        H: A1 03 00 00 00 00 06 00
        C: 0F 00 00 00 0A 00)" CLRSTATUS},
    {"a_reply_is_fetched_from_dfuIDLE", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 01 00 | 02)" DONE R"(
        H: A1 02 01 00 00 00 00 08
        C: stall)"},
    {"the_next_command_takes_the_reply_away", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 01 00 | 02)" DONE POINTER("00 00 00 08") ABORT R"(
        H: A1 02 01 00 00 00 00 08
        C: stall)"},
    {"checksum_of_sectors_all_groups_in_one_message", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 09 00 | AC 08 00 00 00 08 00 01 01)" DONE ABORT R"(
        H: A1 02 01 00 00 00 00 08
        C: 3F 55 D1 7F C4)"},
    {"a_command_that_is_too_short", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 06 00 | AC 08 00 00 00 08)" REFUSED("01") CLRSTATUS},
    {"a_command_that_is_too_long_is_not_carried_out", "ZV32F403A_1024K", WORD("01 02 03 04") DONE R"(
        H: 21 01 00 00 00 00 05 00 | 44 FF FF 00 00)" REFUSED("01") CLRSTATUS R"(
        H: 21 01 00 00 00 00 02 00 | D4 00)" REFUSED("01") CLRSTATUS R"(
        wait 100
        here 1)" READS("04", "01 02 03 04") ABORT},
    {"erase_ext_by_number_and_by_block", "ZV32F403A_1024K", WORD("01 02 03 04") DONE R"(
        H: 21 01 00 00 00 00 06 00 | 44 00 00 00 01 01)" DONE ABORT READS("04", "01 02 03 04") ABORT R"(
        H: 21 01 00 00 00 00 09 00 | 44 FF FB 04 08 00 00 00 08)" DONE ABORT READS("04", "FF FF FF FF") ABORT},
    {"erase_ext_with_a_wrong_check_byte", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 09 00 | 44 FF FB 05 08 00 00 00 09)" REFUSED("01") CLRSTATUS},
    {"an_unknown_command", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 01 00 | 77)" REFUSED("0B") CLRSTATUS},
    {"reading_and_writing_have_no_opcode", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 06 00 | 31 08 00 00 00 08)" REFUSED("0B") CLRSTATUS R"(
        H: 21 01 00 00 00 00 01 00 | 11)" REFUSED("0B") CLRSTATUS},
    {"a_pointer_of_the_wrong_length", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 04 00 | 21 00 00 08)" REFUSED("01") CLRSTATUS},
    {"writing_where_there_is_no_memory", "ZV32F403A_1024K",
     POINTER("00 00 00 30") WORD("01 02 03 04") REFUSED("03") CLRSTATUS},
    {"writing_the_unique_identifier", "ZV32F403A_1024K",
     POINTER("E8 F7 FF 1F") WORD("01 02 03 04") REFUSED("03") CLRSTATUS},
    {"writing_at_an_odd_address", "ZV32F403A_1024K",
     POINTER("02 00 00 08") WORD("01 02 03 04") REFUSED("03") CLRSTATUS},
    {"writing_an_odd_length", "ZV32F403A_1024K", R"(
        H: 21 01 02 00 00 00 03 00 | 01 02 03)" REFUSED("03") CLRSTATUS READS("03", "FF FF FF") ABORT},
    {"writing_a_cell_that_is_not_erased", "ZV32F403A_1024K",
     WORD("01 02 03 04") DONE WORD("FF FF FF 00") REFUSED("05") CLRSTATUS READS("04", "01 02 03 04") ABORT},
    {"writing_a_protected_sector", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 04 00 | 63 00 00 00)" DONE R"(
        wait 1
        away
        wait 20
        here 2)" CONFIGURE WORD("01 02 03 04") REFUSED("03") CLRSTATUS R"(
        H: 21 01 00 00 00 00 05 00 | 41 00 00 00 08)" REFUSED("04") CLRSTATUS R"(
        H: 21 01 00 00 00 00 01 00 | 41)" REFUSED("04")},
    {"erasing_where_there_is_no_sector", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 05 00 | 41 00 00 00 20)" REFUSED("04") CLRSTATUS},
    {"reading_where_there_is_no_memory", "ZV32F403A_1024K", POINTER("FE FF 0F 08") ABORT R"(
        H: A1 02 02 00 00 00 04 00
        C: stall
        H: A1 03 00 00 00 00 06 00
        C: 08 00 00 00 0A 00)" CLRSTATUS READS("02", "FF FF") ABORT},
    {"no_block_lies_beyond_the_last_address", "ZV32F435_4032K", POINTER("00 F0 FF FF") ABORT R"(
        # FFFFF000 and 08001 blocks of 4096 bytes more would come to 08000000 again.
        H: A1 02 03 80 00 00 04 00
        C: stall
        H: A1 03 00 00 00 00 06 00
        C: 08 00 00 00 0A 00)"},
    {"protected_chip_refuses_behind_the_opcode", "ZV32F403A_1024K", WORD("01 02 03 04") DONE R"(
        H: 21 01 00 00 00 00 01 00 | 82)" DONE R"(
        wait 1
        away
        wait 20
        here 2)" CONFIGURE R"(
        H: A1 02 02 00 00 00 04 00
        C: stall
        H: A1 03 00 00 00 00 06 00
        C: 0B 00 00 00 0A 00)" CLRSTATUS WORD("01 02 03 04") REFUSED("0B") CLRSTATUS R"(
        H: 21 01 00 00 00 00 01 00 | 41)" REFUSED("0B") CLRSTATUS R"(
        H: 21 01 02 00 00 00 00 00
        C: done
        H: A1 03 00 00 00 00 06 00
        C: 0B 00 00 00 0A 00)" CLRSTATUS R"(
        H: 21 01 00 00 00 00 01 00 | 92)" DONE R"(
        wait 1
        away
        wait 20
        here 3)" CONFIGURE READS("04", "FF FF FF FF") ABORT},
    {"user_system_data", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 09 00 | E1 1F FF F8 00 18 00 03 03)" DONE ABORT R"(
        H: A1 02 01 00 00 00 00 08
        C: A5 FF FF FF 5A)"},
    {"leave_to_flash", "ZV32F403A_1024K", R"(
        H: 21 01 02 00 00 00 00 00
        C: done
        H: A1 05 00 00 00 00 01 00
        C: 06
        H: A1 03 00 00 00 00 06 00
        C: 00 00 00 00 07 00
        here 1
        H: A1 03 00 00 00 00 06 00
        C: silent
        wait 1
        away
        wait 100000
        away
        button
        wait 20
        here 2)"},
    {"leave_to_nowhere", "ZV32F403A_1024K", POINTER("00 F8 FF 1F") R"(
        H: 21 01 00 00 00 00 00 00
        C: done
        H: A1 03 00 00 00 00 06 00
        C: 08 00 00 00 0A 00)" CLRSTATUS},
    {"reset_goes_away_behind_the_answer", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 01 00 | D4
        C: done
        H: A1 03 00 00 00 00 06 00
        C: 00 00 00 00 04 00
        wait 10
        here 1
        H: A1 03 00 00 00 00 06 00
        C: 00 00 00 00 05 00
        wait 1
        away
        wait 19
        away
        wait 1
        here 2)"},
    {"reset_of_a_host_that_does_not_ask", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 01 00 | D4
        C: done
        H: A1 03 00 00 00 00 06 00
        C: 00 00 00 00 04 00
        wait 49
        here 1
        wait 1
        away
        wait 20
        here 2)" CONFIGURE R"(
        H: A1 05 00 00 00 00 01 00
        C: 02)"},
    {"a_command_that_nobody_asks_about_is_not_carried_out", "ZV32F403A_1024K", R"(
        H: 21 01 00 00 00 00 01 00 | D4
        C: done
        wait 1000
        here 1
        H: A1 05 00 00 00 00 01 00
        C: 03
        # What is not GETSTATUS or GETSTATE drops it.
        H: 21 06 00 00 00 00 00 00
        C: stall)" CLRSTATUS "wait 1000\nhere 1"},
    {"before_the_configuration_is_chosen_nothing_is_answered_but_standard_requests", "ZV32F403A_1024K", R"(
        H: 00 09 00 00 00 00 00 00
        C: done
        H: A1 05 00 00 00 00 01 00
        C: stall)" CONFIGURE R"(
        H: A1 05 00 00 00 00 01 00
        C: 0A)"},
    {"smallest_chip", "ZV32F415_72K", R"(
        # @Internal Flash  /0x08000000/072*001Kg
        H: 80 06 03 03 09 04 FF 00
        C: 4E 03 40 00 49 00 6E 00 74 00 65 00 72 00 6E 00 61 00 6C 00 20 00 46 00 6C 00 61 00 73 00 68 00 20 00 20 00 2F 00 30 00 78 00 30 00 38 00 30 00 30 00 30 00 30 00 30 00 30 00 2F 00 30 00 37 00 32 00 2A 00 30 00 30 00 31 00 4B 00 67 00
    )"},
};

INSTANTIATE_TEST_SUITE_P(Wire, Dfu, ::testing::ValuesIn(vectors),
                         [](const ::testing::TestParamInfo<Vector> &vector) { return vector.param.name; });

} // namespace
