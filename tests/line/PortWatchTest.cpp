#include "line/ports/PortWatch.h"

#include <cstdlib>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

#include "tests/line/LineFiles.h"

using namespace std::chrono_literals;

namespace {

constexpr uid_t nobody = 65534;

// A pseudo terminal that is plugged in where a link leads to it.
class Adapter {
public:
    Adapter() : m_maker(posix_openpt(O_RDWR | O_NOCTTY)) {
        grantpt(m_maker);
        unlockpt(m_maker);
    }
    ~Adapter() { close(m_maker); }
    Adapter(const Adapter &) = delete;
    Adapter &operator=(const Adapter &) = delete;

    std::string node() const { return ptsname(m_maker); }

private:
    int m_maker;
};

class PortWatchTest : public LineFiles {
protected:
    using Clock = PortWatch::Clock;
    using Events = std::vector<std::pair<std::size_t, PortWatch::Event>>;
    static constexpr auto plugged = PortWatch::Event::plugged;
    static constexpr auto unplugged = PortWatch::Event::unplugged;
    static constexpr auto denied = PortWatch::Event::denied;

    static Nest nest(const std::string &port) { return {"", port, {}}; }

    void plug(const Adapter &adapter, const std::string &name) const {
        std::filesystem::create_symlink(adapter.node(), path(name));
    }
    void unplug(const std::string &name) const { std::filesystem::remove(path(name)); }

    // A moment later.
    Events look(PortWatch &watch) {
        m_now += 300ms;
        Events events;
        for (const PortWatch::Change &change : watch.look(m_now))
            events.emplace_back(change.nest, change.event);
        return events;
    }

    // A device on USB, in the tree that stands for /sys.
    void usb(const std::string &place, int device, const std::string &serial) const {
        const std::string top = dir + "/sys/bus/usb/devices/" + place;
        for (const std::string &folder : {top, top + ":1.0", dir + "/dev/bus/usb/001"})
            std::filesystem::create_directories(folder);
        std::ofstream(top + "/busnum") << "1\n";
        std::ofstream(top + "/devnum") << device << '\n';
        std::ofstream(top + "/serial") << serial << '\n';
        std::ofstream(top + ":1.0/bInterfaceClass") << "fe\n";
        std::ofstream(top + ":1.0/bInterfaceSubClass") << "01\n";
        char node[8];
        std::snprintf(node, sizeof node, "%03d", device);
        std::ofstream(dir + "/dev/bus/usb/001/" + node) << "";
    }
    void unplugUsb(const std::string &place) const {
        for (const char *part : {"", ":1.0"})
            std::filesystem::remove_all(dir + "/sys/bus/usb/devices/" + place + part);
    }

    Clock::time_point m_now = Clock::now();
};

bool isReadable(int descriptor) {
    pollfd wait = {descriptor, POLLIN, 0};
    return poll(&wait, 1, 0) > 0;
}

} // namespace

TEST_F(PortWatchTest, ANestIsItsPortAndNotTheOrderOfPluggingIn) {
    const Adapter first;
    const Adapter second;
    PortWatch watch({nest(path("a")), nest(path("b"))}, LinkKind::usart);
    EXPECT_EQ(look(watch), Events());
    plug(second, "b");
    EXPECT_EQ(look(watch), (Events{{1, plugged}}));
    plug(first, "a");
    EXPECT_EQ(look(watch), (Events{{0, plugged}}));
    EXPECT_EQ(look(watch), Events());
    unplug("b");
    EXPECT_EQ(look(watch), (Events{{1, unplugged}}));
    EXPECT_TRUE(watch.isPlugged(0));
    EXPECT_FALSE(watch.isPlugged(1));
}

TEST_F(PortWatchTest, WhatWentAndCameBetweenTwoLooksIsAnotherPluggingIn) {
    const Adapter first;
    const Adapter second;
    plug(first, "a");
    plug(second, "b");
    PortWatch watch({nest(path("a")), nest(path("b"))}, LinkKind::usart);
    EXPECT_EQ(look(watch), (Events{{0, plugged}, {1, plugged}}));
    unplug("a");
    unplug("b");
    plug(first, "b");
    plug(second, "a");
    EXPECT_EQ(look(watch), (Events{{0, unplugged}, {0, plugged}, {1, unplugged}, {1, plugged}}));
}

TEST_F(PortWatchTest, ANewLinkToTheSameNodeIsAnotherPluggingIn) {
    const Adapter adapter;
    plug(adapter, "a");
    PortWatch watch({nest(path("a"))}, LinkKind::usart);
    look(watch);
    for (int i = 0; i < 3; ++i) {
        unplug("a");
        std::this_thread::sleep_for(20ms); // the number of the inode may come again, and time goes in steps
        plug(adapter, "a");
        EXPECT_EQ(look(watch), (Events{{0, unplugged}, {0, plugged}}));
    }
}

TEST_F(PortWatchTest, OnlyADeviceIsAPort) {
    write("a", "");
    PortWatch watch({nest(path("a"))}, LinkKind::usart);
    EXPECT_EQ(look(watch), Events());
}

TEST_F(PortWatchTest, IsToldAtOnceAndElseLooksFourTimesASecond) {
    PortWatch watch({nest(path("a")), nest(path("later/b"))}, LinkKind::usart);
    look(watch);
    EXPECT_EQ(watch.next() - m_now, 250ms);
    EXPECT_FALSE(isReadable(watch.descriptor()));
    const Adapter adapter;
    write("other", "");
    look(watch);
    EXPECT_EQ(watch.next() - m_now, 250ms); // what is no port is none of ours
    plug(adapter, "a");
    EXPECT_TRUE(isReadable(watch.descriptor()));
    look(watch);
    EXPECT_FALSE(isReadable(watch.descriptor()));
    EXPECT_EQ(watch.next() - m_now, 25ms); // what belongs to it may come a little later
    m_now += 600ms;
    std::filesystem::create_directory(path("later"));
    look(watch);
    std::filesystem::create_symlink(adapter.node(), path("later/b"));
    EXPECT_TRUE(isReadable(watch.descriptor()));
    EXPECT_EQ(look(watch), (Events{{1, plugged}}));
    std::filesystem::remove_all(path("later"));
    EXPECT_EQ(look(watch), (Events{{1, unplugged}}));
    std::filesystem::create_directory(path("later"));
    look(watch);
    std::filesystem::create_symlink(adapter.node(), path("later/b"));
    EXPECT_TRUE(isReadable(watch.descriptor()));
}

TEST_F(PortWatchTest, ANodeWhoseGroupArrivesLateIsTriedAgain) {
    if (geteuid() != 0)
        GTEST_SKIP() << "root alone can become another user";
    const Adapter adapter;
    plug(adapter, "a");
    std::filesystem::permissions(dir, std::filesystem::perms::all);
    chmod(adapter.node().c_str(), 0600);
    PortWatch watch({nest(path("a"))}, LinkKind::usart);
    ASSERT_EQ(seteuid(nobody), 0);
    const Events early = look(watch);
    m_now += 3s;
    const Events late = look(watch);
    const Events later = look(watch);
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_EQ(early, Events());
    EXPECT_EQ(late, (Events{{0, denied}}));
    EXPECT_EQ(later, Events());
    chmod(adapter.node().c_str(), 0666);
    ASSERT_EQ(seteuid(nobody), 0);
    const Events given = look(watch);
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_EQ(given, (Events{{0, plugged}}));
}

TEST_F(PortWatchTest, OnUsbANestIsAPlaceWithAFirmwareInterface) {
    usb("1-2.1", 7, "A");
    usb("1-2.2", 8, "B");
    std::ofstream(dir + "/sys/bus/usb/devices/1-2.2:1.0/bInterfaceClass") << "03\n";
    PortWatch watch({nest("1-2.2"), nest("1-2.1")}, LinkKind::dfu, Machine(dir));
    EXPECT_EQ(look(watch), (Events{{1, plugged}}));
    unplugUsb("1-2.1");
    unplugUsb("1-2.2");
    usb("1-2.2", 9, "A");
    EXPECT_EQ(look(watch), (Events{{0, plugged}, {1, unplugged}}));
    unplugUsb("1-2.2");
    usb("1-2.2", 10, "B");
    EXPECT_EQ(look(watch), (Events{{0, unplugged}, {0, plugged}}));
}

TEST_F(PortWatchTest, ARestartInAnAttemptIsNoOtherUnitButAnotherSerialNumberIs) {
    usb("1-2", 7, "A");
    PortWatch watch({nest("1-2")}, LinkKind::dfu, Machine(dir));
    look(watch);
    watch.hold(0);
    unplugUsb("1-2");
    EXPECT_EQ(look(watch), Events());
    usb("1-2", 8, "A");
    watch.release(0);
    EXPECT_EQ(look(watch), Events());
    watch.hold(0);
    usb("1-2", 9, "B");
    watch.release(0);
    EXPECT_EQ(look(watch), (Events{{0, unplugged}, {0, plugged}}));
    watch.hold(0);
    unplugUsb("1-2");
    watch.release(0);
    EXPECT_EQ(look(watch), (Events{{0, unplugged}}));
}

TEST_F(PortWatchTest, WhatWasExchangedInAnAttemptIsToldAfterIt) {
    const Adapter first;
    const Adapter second;
    plug(first, "a");
    PortWatch watch({nest(path("a"))}, LinkKind::usart);
    look(watch);
    watch.hold(0);
    unplug("a");
    plug(second, "a");
    EXPECT_EQ(look(watch), Events());
    watch.release(0);
    EXPECT_EQ(look(watch), (Events{{0, unplugged}, {0, plugged}}));
}

TEST_F(PortWatchTest, LooksNoSoonerThanItSaysWhereNothingIsHeardOf) {
    usb("1-2", 7, "A");
    PortWatch watch({nest("1-2")}, LinkKind::dfu, Machine(dir));
    EXPECT_EQ(watch.look(m_now).size(), 1U);
    unplugUsb("1-2");
    EXPECT_EQ(watch.look(m_now + 249ms).size(), 0U);
    EXPECT_EQ(watch.look(m_now + 250ms).size(), 1U);
}

TEST_F(PortWatchTest, OfPortsThatAreAllHeldThereIsNothingToLookFor) {
    PortWatch watch({nest(path("A1")), nest(path("A2"))}, LinkKind::usart);
    look(watch);
    watch.hold(0);
    EXPECT_LT(watch.next(), Clock::time_point::max());
    watch.hold(1);
    EXPECT_EQ(watch.next(), Clock::time_point::max());
    watch.release(0);
    EXPECT_EQ(watch.next(), Clock::time_point());
}

TEST_F(PortWatchTest, AnInterfaceIsThereByItsName) {
    PortWatch watch({nest("lo"), nest("nothing0")}, LinkKind::can);
    EXPECT_EQ(look(watch), (Events{{0, plugged}}));
}
