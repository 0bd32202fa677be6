// ERASE and ERASE_EXT.

#include "tests/sim/Vectors.h"

namespace {

const sim::Vector erasing[] = {
    {"one_sector_by_two_byte_number", "ZV32F403A_1024K",
     SYNC WRITE_WORD("08 00 00 00 08") WRITE_WORD("08 00 08 00 00") WRITE_WORD("08 00 10 00 18") R"(
        H: 44 BB
        C: 79
        H: 00 00 00 01 01
        C: 79
    )" READS("08 00 00 00 08", "01 02 03 04") READS("08 00 08 00 00", "FF FF FF FF")
         READS("08 00 10 00 18", "01 02 03 04")},
    {"several_sectors", "ZV32F403A_1024K",
     SYNC WRITE_WORD("08 00 00 00 08") WRITE_WORD("08 00 08 00 00") WRITE_WORD("08 00 10 00 18") R"(
        H: 44 BB
        C: 79
        H: 00 01 00 00 00 02 03
        C: 79
    )" READS("08 00 00 00 08", "FF FF FF FF") READS("08 00 08 00 00", "01 02 03 04")
         READS("08 00 10 00 18", "FF FF FF FF")},
    {"a_number_out_of_range_refuses_all", "ZV32F403A_1024K", SYNC WRITE_WORD("08 00 00 00 08") R"(
        # 512 sectors: 0200 is none
        H: 44 BB
        C: 79
        H: 00 01 00 00 02 00 03
        C: 1F
        # SPIM is not enabled
        H: 44 BB
        C: 79
        H: 00 00 80 00 80
        C: 1F
        # wrong checksum
        H: 44 BB
        C: 79
        H: 00 00 00 00 01
        C: 1F
    )" READS("08 00 00 00 08", "01 02 03 04")},
    {"everything", "ZV32F403A_1024K", SYNC WRITE_WORD("08 00 00 00 08") WRITE_WORD("08 08 00 00 00") R"(
        H: 44 BB
        C: 79
        H: FF FF 00
        C: 79
    )" READS("08 00 00 00 08", "FF FF FF FF") READS("08 08 00 00 00", "FF FF FF FF")},
    {"bank_1", "ZV32F403A_1024K", SYNC WRITE_WORD("08 00 00 00 08") WRITE_WORD("08 08 00 00 00") R"(
        H: 44 BB
        C: 79
        H: FF FE 01
        C: 79
    )" READS("08 00 00 00 08", "FF FF FF FF") READS("08 08 00 00 00", "01 02 03 04")},
    {"bank_2", "ZV32F403A_1024K", SYNC WRITE_WORD("08 00 00 00 08") WRITE_WORD("08 08 00 00 00") R"(
        H: 44 BB
        C: 79
        H: FF FD 02
        C: 79
    )" READS("08 00 00 00 08", "01 02 03 04") READS("08 08 00 00 00", "FF FF FF FF")},
    {"bank_2_of_more_than_1_mb_begins_there", "ZV32F435_1984K",
     SYNC WRITE_WORD("08 08 00 00 00") WRITE_WORD("08 0F FF FC 04") WRITE_WORD("08 10 00 00 18") R"(
        H: 44 BB
        C: 79
        H: FF FD 02
        C: 79
    )" READS("08 08 00 00 00", "01 02 03 04") READS("08 0F FF FC 04", "01 02 03 04")
         READS("08 10 00 00 18", "FF FF FF FF")},
    {"bank_2_of_a_large_flash_begins_at_2_mb", "ZV32F437_4032K",
     SYNC WRITE_WORD("08 08 00 00 00") WRITE_WORD("08 1F FF FC 14") WRITE_WORD("08 20 00 00 28") R"(
        H: 44 BB
        C: 79
        H: FF FD 02
        C: 79
    )" READS("08 08 00 00 00", "01 02 03 04") READS("08 1F FF FC 14", "01 02 03 04")
         READS("08 20 00 00 28", "FF FF FF FF")},
    {"no_such_bank", "ZV32F407_512K", SYNC R"(
        H: 44 BB
        C: 79
        H: FF FD 02
        C: 1F
        H: 44 BB
        C: 79
        H: FF FC 03
        C: 1F
        H: 44 BB
        C: 79
        H: FF FF 01
        C: 1F
    )"},
    {"one_byte_numbers", "ZV32F403_2_256K",
     SYNC WRITE_WORD("08 00 00 00 08") WRITE_WORD("08 00 08 00 00") WRITE_WORD("08 00 10 00 18") R"(
        H: 43 BC
        C: 79
        H: 01 00 01 00
        C: 79
    )" READS("08 00 00 00 08", "FF FF FF FF") READS("08 00 08 00 00", "FF FF FF FF")
         READS("08 00 10 00 18", "01 02 03 04")},
    {"one_byte_everything", "ZV32F403_2_256K", SYNC WRITE_WORD("08 00 00 00 08") R"(
        H: 43 BC
        C: 79
        H: FF 01
        C: 1F
    )" READS("08 00 00 00 08", "01 02 03 04") R"(
        H: 43 BC
        C: 79
        H: FF 00
        C: 79
    )" READS("08 00 00 00 08", "FF FF FF FF")},
    {"one_byte_number_out_of_range", "ZV32F403_2_256K", SYNC R"(
        H: 43 BC
        C: 79
        H: 00 80 80
        C: 1F
        H: 43 BC
        C: 79
        H: 00 7F 7F
        C: 79
        H: 43 BC
        C: 79
        H: 00 01 00
        C: 1F
    )"},
    {"sectors_of_1024_bytes", "ZV32F421_64K", SYNC WRITE_WORD("08 00 04 00 0C") WRITE_WORD("08 00 08 00 00") R"(
        H: 44 BB
        C: 79
        H: 00 00 00 01 01
        C: 79
    )" READS("08 00 04 00 0C", "FF FF FF FF") READS("08 00 08 00 00", "01 02 03 04")},
};
WIRE_VECTORS(Erase, erasing);

} // namespace
