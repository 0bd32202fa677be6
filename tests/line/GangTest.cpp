#include "line/gang/Gang.h"

#include <chrono>
#include <csignal>
#include <filesystem>

#include <gtest/gtest.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

// Wakes the line all the time, and ends it after a while.
class BusyView : public View {
public:
    void show(const State & /*state*/) override { ++shows; }
    std::vector<int> descriptors() const override { return {}; }
    Clock::time_point next() const override { return Clock::now() + 1ms; }
    std::vector<std::size_t> work() override {
        if (Clock::now() >= m_end && showsMeanwhile < 0) {
            showsMeanwhile = shows;
            kill(getpid(), SIGTERM);
        }
        return {};
    }

    int shows = 0;
    int showsMeanwhile = -1;

private:
    const Clock::time_point m_end = Clock::now() + 400ms;
};

class GangTest : public testing::Test {
protected:
    GangTest() {
        char name[] = "/tmp/zv32-gang.XXXXXX";
        dir = mkdtemp(name);
        nests = {{"A1", dir + "/none", {}}, {"A2", dir + "/neither", {}}};
    }
    ~GangTest() override { std::filesystem::remove_all(dir); }

    std::string dir;
    std::vector<Nest> nests;
    Job job{};
    Plan plan{};
    Runs image;
    Station station{};
};

} // namespace

TEST_F(GangTest, ShowsNothingAgainWhileItWaits) {
    Register units(dir + "/units.db");
    Shift shift{job, plan, image, station, "", units};
    BusyView view;
    Gang gang(shift, nests, Gang::Start::plug, view, [](const Json &) {});
    EXPECT_EQ(gang.run(), 0);
    EXPECT_EQ(view.showsMeanwhile, 1);
}
