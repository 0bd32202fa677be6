#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "line/gang/Gang.h"
#include "line/plan/Chip.h"
#include "line/register/Database.h"
#include "line/rehearsal/SimulatedChip.h"
#include "programs/Descriptor.h"
#include "tests/line/LineFiles.h"

namespace {

constexpr int nestCount = 3;
constexpr char notA2[] = "CREATE TRIGGER not_a2 BEFORE INSERT ON attempt WHEN NEW.nest = 'A2' "
                         "BEGIN SELECT RAISE(ABORT, 'not A2'); END";

// Of our processes that nobody has waited for yet.
int howManyHaveEnded() {
    std::ifstream children("/proc/thread-self/children");
    int ended = 0;
    for (pid_t child = 0; children >> child;) {
        siginfo_t how = {};
        waitid(P_PID, static_cast<id_t>(child), &how, WEXITED | WNOHANG | WNOWAIT);
        ended += how.si_pid == child ? 1 : 0;
    }
    return ended;
}

// Holds the line once, until a process of each nest has ended, so that it finds what all of them have said at once.
class HoldingView : public View {
public:
    explicit HoldingView(std::function<bool(const State &)> isTime) : m_isTime(std::move(isTime)) {}

    void show(const State &state) override {
        last = state;
        if (m_hasHeld || !m_isTime(state))
            return;
        m_hasHeld = true;
        for (int i = 0; i < 4000 && howManyHaveEnded() < nestCount; ++i)
            usleep(5000);
        EXPECT_EQ(howManyHaveEnded(), nestCount);
    }
    std::vector<int> descriptors() const override { return {}; }
    Clock::time_point next() const override { return Clock::time_point::max(); }
    std::vector<std::size_t> work() override { return {}; }

    State last;

private:
    const std::function<bool(const State &)> m_isTime;
    bool m_hasHeld = false;
};

// Nests that have something for the register at the same time, which does not take that of the nest A2.
class SharedCommitTest : public LineFiles {
protected:
    SharedCommitTest() {
        write("fw.bin", "abcd");
        write("job.toml", "format = 1\nname = \"ZX100\"\nquantity = 10\n[chip]\nname = \"ZV32F421_16K\"\n"
                          "[image]\nfile = \"fw.bin\"\nverify = \"read\"\n"
                          "[[unit]]\nat = 0x08000004\nvalue = \"number\"\nseries = \"ZX100\"\nas = \"u32le\"\n");
        station.name = "one";
        station.series["ZX100"] = {1, 100};
        for (int i = 1; i <= nestCount; ++i)
            nests.push_back({'A' + std::to_string(i), path("none" + std::to_string(i)), {}});
    }

    // One unit at each nest. Returns why the line has ended.
    std::string make(View &view) {
        const Job read = readJob(path("job.toml"));
        const Chip chip(read.chip, read.chipPlace);
        const Runs image = imageOf(read, chip);
        const Plan plan = planOf(read, chip, image);
        Register units(path("units.db"));
        units.keepPlan(plan.hash, read.name, read.quantity, plan.text);
        Database(path("units.db"), Database::Purpose::writing).run(notA2);
        Shift shift{read, plan, image, station, "", units};
        try {
            Gang(shift, nests, Gang::Start::once, view, [this](const Json &record) {
                told += record.at("nest").get<std::string>() + ' ';
            }).run();
            return "";
        } catch (const Refusal &refusal) {
            EXPECT_EQ(refusal.status, registerUnusable);
            return refusal.what();
        }
    }
    std::string wholeRefusal() const { return path("units.db") + ": not A2"; }

    // What the register knows, a word for each attempt.
    std::string recorded() const {
        std::string all;
        Database(path("units.db"), Database::Purpose::reading)
            .each("SELECT a.nest || '-' || a.result || '-' || coalesce(a.n, a.cause) FROM attempt a "
                  "JOIN record r ON r.attempt = a.id ORDER BY a.nest",
                  {}, [&](const SqlRow &row) { all += row.text(0) + ' '; });
        return all;
    }
    std::int64_t count(const char *what) const {
        return Database(path("units.db"), Database::Purpose::reading).number(what, {});
    }

    Station station{};
    std::vector<Nest> nests;
    std::string told; // the nests whose records are on disk
};

TEST_F(SharedCommitTest, WhereItFailsEachEndIsRecordedOnItsOwn) {
    HoldingView view([](const State &) { return true; });
    EXPECT_EQ(make(view), wholeRefusal());
    EXPECT_EQ(told, "A1 A3 ");
    EXPECT_EQ(recorded(), "A1-fail-no-port A3-fail-no-port ");
    EXPECT_EQ(view.last.nests[1].why, "not recorded: " + wholeRefusal());
}

// Their hooks wait for the line to be held.
class SharedBeginningTest : public SharedCommitTest {
protected:
    SharedBeginningTest() {
        for (int i = 1; i <= nestCount; ++i) {
            chips.push_back(std::make_unique<SimulatedChip>("ZV32F421_16K", path(nests[i - 1].name), i));
            nests[i - 1].port = chips.back()->port();
        }
        EXPECT_EQ(mkfifo(path("gate").c_str(), 0600), 0);
        gate = Descriptor(open(path("gate").c_str(), O_RDWR | O_CLOEXEC));
        write("may-i", "#!/bin/sh\nread go <" + path("gate") + "\necho '{\"ok\":true}'\n");
        chmod(path("may-i").c_str(), 0755);
        station.before = HookCall{{path("may-i")}, 60, {}};
    }

    bool allAsk(const State &state) const {
        for (const NestState &nest : state.nests)
            if (nest.step != "ask")
                return false;
        return ::write(gate.number(), "\n\n\n", nestCount) == nestCount;
    }
    // Whether a chip has the image with a number in it.
    bool isWhole(const std::string &nest, char number) const {
        return holds(nest, std::string("abcd") + number + std::string(3, '\0'));
    }

    std::vector<std::unique_ptr<SimulatedChip>> chips;
    Descriptor gate;
};

TEST_F(SharedBeginningTest, WhereItFailsTheOthersAreMade) {
    HoldingView view([this](const State &state) { return allAsk(state); });
    EXPECT_EQ(make(view), wholeRefusal());
    EXPECT_EQ(recorded(), "A1-pass-1 A3-pass-2 ");
    EXPECT_EQ(told.size(), 6u);
    EXPECT_EQ(count("SELECT count(*) FROM number"), 2);
    EXPECT_EQ(view.last.nests[1].why, "not recorded: " + wholeRefusal());
    chips.clear();
    EXPECT_TRUE(isWhole("A1", 1));
    EXPECT_FALSE(isWhole("A2", 1) || isWhole("A2", 2));
    EXPECT_TRUE(isWhole("A3", 2));
}

} // namespace
