#pragma once

#include <gtest/gtest.h>

#include "tests/sim/Rig.h"

namespace sim {

// A conversation of literal bytes with a factory-new chip.
struct Vector {
    const char *name;
    const char *chip;
    const char *conversation;
};

inline void PrintTo(const Vector &vector, std::ostream *out) {
    *out << vector.name;
}

inline std::string nameOf(const ::testing::TestParamInfo<Vector> &vector) {
    return vector.param.name;
}

} // namespace sim

// One test for each row of a table of vectors.
#define WIRE_VECTORS(SUITE, TABLE)                                 \
    class SUITE : public ::testing::TestWithParam<sim::Vector> {}; \
    TEST_P(SUITE, goesByteForByte) {                               \
        sim::Rig rig(GetParam().chip);                             \
        EXPECT_EQ(rig.play(GetParam().conversation), "");          \
    }                                                              \
    INSTANTIATE_TEST_SUITE_P(Wire, SUITE, ::testing::ValuesIn(TABLE), sim::nameOf)

// What many conversations have in common.
#define SYNC "\nH: 7F\nC: 79\n"
#define AFTER_RESET "\nwait 20\nH: 7F\nC: 79\n"
#define WRITE_WORD(ADDRESS) "\nH: 31 CE\nC: 79\nH: " ADDRESS "\nC: 79\nH: 03 01 02 03 04 07\nC: 79\n"
#define READS(ADDRESS, WORD) "\nH: 11 EE\nC: 79\nH: " ADDRESS "\nC: 79\nH: 03 FC\nC: 79 " WORD "\n"
