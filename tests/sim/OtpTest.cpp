// One-time programmable data and their locks.

#include "tests/sim/Vectors.h"

namespace {

const sim::Vector otp[] = {
    {"writes_once_and_locks", "ZV32F457_1024K", SYNC R"(
        # two bytes, odd place: the area has no grid
        H: 31 CE
        C: 79
        H: 1F FF E4 01 05
        C: 79
        H: 01 12 34 27
        C: 79
        # not again
        H: 31 CE
        C: 79
        H: 1F FF E4 02 06
        C: 79
        H: 01 00 00 01
        C: 1F
        # the rest of the block still can
        H: 31 CE
        C: 79
        H: 1F FF E4 03 07
        C: 79
        H: 00 55 55
        C: 79
        # lock block 0
        H: 31 CE
        C: 79
        H: 1F FF F5 00 15
        C: 79
        H: 00 00 00
        C: 79
        H: 31 CE
        C: 79
        H: 1F FF E4 10 14
        C: 79
        H: 00 66 66
        C: 1F
        # across the border into the locked block: nothing at all
        H: 31 CE
        C: 79
        H: 1F FF E4 1F 1B
        C: 79
        H: 01 66 66 01
        C: 1F
        # block 1 is open
        H: 31 CE
        C: 79
        H: 1F FF E4 20 24
        C: 79
        H: 00 66 66
        C: 79
        H: 11 EE
        C: 79
        H: 1F FF E4 00 04
        C: 79
        H: 04 FB
        C: 79 FF 12 34 55 FF
        H: 11 EE
        C: 79
        H: 1F FF E4 1F 1B
        C: 79
        H: 01 FE
        C: 79 FF 66
    )"},
    {"lock_bytes_take_00_once", "ZV32F457_1024K", SYNC R"(
        H: 31 CE
        C: 79
        H: 1F FF F5 01 14
        C: 79
        H: 00 01 01
        C: 1F
        H: 31 CE
        C: 79
        H: 1F FF F5 01 14
        C: 79
        H: 00 00 00
        C: 79
        H: 31 CE
        C: 79
        H: 1F FF F5 01 14
        C: 79
        H: 00 00 00
        C: 1F
        H: 11 EE
        C: 79
        H: 1F FF F5 00 15
        C: 79
        H: 02 FD
        C: 79 FF 00 FF
    )"},
    {"borders", "ZV32M412_256K", SYNC R"(
        H: 31 CE
        C: 79
        H: 1F FF F3 FF EC
        C: 79
        H: 01 00 00 01
        C: 1F
        H: 31 CE
        C: 79
        H: 1F FF F3 FF EC
        C: 79
        H: 00 00 00
        C: 79
        H: 31 CE
        C: 79
        H: 1F FF F4 00 14
        C: 1F
        H: 31 CE
        C: 79
        H: 1F FF F5 80 95
        C: 1F
    )"},
    {"nothing_erases_it", "ZV32F422_64K", SYNC R"(
        H: 31 CE
        C: 79
        H: 1F FF F0 00 10
        C: 79
        H: 03 01 02 03 04 07
        C: 79
        H: 92 6D
        C: 79 79
    )" AFTER_RESET READS("1F FF F0 00 10", "01 02 03 04")},
};
WIRE_VECTORS(Otp, otp);

} // namespace
