// The sLib area.

#include "tests/sim/Vectors.h"

namespace {

// Password 12345678, sectors 2 to 5, data from 4: 08 ^ 02 ^ 04 ^ 05 = 0B.
#define ENABLE_SLIB "\nH: D1 2E\nC: 79\nH: 12 34 56 78 00 02 00 04 00 05 0B\nC: 79\n"

const sim::Vector slib[] = {
    {"status_without_an_area", "ZV32F403A_1024K", SYNC R"(
        H: D3 2C
        C: 79 00 FF FF FF FF FF FF 00
    )"},
    {"hides_its_code_and_can_be_changed_by_nobody", "ZV32F403A_1024K",
     SYNC WRITE_WORD("08 00 10 00 18") WRITE_WORD("08 00 20 00 28") ENABLE_SLIB AFTER_RESET R"(
        H: D3 2C
        C: 79 01 00 02 00 04 00 05 02
        # an area is enabled already
        H: D1 2E
        C: 79
        H: 12 34 56 78 00 08 00 09 00 0A 03
        C: 1F
    )" READS("08 00 10 00 18", "FF FF FF FF") READS("08 00 20 00 28", "01 02 03 04") R"(
        H: 31 CE
        C: 79
        H: 08 00 28 00 20
        C: 79
        H: 03 01 02 03 04 07
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 00 02 02
        C: 1F
        H: 44 BB
        C: 79
        H: 00 00 00 05 05
        C: 1F
        H: 44 BB
        C: 79
        H: 00 01 00 01 00 06 06
        C: 79
        # a wrong password changes nothing
        H: D2 2D
        C: 79
        H: 12 34 56 79 09
        C: 1F
        H: D3 2C
        C: 79 01 00 02 00 04 00 05 02
        # the right one erases the area and disables it
        H: D2 2D
        C: 79
        H: 12 34 56 78 08
        C: 79
    )" AFTER_RESET R"(
        H: D3 2C
        C: 79 00 FF FF FF FF FF FF 00
    )" READS("08 00 10 00 18", "FF FF FF FF") READS("08 00 20 00 28", "FF FF FF FF") WRITE_WORD("08 00 10 00 18")},
    {"without_a_data_part_all_is_hidden", "ZV32F403A_1024K", SYNC WRITE_WORD("08 00 20 00 28") R"(
        H: D1 2E
        C: 79
        H: 12 34 56 78 00 02 FF FF 00 05 0F
        C: 79
    )" AFTER_RESET READS("08 00 20 00 28", "FF FF FF FF") R"(
        H: D3 2C
        C: 79 01 00 02 FF FF 00 05 06
    )"},
    {"refusals", "ZV32F403A_1024K", SYNC R"(
        # passwords 0 and FFFFFFFF
        H: D1 2E
        C: 79
        H: 00 00 00 00 00 02 00 04 00 05 03
        C: 1F
        H: D1 2E
        C: 79
        H: FF FF FF FF 00 02 00 04 00 05 03
        C: 1F
        # start behind end
        H: D1 2E
        C: 79
        H: 12 34 56 78 00 06 00 06 00 05 0D
        C: 1F
        # data start before start, and behind end
        H: D1 2E
        C: 79
        H: 12 34 56 78 00 02 00 01 00 05 0E
        C: 1F
        H: D1 2E
        C: 79
        H: 12 34 56 78 00 02 00 06 00 05 09
        C: 1F
        # end behind the last sector, 1FF
        H: D1 2E
        C: 79
        H: 12 34 56 78 00 02 00 04 02 00 0C
        C: 1F
        # checksum
        H: D1 2E
        C: 79
        H: 12 34 56 78 00 02 00 04 00 05 0A
        C: 1F
        # nothing to disable
        H: D2 2D
        C: 79
        H: 12 34 56 78 08
        C: 1F
        H: D3 2C
        C: 79 00 FF FF FF FF FF FF 00
    )"},
    {"a_bank_erase_takes_the_content_and_leaves_the_area", "ZV32F403A_1024K",
     SYNC WRITE_WORD("08 00 20 00 28") ENABLE_SLIB AFTER_RESET R"(
        H: 44 BB
        C: 79
        H: FF FE 01
        C: 79
    )" READS("08 00 20 00 28", "FF FF FF FF") R"(
        H: D3 2C
        C: 79 01 00 02 00 04 00 05 02
    )"},
    {"unprotect_leaves_no_area", "ZV32F403A_1024K", SYNC ENABLE_SLIB AFTER_RESET R"(
        H: 92 6D
        C: 79 79
    )" AFTER_RESET R"(
        H: D3 2C
        C: 79 00 FF FF FF FF FF FF 00
    )"},
};
WIRE_VECTORS(Slib, slib);

} // namespace
