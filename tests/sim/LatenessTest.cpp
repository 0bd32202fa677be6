// What a port that sleeps owes its host, and gives back.

#include "sim/ports/Lateness.h"

#include <gtest/gtest.h>

namespace sim {
namespace {

constexpr Nanoseconds ages = second;

TEST(Lateness, nothingIsOwedToBeginWith) {
    EXPECT_EQ(Lateness().giveBack(ages, ages), 0);
}

TEST(Lateness, isGivenBackOnce) {
    Lateness lateness;
    lateness.add(60 * microsecond);
    EXPECT_EQ(lateness.giveBack(ages, ages), 60 * microsecond);
    EXPECT_EQ(lateness.giveBack(ages, ages), 0);
}

TEST(Lateness, neverMoreThanAQuarterOfTheFrameAndTheRestStays) {
    Lateness lateness;
    lateness.add(60 * microsecond);
    EXPECT_EQ(lateness.giveBack(190 * microsecond, ages), 47500);
    EXPECT_EQ(lateness.giveBack(190 * microsecond, ages), 12500);
}

TEST(Lateness, neverMoreThan250MicrosecondsAtOnce) {
    Lateness lateness;
    lateness.add(20 * millisecond); // the whole simulator was held up
    EXPECT_EQ(lateness.giveBack(ages, ages), 250 * microsecond);
    EXPECT_EQ(lateness.giveBack(ages, ages), 250 * microsecond);
}

TEST(Lateness, noHostAnswersBeforeTheQuestionIsOut) {
    Lateness lateness;
    lateness.add(100 * microsecond);
    EXPECT_EQ(lateness.giveBack(ages, 30 * microsecond), 30 * microsecond);
    EXPECT_EQ(lateness.giveBack(ages, -1), 0);
}

TEST(Lateness, earlyIsNotLate) {
    Lateness lateness;
    lateness.add(-5);
    EXPECT_EQ(lateness.giveBack(ages, ages), 0);
}

} // namespace
} // namespace sim
