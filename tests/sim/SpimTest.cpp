// The SPI flash behind the chip.

#include "tests/sim/Vectors.h"

namespace {

// The rig's board carries 1 MB: 00100000.
#define ENABLE_SPIM "\nH: B3 4C\nC: 79\nH: 90 00 10 00 00 00 00 00 00 80\nC: 79\n"

const sim::Vector spim[] = {
    {"off_until_enabled_and_behind_a_reset", "ZV32F403A_1024K",
     SYNC ENABLE_SPIM WRITE_WORD("08 40 00 00 48") READS("08 40 00 00 48", "01 02 03 04") R"(
        H: D4 2B
        C: 79
    )" AFTER_RESET R"(
        H: 11 EE
        C: 79
        H: 08 40 00 00 48
        C: 1F
    )" ENABLE_SPIM READS("08 40 00 00 48", "01 02 03 04")},
    {"the_other_type_with_a_flash_address", "ZV32F403A_1024K", SYNC R"(
        H: B3 4C
        C: 79
        H: 91 00 00 20 00 00 00 10 00 A1
        C: 79
    )" WRITE_WORD("08 40 10 00 58") R"(
        # enabled are 8 KB
        H: 11 EE
        C: 79
        H: 08 40 20 00 68
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 80 01 81
        C: 79
        H: 44 BB
        C: 79
        H: 00 00 80 02 82
        C: 1F
    )"},
    {"refusals", "ZV32F403A_1024K", SYNC R"(
        # type
        H: B3 4C
        C: 79
        H: 92 00 10 00 00 00 00 00 00 82
        C: 1F
        # one byte more than there is
        H: B3 4C
        C: 79
        H: 90 00 10 00 01 00 00 00 00 81
        C: 1F
        # checksum
        H: B3 4C
        C: 79
        H: 90 00 10 00 00 00 00 00 00 81
        C: 1F
        H: 11 EE
        C: 79
        H: 08 40 00 00 48
        C: 1F
    )"},
    {"size_0_is_all_that_there_is", "ZV32F403A_1024K", SYNC R"(
        H: B3 4C
        C: 79
        H: 90 00 00 00 00 00 00 00 00 90
        C: 79
        # the last four bytes
        H: 11 EE
        C: 79
        H: 08 4F FF FC 44
        C: 79
        H: 03 FC
        C: 79 FF FF FF FF
    )"},
    {"remap", "ZV32F403A_1024K", SYNC R"(
        H: B7 48
        C: 79
        H: 01 FE
        C: 79
        H: B7 48
        C: 79
        H: 00 FF
        C: 79
        H: B7 48
        C: 79
        H: 02 FD
        C: 1F
        H: B7 48
        C: 79
        H: 01 FF
        C: 1F
    )"},
    {"sectors_rules_and_bank_3", "ZV32F403A_1024K",
     SYNC ENABLE_SPIM WRITE_WORD("08 40 00 00 48") WRITE_WORD("08 40 10 00 58") R"(
        # a written cell refuses, and so does an odd address
        H: 31 CE
        C: 79
        H: 08 40 00 00 48
        C: 79
        H: 03 01 02 03 04 07
        C: 1F
        H: 31 CE
        C: 79
        H: 08 40 00 02 4A
        C: 1F
        # sector 8001 begins at 4096
        H: 44 BB
        C: 79
        H: 00 00 80 01 81
        C: 79
    )" READS("08 40 00 00 48", "01 02 03 04") READS("08 40 10 00 58", "FF FF FF FF") R"(
        # everything leaves SPIM alone
        H: 44 BB
        C: 79
        H: FF FF 00
        C: 79
    )" READS("08 40 00 00 48", "01 02 03 04") R"(
        H: 44 BB
        C: 79
        H: FF FC 03
        C: 79
    )" READS("08 40 00 00 48", "FF FF FF FF") R"(
        H: AC 53
        C: 79
        H: 08 40 10 00 58
        C: 79
        H: 00 01 01
        C: 79 F1 54 67 0A C8
        # code can run there
        H: 21 DE
        C: 79
        H: 08 40 00 00 48
        C: 79
        H: 7F
        C: -
    )"},
    {"group_31_protects_spim", "ZV32F403A_1024K", SYNC R"(
        H: 63 9C
        C: 79
        H: 00 1F 1F
        C: 79
    )" AFTER_RESET ENABLE_SPIM R"(
        H: 31 CE
        C: 79
        H: 08 40 00 00 48
        C: 79
        H: 03 01 02 03 04 07
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 80 00 80
        C: 1F
        H: 44 BB
        C: 79
        H: FF FC 03
        C: 1F
    )"},
    {"wide_groups_leave_spim_alone", "ZV32F437_4032K", SYNC R"(
        H: 63 9C
        C: 79
        H: 00 1F 1F
        C: 79
    )" AFTER_RESET ENABLE_SPIM WRITE_WORD("08 40 00 00 48")},
    {"blocks_of_64_kb", "ZV32F437_4032K",
     SYNC ENABLE_SPIM WRITE_WORD("08 00 00 00 08") WRITE_WORD("08 00 FF FC 0B") WRITE_WORD("08 01 00 00 09")
         WRITE_WORD("08 3E FF FC 35") WRITE_WORD("08 41 00 00 49") R"(
        H: 44 BB
        C: 79
        H: FF FB 04
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 44 BB
        C: 79
        H: FF FB 04
        C: 79
        H: 08 3E 00 00 36
        C: 79
        H: 44 BB
        C: 79
        H: FF FB 04
        C: 79
        H: 08 41 00 00 49
        C: 79
    )" READS("08 00 00 00 08", "FF FF FF FF") READS("08 00 FF FC 0B", "FF FF FF FF")
             READS("08 01 00 00 09", "01 02 03 04") READS("08 3E FF FC 35", "FF FF FF FF")
                 READS("08 41 00 00 49", "FF FF FF FF") R"(
        # not a block, and none behind the end
        H: 44 BB
        C: 79
        H: FF FB 04
        C: 79
        H: 08 00 10 00 18
        C: 1F
        H: 44 BB
        C: 79
        H: FF FB 04
        C: 79
        H: 08 3F 00 00 37
        C: 1F
    )"},
};
WIRE_VECTORS(Spim, spim);

TEST(SpimSectors, areErasedByAddressToo) {
    sim::Rig rig("ZV32F403A_1024K");
    ASSERT_EQ(rig.play(SYNC ENABLE_SPIM WRITE_WORD("08 40 00 00 48") WRITE_WORD("08 40 10 00 58")
                           WRITE_WORD("08 40 20 00 68")),
              "");
    ASSERT_TRUE(rig.chip.eraseSectorAt(0x08401FFF).done());
    EXPECT_EQ(rig.play(READS("08 40 00 00 48", "01 02 03 04") READS("08 40 10 00 58", "FF FF FF FF")
                           READS("08 40 20 00 68", "01 02 03 04")),
              "");
}

} // namespace
