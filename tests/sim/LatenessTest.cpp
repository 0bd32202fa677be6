// What a port that sleeps owes its host, and gives back.

#include "sim/ports/Lateness.h"

#include <gtest/gtest.h>

namespace sim {
namespace {

constexpr Nanoseconds ages = second;

Nanoseconds giveBack(Lateness &lateness, Nanoseconds frame, Nanoseconds room) {
    const Nanoseconds time = lateness.offer(frame, room);
    lateness.given(time);
    return time;
}

TEST(Lateness, nothingIsOwedToBeginWith) {
    EXPECT_EQ(Lateness().offer(ages, ages), 0);
}

TEST(Lateness, isGivenBackOnce) {
    Lateness lateness;
    lateness.add(60 * microsecond);
    EXPECT_EQ(giveBack(lateness, ages, ages), 110 * microsecond);
    EXPECT_EQ(giveBack(lateness, ages, ages), 0);
}

TEST(Lateness, whatNobodySeesIsTakenForAsLateAgainUpToALimit) {
    Lateness lateness;
    lateness.add(30 * microsecond);
    EXPECT_EQ(giveBack(lateness, ages, ages), 60 * microsecond);
    lateness.add(100 * microsecond);
    EXPECT_EQ(giveBack(lateness, ages, ages), 150 * microsecond);
}

TEST(Lateness, neverMoreThanAQuarterOfTheFrameAndTheRestStays) {
    Lateness lateness;
    lateness.add(30 * microsecond);
    EXPECT_EQ(giveBack(lateness, 190 * microsecond, ages), 47500);
    EXPECT_EQ(giveBack(lateness, 190 * microsecond, ages), 12500);
}

TEST(Lateness, neverMoreThan250MicrosecondsAtOnce) {
    Lateness lateness;
    lateness.add(20 * millisecond); // the whole simulator was held up
    EXPECT_EQ(giveBack(lateness, ages, ages), 250 * microsecond);
    EXPECT_EQ(giveBack(lateness, ages, ages), 250 * microsecond);
}

TEST(Lateness, noHostAnswersBeforeTheQuestionIsOut) {
    Lateness lateness;
    lateness.add(100 * microsecond);
    EXPECT_EQ(giveBack(lateness, ages, 30 * microsecond), 30 * microsecond);
    EXPECT_EQ(giveBack(lateness, ages, -1), 0);
}

TEST(Lateness, earlyIsNotLate) {
    Lateness lateness;
    lateness.add(-5);
    EXPECT_EQ(giveBack(lateness, ages, ages), 0);
}

TEST(WakeFor, theSixteenthTheLastOrThePause) {
    std::deque<TimedByte> queue;
    for (Nanoseconds i = 0; i < 20; ++i)
        queue.push_back({0, i * 87 * microsecond});
    EXPECT_EQ(wakeFor(queue, 16), 15 * 87 * microsecond);
    queue.resize(3);
    EXPECT_EQ(wakeFor(queue, 16), 2 * 87 * microsecond);
    queue.push_back({0, second}); // the answer to work that takes its time
    EXPECT_EQ(wakeFor(queue, 16), 2 * 87 * microsecond);
    queue.pop_front();
    queue.pop_front();
    queue.pop_front();
    EXPECT_EQ(wakeFor(queue, 16), second);
}

} // namespace
} // namespace sim
