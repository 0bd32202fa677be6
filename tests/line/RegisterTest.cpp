#include "line/register/Register.h"

#include <csignal>
#include <filesystem>
#include <grp.h>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "line/register/Owner.h"
#include "line/register/RegisterFile.h"
#include "programs/Status.h"

namespace {

const Terms terms = {"ZX100", 100, 102, 1000, false};

class RegisterTest : public testing::Test {
protected:
    RegisterTest() {
        char name[] = "/tmp/zv32-register.XXXXXX";
        dir = mkdtemp(name);
        open().keepPlan("5be1", "ZX100", 1000, "plan 1\n");
    }
    ~RegisterTest() override { std::filesystem::remove_all(dir); }

    Register open() const { return Register(path()); }
    std::string path() const { return dir + "/units.db"; }

    static Json record(const std::string &uid, const std::string &order = "PO-88") {
        return {{"v", 1},         {"attempt", nullptr}, {"station", "one"},  {"nest", "A1"},
                {"order", order}, {"uid", uid},         {"series", nullptr}, {"number", nullptr},
                {"plan", "5be1"}, {"result", "open"},   {"cause", nullptr},  {"started", timeNow()}};
    }
    static Json closed(Json record, const char *result, const char *cause = nullptr) {
        record["result"] = result;
        record["cause"] = cause == nullptr ? Json() : Json(cause);
        return record;
    }
    // Makes a unit; its number, or 0 where it was not begun.
    std::int64_t make(const std::string &uid, const Terms &on = terms) {
        Register units = open();
        const Beginning beginning = units.begin(record(uid), on, false);
        cause = beginning.cause;
        usedUp = beginning.isUsedUp;
        if (!cause.empty())
            return 0;
        EXPECT_EQ(units.close(closed(beginning.record, "pass"), false).at("result"), "pass");
        return beginning.record.at("number");
    }
    // Does the work in a process that does not live on.
    template <typename Work>
    static void inAnother(Work work) {
        const pid_t child = fork();
        if (child == 0) {
            work();
            _exit(0);
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    // What a statement of somebody else's is told; empty where it is done.
    std::string told(const std::string &statement) const {
        try {
            Database(path(), Database::Purpose::writing).run(statement.c_str());
            return {};
        } catch (const Refusal &refusal) {
            EXPECT_EQ(refusal.status, registerUnusable);
            return std::string(refusal.what()).substr(path().size() + 2);
        }
    }

    std::string dir;
    std::string cause;
    bool usedUp = false;
};

} // namespace

TEST_F(RegisterTest, GivesEachChipItsNumberForEver) {
    Terms again = terms;
    again.again = true;
    EXPECT_EQ(make("aa"), 100);
    EXPECT_EQ(make("bb"), 101);
    EXPECT_EQ(make("aa", again), 100);
    EXPECT_EQ(make("cc"), 102);
    EXPECT_EQ(make("bb", again), 101);
    EXPECT_EQ(make("dd"), 0);
    EXPECT_EQ(cause, "no-number");
    EXPECT_TRUE(usedUp);
    Terms other = terms;
    other.series = "ZX200";
    EXPECT_EQ(make("dd", other), 100);
}

TEST_F(RegisterTest, RefusesWhatIsMadeAlready) {
    EXPECT_EQ(make("aa"), 100);
    EXPECT_EQ(make("aa"), 0);
    EXPECT_EQ(cause, "already-made");
    open().keepPlan("7777", "ZX100", 1000, "plan 2\n");
    Json other = record("aa");
    other["plan"] = "7777";
    const Beginning beginning = open().begin(other, terms, false);
    EXPECT_EQ(beginning.cause, "");
    EXPECT_EQ(beginning.record.at("number"), 100);
}

TEST_F(RegisterTest, AFailedUnitMayBeMadeAndKeepsItsNumber) {
    Register units = open();
    const Beginning first = units.begin(record("aa"), terms, false);
    units.close(closed(first.record, "fail", "write"), false);
    EXPECT_EQ(make("bb"), 101);
    EXPECT_EQ(make("aa"), 100);
}

TEST_F(RegisterTest, AnOrderHasItsUnitsOnce) {
    Terms two = terms;
    two.quantity = 2;
    two.again = true;
    Register units = open();
    EXPECT_EQ(make("aa", two), 100);
    const Beginning second = units.begin(record("bb"), two, false);
    EXPECT_EQ(make("cc", two), 0); // as long as the second may pass
    EXPECT_EQ(cause, "no-number");
    EXPECT_TRUE(usedUp);
    EXPECT_EQ(make("aa", two), 100); // is no further unit
    units.close(closed(second.record, "fail", "write"), false);
    EXPECT_EQ(make("cc", two), 102);
    EXPECT_EQ(units.made("5be1", "PO-88"), 2);
    EXPECT_EQ(units.begin(record("dd", "PO-89"), {"", 0, 0, 2, false}, false).cause, "");
}

TEST_F(RegisterTest, RefusesBothNestsThatMeetOneIdentifier) {
    Register units = open();
    const Beginning first = units.begin(record("aa"), terms, false);
    const Beginning second = open().begin(record("aa"), terms, false);
    EXPECT_EQ(second.cause, "same-id");
    EXPECT_FALSE(second.isUsedUp);
    units.note(closed(second.record, "refused", "same-id"), false);
    const Json record = units.close(closed(first.record, "pass"), false);
    EXPECT_EQ(record.at("result"), "fail");
    EXPECT_EQ(record.at("cause"), "same-id");
}

TEST_F(RegisterTest, ClosesWhatTheDeadLeftOpen) {
    inAnother([this] {
        Register units = open();
        units.begin(record("aa"), terms, false);
        units.burning(units.begin(record("bb"), terms, false).record.at("attempt"));
    });
    Register units = open();
    const Beginning ours = units.begin(record("cc"), terms, false);
    const std::vector<Orphan> orphans = units.closeOrphans(true);
    ASSERT_EQ(orphans.size(), 2u);
    EXPECT_EQ(orphans[0].record.at("uid"), "aa");
    EXPECT_EQ(orphans[0].record.at("result"), "interrupted");
    EXPECT_EQ(orphans[0].record.at("cause"), "station-died");
    EXPECT_FALSE(orphans[0].burning);
    EXPECT_EQ(orphans[1].record.at("uid"), "bb");
    EXPECT_TRUE(orphans[1].burning);
    EXPECT_TRUE(units.closeOrphans(true).empty());
    EXPECT_EQ(units.howManyUndelivered("one"), 2);
    EXPECT_EQ(make("aa"), 100);
    EXPECT_EQ(make("bb"), 101);
}

TEST_F(RegisterTest, AChipOfADeadOwnerCanBeBegun) {
    inAnother([this] { open().begin(record("aa"), terms, false); });
    const Beginning beginning = open().begin(record("aa"), terms, false);
    EXPECT_EQ(beginning.cause, "");
    EXPECT_EQ(beginning.record.at("number"), 100);
    EXPECT_EQ(beginning.orphans.size(), 1u);
}

TEST_F(RegisterTest, DeliversUntilItIsDelivered) {
    Register units = open();
    const Json record = units.close(closed(units.begin(this->record("aa"), terms, false).record, "pass"), true);
    std::vector<Register::Delivery> todo = units.undelivered("one", 10);
    ASSERT_EQ(todo.size(), 1u);
    EXPECT_EQ(Json::parse(todo[0].record), record);
    EXPECT_TRUE(units.undelivered("two", 10).empty());
    units.notDelivered(todo[0].attempt, "no network");
    todo = units.undelivered("one", 10);
    ASSERT_EQ(todo.size(), 1u);
    EXPECT_EQ(todo[0].tries, 1);
    units.delivered(todo[0].attempt);
    units.delivered(todo[0].attempt);
    EXPECT_EQ(units.howManyUndelivered("one"), 0);
}

TEST_F(RegisterTest, NobodyChangesWhatIsWritten) {
    make("aa");
    Register units = open();
    const Json open = units.begin(record("bb"), terms, true).record;
    units.burning(open.at("attempt"));
    const Json passed = units.close(closed(units.begin(record("cc"), terms, true).record, "pass"), true);
    units.delivered(passed.at("attempt"));
    const char *const refused[][2] = {
        {"UPDATE number SET n = 7 WHERE uid = 'aa'", "a number is never changed"},
        {"UPDATE number SET uid = 'dd' WHERE uid = 'aa'", "a number is never changed"},
        {"DELETE FROM number", "a number is never deleted"},
        {"INSERT INTO number VALUES ('ZX100', 100, 'dd')", "UNIQUE constraint failed: number.series, number.n"},
        {"INSERT INTO number VALUES ('ZX100', 777, 'aa')", "UNIQUE constraint failed: number.series, number.uid"},
        {"UPDATE attempt SET result = 'fail', cause = 'write' WHERE uid = 'aa'", "a closed attempt is never changed"},
        {"UPDATE attempt SET uid = 'dd' WHERE uid = 'bb'", "what an attempt is about is never changed"},
        {"UPDATE attempt SET burning = 0 WHERE uid = 'bb'", "what has burned has burned"},
        {"UPDATE attempt SET result = 'pass' WHERE uid = 'bb'",
         "CHECK constraint failed: (result = 'open') = (ended IS NULL)"},
        {"DELETE FROM attempt WHERE uid = 'bb'", "an attempt is never deleted"},
        {"UPDATE record SET text = '' WHERE attempt = 1", "the record of a closed attempt is never changed"},
        {"DELETE FROM record", "a record is never deleted"},
        {"UPDATE plan SET text = ''", "a plan is never changed"},
        {"DELETE FROM plan", "a plan is never deleted"},
        {"UPDATE delivery SET delivered = NULL", "what is delivered is delivered"},
        {"DELETE FROM delivery", "a delivery is never deleted"},
        {"INSERT INTO attempt (plan, order_name, station, nest, uid, owner, result, started) "
         "VALUES ('5be1', '', '', '', 'bb', '', 'open', '')",
         "UNIQUE constraint failed: attempt.uid"},
        {"INSERT INTO attempt (plan, order_name, station, nest, uid, series, n, owner, result, started, ended) "
         "VALUES ('5be1', '', '', '', 'dd', 'ZX100', 100, '', 'pass', '', '')",
         "FOREIGN KEY constraint failed"},
    };
    for (const auto &one : refused)
        EXPECT_EQ(told(one[0]), one[1]) << one[0];
}

TEST_F(RegisterTest, BelongsToItsGroup) {
    struct stat info;
    const Register units = open();
    for (const char *beside : {"", "-wal", "-shm"}) {
        ASSERT_EQ(stat((path() + beside).c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 0777, 0660u) << beside;
    }
}

// With a mask that would keep its files from the group.
TEST_F(RegisterTest, WhoIsOfItsGroupMakesUnitsAndNobodyElse) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can be several users";
    constexpr gid_t group = 64999;
    const std::string shared = dir + "/shared";
    ASSERT_TRUE(chmod(dir.c_str(), 0755) == 0 && mkdir(shared.c_str(), 0700) == 0);
    if (chown(shared.c_str(), 0, group) != 0)
        GTEST_SKIP() << "nor is this root";
    ASSERT_EQ(chmod(shared.c_str(), 02770), 0);
    const auto make = [&](uid_t user, gid_t further, bool may) {
        inAnother([&] {
            umask(077);
            if (setgroups(1, &further) != 0 || setgid(user) != 0 || setuid(user) != 0)
                _exit(2);
            try {
                Register units(shared + "/units.db");
                units.keepPlan("5be1", "ZX100", 1000, "plan 1\n");
                units.close(closed(units.begin(record(std::to_string(user)), terms, false).record, "pass"), false);
                _exit(may ? 0 : 3);
            } catch (const Refusal &) {
                _exit(may ? 4 : 0);
            }
        });
    };
    make(64001, group, true);
    make(64002, group, true);
    make(64003, 64003, false);
    EXPECT_EQ(Database(shared + "/units.db", Database::Purpose::reading).number("SELECT count(*) FROM attempt", {}), 2);
}

TEST_F(RegisterTest, IsAFileOfThisMachine) {
    EXPECT_STREQ(networkFileSystem(0x6969), "NFS");
    EXPECT_STREQ(networkFileSystem(static_cast<int>(0xFF534D42)), "CIFS");
    EXPECT_EQ(networkFileSystem(0xEF53), nullptr);
    mkfifo((dir + "/fifo").c_str(), 0600);
    for (const std::string &other : {dir, dir + "/fifo", dir + "/none/units.db", std::string("/dev/null")})
        try {
            const Register units(other);
            ADD_FAILURE() << other;
        } catch (const Refusal &refusal) {
            EXPECT_EQ(refusal.status, registerUnusable) << other;
        }
}

TEST_F(RegisterTest, WhatIsWrittenTogetherIsWrittenWholeOrNotAtAll) {
    Register units = open();
    Beginning one;
    units.together([&] {
        one = units.begin(record("u1"), terms, true);
        EXPECT_EQ(units.begin(record("u1"), terms, true).cause, "same-id");
        EXPECT_EQ(units.begin(record("u2"), terms, true).record.at("number"), 101);
    });
    EXPECT_EQ(one.record.at("number"), 100);
    const auto fail = [&] {
        units.close(closed(one.record, "pass"), true);
        units.begin(record("u3"), terms, true);
        units.close(closed(one.record, "pass"), true); // it is closed
    };
    EXPECT_THROW(units.together(fail), Refusal);
    EXPECT_EQ(units.made("5be1", "PO-88"), 0);
    EXPECT_EQ(units.howManyUndelivered("one"), 0);
    EXPECT_EQ(units.begin(record("u4"), terms, true).record.at("number"), 102);
    units.close(closed(one.record, "pass"), true);
    EXPECT_EQ(open().made("5be1", "PO-88"), 1);
}

TEST_F(RegisterTest, AFullDiskBeginsNothing) {
    inAnother([this] {
        Register units = open();
        signal(SIGXFSZ, SIG_IGN);
        const auto size = std::filesystem::file_size(path() + "-wal");
        const rlimit most = {size, size};
        setrlimit(RLIMIT_FSIZE, &most);
        try {
            for (int i = 0; i < 1000; ++i)
                units.begin(record("aa" + std::to_string(i)), {"", 0, 0, 100000, false}, false);
            _exit(1);
        } catch (const Refusal &refusal) {
            _exit(refusal.status == registerUnusable ? 0 : 2);
        }
    });
    EXPECT_TRUE(open().closeOrphans(false).empty());
    EXPECT_EQ(make("bb"), 100);
}

TEST(OwnerTest, TellsTheLivingFromTheDead) {
    const std::string us = ownerOfThis();
    EXPECT_TRUE(lives(us));
    EXPECT_FALSE(lives("another-boot" + us.substr(us.find(' '))));
    EXPECT_FALSE(lives(us + '1')); // another that had our number
    EXPECT_FALSE(lives(""));
    EXPECT_FALSE(lives("a b c"));
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    siginfo_t info;
    waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT);
    const std::string boot = us.substr(0, us.find(' '));
    EXPECT_FALSE(lives(boot + ' ' + std::to_string(child) + " 1")); // waited for
    waitpid(child, nullptr, 0);
    EXPECT_FALSE(lives(boot + ' ' + std::to_string(child) + " 1"));
}
