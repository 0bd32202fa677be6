#include "usersystemdata/OptionNames.h"

#include <string>

#include <gtest/gtest.h>

#include "foundation/McuSerials.h"

namespace {

struct NamesRow {
    int family;
    int compactLength;
    const char *names; // "name=number of its byte"; a gap in the numbers is one in the bytes
};

const NamesRow namesRows[] = {
    {ZV32F403A, 24,
     "fap=0 ssb=1 data0=2 data1=3 epp0=4 epp1=5 epp2=6 epp3=7 eopb0=8 res1=9 data2=10 data3=11 data4=12 data5=13 "
     "data6=14 "
     "data7=15 bank3key0=16 bank3key1=17 bank3key2=18 bank3key3=19 bank3key4=20 bank3key5=21 bank3key6=22 "
     "bank3key7=23"},
    {ZV32F415, 16,
     "fap=0 ssb=1 data0=2 data1=3 epp0=4 epp1=5 epp2=6 epp3=7 data2=8 data3=9 data4=10 data5=11 data6=12 data7=13 "
     "data8=14 "
     "data9=15"},
    {ZV32F405, 40,
     "fap=0 ssb=1 data0=2 data1=3 epp0=4 epp1=5 epp2=6 epp3=7 bank3key0=26 bank3key1=27 bank3key2=28 bank3key3=29 "
     "data2=38 "
     "data3=39"},
    {ZV32F435, 14,
     "fap=0 ssb=1 data0=2 data1=3 epp0=4 epp1=5 epp2=6 epp3=7 eopb0=8 res1=9 epp4=10 epp5=11 epp6=12 epp7=13"},
    {ZV32F422, 10, "fap=0 ssb=1 ssb1=2 data0=3 epp0=4 epp1=5 epp2=6 epp3=7 data1=8 data2=9"},
};

TEST(OptionNames, EachByteHasTheNumberThatItHasInItsItem) {
    for (const NamesRow &row : namesRows) {
        std::string names;
        for (const NamedOptionByte &one : namedOptionBytes(row.family, row.compactLength)) {
            names += (names.empty() ? "" : " ") + one.name + "=" + std::to_string(one.byte);
            EXPECT_EQ(one.name, one.isOne ? nameOf(one.item) : nameOf(one.item) + std::to_string(one.index));
        }
        EXPECT_EQ(names, row.names) << row.family;
    }
}

TEST(OptionNames, OneIsFoundByItsWholeName) {
    const std::vector<NamedOptionByte> names = namedOptionBytes(ZV32F422, 10);
    EXPECT_EQ(named(names, "ssb1")->byte, 2);
    EXPECT_EQ(named(names, "data2")->byte, 9);
    EXPECT_EQ(named(names, "data"), nullptr);
    EXPECT_EQ(named(names, "data3"), nullptr);
}

} // namespace
