#pragma once

#include <gtest/gtest.h>

#include "tests/sim/CanRig.h"

namespace sim {

// A conversation of literal frames with a factory-new chip.
struct CanVector {
    const char *name;
    std::vector<std::string> faults;
    const char *conversation;
};

inline void PrintTo(const CanVector &vector, std::ostream *out) {
    *out << vector.name;
}

inline std::string nameOfVector(const ::testing::TestParamInfo<CanVector> &vector) {
    return vector.param.name;
}

} // namespace sim

// One test for each row of a table of vectors.
#define CAN_VECTORS(SUITE, TABLE)                                     \
    class SUITE : public ::testing::TestWithParam<sim::CanVector> {}; \
    TEST_P(SUITE, goesFrameForFrame) {                                \
        sim::CanRig rig(GetParam().faults);                           \
        EXPECT_EQ(rig.play(GetParam().conversation), "");             \
    }                                                                 \
    INSTANTIATE_TEST_SUITE_P(Wire, SUITE, ::testing::ValuesIn(TABLE), sim::nameOfVector)

// What many conversations have in common.
#define OPEN "\nH: 07F\nC: 17F 79\n"
#define READS(ADDRESS, WORD_AND_XOR) \
    "\nH: 011\nC: 111 79\nH: 011 " ADDRESS "\nC: 111 79\nH: 011 03 FC\nC: 111 79 / 111 " WORD_AND_XOR "\n"
#define WRITES(ADDRESS) "\nH: 031\nC: 131 79\nH: 031 " ADDRESS "\nC: 131 79\nH: 031 03 01 02 03 04 07\nC: 131 79\n"
