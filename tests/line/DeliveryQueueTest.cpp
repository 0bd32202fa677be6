#include "line/hooks/DeliveryQueue.h"

#include <algorithm>
#include <sstream>

#include "tests/line/SiteFiles.h"

namespace {

using namespace std::chrono_literals;

class DeliveryQueueTest : public SiteFiles {
protected:
    DeliveryQueueTest() : units(dir + "/units.db") { units.keepPlan("5be1", "ZX100", 1000, "plan 1\n"); }

    // Closes a unit, which is to be delivered.
    std::int64_t unit(const std::string &uid, const std::string &station = "one") {
        const Json record = {{"v", 1},      {"attempt", nullptr},  {"station", station}, {"nest", "A1"},
                             {"order", ""}, {"uid", uid},          {"plan", "5be1"},     {"result", "open"},
                             {"cause", {}}, {"started", timeNow()}};
        Json begun = units.begin(record, {"", 0, 0, 1000, false}, true).record;
        begun["result"] = "pass";
        return units.close(begun, true).at("attempt").get<std::int64_t>();
    }

    // Drives it as a line does, until so many have been tried.
    void untilTried(DeliveryQueue &queue, int times) {
        for (int i = 0;; ++i) {
            queue.proceed();
            if (tried().size() >= static_cast<std::size_t>(times) && !queue.isBusy())
                return;
            std::vector<pollfd> all;
            queue.watch(all);
            const auto now = DeliveryQueue::Clock::now();
            const auto wait = std::clamp<DeliveryQueue::Clock::duration>(queue.wakeUp() - now, 0s, 5s);
            poll(all.data(), all.size(), static_cast<int>(wait / 1ms));
            ASSERT_LT(i, 1000);
        }
    }

    // The attempts that the hook was told of, in their order.
    std::vector<std::int64_t> tried() const {
        std::vector<std::int64_t> all;
        std::ifstream file(dir + "/told");
        for (std::string line; std::getline(file, line);)
            all.push_back(Json::parse(line).at("attempt").get<std::int64_t>());
        return all;
    }
    std::string tell() const { return "cat >>" + dir + "/told"; }
    std::string failing() const { return tell() + "; echo no paper >&2; exit 1"; }

    Register units;
};

TEST_F(DeliveryQueueTest, EachRecordIsToldAsItWasWrittenAndOnce) {
    const std::optional<HookCall> hook = call(tell());
    DeliveryQueue queue(units, "one", hook);
    EXPECT_FALSE(queue.isBusy());
    EXPECT_EQ(queue.wakeUp(), DeliveryQueue::Clock::time_point::max());
    const std::string record = [&] {
        unit("aa");
        return units.undelivered("one", 1).front().record;
    }();
    queue.added();
    unit("bb");
    queue.added();
    EXPECT_EQ(queue.waiting(), 2);
    untilTried(queue, 2);
    EXPECT_EQ(tried(), (std::vector<std::int64_t>{1, 2}));
    std::string first;
    std::getline(std::ifstream(dir + "/told"), first);
    EXPECT_EQ(first, record);
    EXPECT_EQ(queue.waiting(), 0);
    EXPECT_EQ(queue.trouble(), "");
    EXPECT_EQ(queue.wakeUp(), DeliveryQueue::Clock::time_point::max());
    EXPECT_EQ(units.howManyUndelivered("one"), 0);
}

TEST_F(DeliveryQueueTest, WhatFailsStaysAndComesAgainWithTheSameAttemptAfterTheRepair) {
    std::optional<HookCall> hook = call(failing());
    {
        DeliveryQueue queue(units, "one", hook);
        unit("aa");
        queue.added();
        unit("bb");
        queue.added();
        untilTried(queue, 2);
        EXPECT_EQ(queue.waiting(), 2);
        EXPECT_EQ(queue.trouble(), dir + "/hook: exit status 1: no paper");
        EXPECT_GT(queue.wakeUp(), DeliveryQueue::Clock::now()); // nothing to do until then
    }
    hook = call(tell());
    DeliveryQueue next(units, "one", hook); // the line begins again
    EXPECT_EQ(next.waiting(), 2);
    EXPECT_TRUE(next.isBusy());
    untilTried(next, 4);
    EXPECT_EQ(tried(), (std::vector<std::int64_t>{1, 2, 1, 2}));
    EXPECT_EQ(next.waiting(), 0);
}

TEST_F(DeliveryQueueTest, PausesGrowWhileNothingSucceedsAndNewRecordsDoNotWait) {
    const std::optional<HookCall> hook = call(failing());
    DeliveryQueue queue(units, "one", hook);
    DeliveryQueue::Clock::duration last = 0s;
    for (int i = 1; i <= 12; ++i) {
        unit(std::to_string(i));
        queue.added();
        untilTried(queue, i); // at once, though the others wait
        const auto pause = queue.wakeUp() - DeliveryQueue::Clock::now();
        EXPECT_GT(pause, i < 10 ? last : 299s);
        EXPECT_LE(pause, 300s);
        last = pause;
    }
    EXPECT_EQ(tried().back(), 12);
    queue.proceed();
    EXPECT_FALSE(queue.isBusy()); // and nothing is begun before the pause is over
}

TEST_F(DeliveryQueueTest, OneThatIsNeverTakenHoldsNoOtherUp) {
    const std::optional<HookCall> hook =
        call("read line; echo \"$line\" >>" + dir + "/told; case $line in *'\"attempt\":1,'*) exit 1;; esac");
    DeliveryQueue queue(units, "one", hook);
    for (const char *uid : {"aa", "bb", "cc"}) {
        unit(uid);
        queue.added();
    }
    untilTried(queue, 4);
    EXPECT_EQ(tried(), (std::vector<std::int64_t>{1, 2, 3, 1}));
    EXPECT_EQ(queue.waiting(), 1);
}

TEST_F(DeliveryQueueTest, OnlyTheRecordsOfItsOwnStation) {
    unit("aa", "two");
    const std::optional<HookCall> hook = call(tell());
    DeliveryQueue queue(units, "one", hook);
    EXPECT_EQ(queue.waiting(), 0);
    EXPECT_FALSE(queue.isBusy());
}

TEST_F(DeliveryQueueTest, WithoutAHookItCountsAndWaitsForNothing) {
    unit("aa");
    const std::optional<HookCall> none;
    DeliveryQueue queue(units, "one", none);
    queue.proceed();
    EXPECT_EQ(queue.waiting(), 1);
    EXPECT_FALSE(queue.isBusy());
    EXPECT_EQ(queue.wakeUp(), DeliveryQueue::Clock::time_point::max());
}

TEST_F(DeliveryQueueTest, WhatAnotherProcessHasDeliveredIsGone) {
    const std::optional<HookCall> hook = call(tell());
    const std::int64_t attempt = unit("aa");
    DeliveryQueue queue(units, "one", hook);
    units.delivered(attempt);
    queue.proceed();
    EXPECT_EQ(queue.waiting(), 0);
    EXPECT_FALSE(queue.isBusy());
}

} // namespace
