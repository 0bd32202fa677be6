#include "line/books/Books.h"

#include <filesystem>
#include <memory>
#include <stdlib.h>

#include <gtest/gtest.h>

#include "line/books/Stats.h"
#include "line/register/Register.h"
#include "line/register/Sql.h"

namespace {

class BooksTest : public testing::Test {
protected:
    BooksTest() {
        char name[] = "/tmp/zv32-books.XXXXXX";
        dir = mkdtemp(name);
        units = std::make_unique<Register>(path());
        units->keepPlan("5be1", "ZX100", 1000, "plan 1\n");
    }
    ~BooksTest() override { std::filesystem::remove_all(dir); }

    std::string path() const { return dir + "/units.db"; }

    void note(const std::string &started) const {
        units->note({{"v", 1},
                     {"attempt", nullptr},
                     {"station", "one"},
                     {"nest", "A1"},
                     {"order", ""},
                     {"uid", "aa"},
                     {"plan", "5be1"},
                     {"result", "fail"},
                     {"cause", "no-answer"},
                     {"started", started}},
                    false);
    }
    static std::vector<std::int64_t> attempts(Books &books, const Wanted &wanted = {}) {
        std::vector<std::int64_t> found;
        books.units(wanted, [&](const UnitLine &unit) { found.push_back(unit.attempt); });
        return found;
    }

    std::string dir;
    std::unique_ptr<Register> units; // in a process, whoever reads has to open it after who writes
};

// As of stations whose clocks differ, and of one whose clock was set.
TEST_F(BooksTest, SinceATimeIsByTheTimeOfEachAttempt) {
    for (const char *day : {"2026-01-05", "2026-01-01", "2026-01-06", "2026-01-02"})
        note(std::string(day) + "T00:00:00.000Z");
    const struct {
        const char *since;
        std::vector<std::int64_t> attempts;
    } rows[] = {{"2025-01-01", {1, 2, 3, 4}},
                {"2026-01-01T00:00", {1, 2, 3, 4}},
                {"2026-01-01T00:01", {1, 3, 4}},
                {"2026-01-02T00:01", {1, 3}},
                {"2026-01-06", {3}},
                {"2026-01-07", {}}};
    Books books(path());
    for (const auto &row : rows) {
        Wanted wanted;
        wanted.since = row.since;
        EXPECT_EQ(attempts(books, wanted), row.attempts) << row.since;
    }
}

TEST_F(BooksTest, AllAnswersAreOfOneMoment) {
    note("2026-01-01T00:00:00.000Z");
    Books books(path());
    EXPECT_EQ(attempts(books).size(), 1);
    note("2026-01-02T00:00:00.000Z");
    EXPECT_EQ(attempts(books).size(), 1);
    Books later(path());
    EXPECT_EQ(attempts(later).size(), 2);
}

// What has to be sorted is kept: memory that grows with the register.
TEST_F(BooksTest, NothingIsSortedToTellOfAllUnits) {
    Database read(path(), Database::Purpose::reading);
    for (const std::string &statement :
         {std::string(sql::someOfChips) + sql::byChip, std::string(sql::someOfChips) + " AND a.id >= 1" + sql::byChip,
          std::string(sql::someEnds) + sql::inOrder, std::string(sql::someRecords) + sql::inOrder,
          std::string(sql::someUnits) + sql::inOrder}) {
        std::string plan;
        read.each(("EXPLAIN QUERY PLAN " + statement).c_str(), {}, [&](const SqlRow &row) { plan += row.text(3); });
        EXPECT_NE(plan, "");
        EXPECT_EQ(plan.find("TEMP"), plan.npos) << statement << ": " << plan;
    }
}

struct AtChips {
    std::vector<ChipEnd> ends;
    std::int64_t made;
    std::int64_t passed;
    std::int64_t first;
};

class StatsOfChips : public testing::TestWithParam<AtChips> {};

TEST_P(StatsOfChips, CountEachChipOnceAndItsFirstAttempt) {
    Stats stats;
    for (const ChipEnd &end : GetParam().ends)
        stats.add(end);
    EXPECT_EQ(stats.chips().made, GetParam().made);
    EXPECT_EQ(stats.chips().passed, GetParam().passed);
    EXPECT_EQ(stats.chips().first, GetParam().first);
}

INSTANTIATE_TEST_SUITE_P(Orders, StatsOfChips,
                         testing::Values(AtChips{{}, 0, 0, 0}, AtChips{{{"aa", "pass", 1}}, 1, 1, 1},
                                         AtChips{{{"aa", "fail", 1}}, 1, 0, 0},
                                         AtChips{{{"aa", "pass", 1}, {"bb", "pass", 2}}, 2, 2, 2},
                                         AtChips{{{"aa", "fail", 1}, {"aa", "pass", 2}}, 1, 1, 0},
                                         AtChips{{{"aa", "pass", 2}, {"aa", "fail", 1}}, 1, 1, 0},
                                         AtChips{{{"aa", "fail", 2}, {"aa", "pass", 1}}, 1, 1, 1},
                                         AtChips{{{"aa", "pass", 3}, {"aa", "pass", 2}, {"aa", "fail", 4}}, 1, 1, 1},
                                         AtChips{{{"aa", "pass", 7}, {"bb", "interrupted", 3}}, 2, 1, 1}));

} // namespace
