// Causes of serial ports.
#include <atomic>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include "look/doctor/Examine.h"
#include "tests/look/DoctorPlace.h"

namespace {

const Node usbPort{"ttyUSB1", "/dev/ttyUSB1", "tty"};

// An adapter on a machine of its own, as the kernel and udev tell of it.
void plugIn(const FakeMachine &fake) {
    fake.file("/sys/devices/usb1/1-2/idVendor", "1a86\n");
    fake.file("/sys/devices/usb1/1-2/idProduct", "7523\n");
    fake.link("/sys/class/tty/ttyUSB1/device", "/sys/devices/usb1/1-2/1-2:1.0/ttyUSB1");
    fake.file("/sys/class/tty/ttyUSB1/dev", "188:1\n");
}

Diagnosis systemOf(const FakeMachine &fake) {
    Diagnosis diagnosis;
    checkSerialSystem(usbPort, fake.machine(), diagnosis);
    return diagnosis;
}

// Answers the opening byte with other bytes.
auto answering(const std::string &answer) {
    return [answer](int line) {
        char byte = 0;
        if (read(line, &byte, 1) == 1 && byte == 0x7F)
            EXPECT_EQ(write(line, answer.data(), answer.size()), static_cast<ssize_t>(answer.size()));
    };
}

// The whole examination of a port whose far end does that.
Diagnosis examined(Pty &port, std::function<void(int)> farEnd) {
    // So that the far end's thread does not read EIO before we have opened.
    const int kept = ::open(port.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (farEnd)
        port.farEnd(std::move(farEnd));
    const Person person = Person::self();
    Diagnosis diagnosis = examine(portOf(port.path(), Machine()), {Machine(), person, {}, true});
    ::close(kept);
    return diagnosis;
}

std::string measured(const Diagnosis &diagnosis, Cause cause) {
    for (const Check &check : diagnosis.checks())
        if (check.row != nullptr && check.row->cause == cause)
            return check.measured;
    return "none";
}

TEST(DoctorSerial, KernelWritesItsMessagesToIt) {
    const FakeMachine fake;
    fake.file("/sys/class/tty/console/active", "tty0 ttyUSB1\n");
    EXPECT_TRUE(systemOf(fake).has(Cause::kernelConsole));
    fake.file("/sys/class/tty/console/active", "tty0 ttyUSB11\n");
    EXPECT_TRUE(systemOf(fake).isHealthy());
}

TEST(DoctorSerial, LatencyTimer) {
    const FakeMachine fake;
    fake.file("/sys/bus/usb-serial/devices/ttyUSB1/latency_timer", "16\n");
    const Diagnosis slow = systemOf(fake);
    EXPECT_EQ(measured(slow, Cause::latency), "16 ms");
    EXPECT_EQ(slow.first()->cure, "echo 1 > /sys/bus/usb-serial/devices/ttyUSB1/latency_timer");
    fake.file("/sys/bus/usb-serial/devices/ttyUSB1/latency_timer", "1\n");
    EXPECT_TRUE(systemOf(fake).isHealthy());
}

TEST(DoctorSerial, ModemManagerIsNotToldToIgnoreIt) {
    const FakeMachine fake;
    plugIn(fake);
    EXPECT_TRUE(systemOf(fake).isHealthy()) << "it does not run";
    fake.file("/proc/77/comm", "ModemManager\n");
    const Diagnosis diagnosis = systemOf(fake);
    EXPECT_EQ(measured(diagnosis, Cause::grabberRuns), "runs and is not told to ignore 1a86:7523");
    EXPECT_EQ(diagnosis.first()->name, "ModemManager");
    EXPECT_EQ(diagnosis.first()->cure, "a udev rule: SUBSYSTEM==\"tty\", ATTRS{idVendor}==\"1a86\", "
                                       "ATTRS{idProduct}==\"7523\", ENV{ID_MM_PORT_IGNORE}=\"1\"");
    fake.file("/run/udev/data/c188:1", "E:ID_BUS=usb\nE:ID_MM_PORT_IGNORE=1\n");
    EXPECT_TRUE(systemOf(fake).isHealthy()) << "it is told";
}

TEST(DoctorSerial, NothingComesBackAndNoLinesToPullAtReset) {
    Pty port;
    const Diagnosis diagnosis = examined(port, {});
    EXPECT_TRUE(diagnosis.has(Cause::silence));
    EXPECT_TRUE(diagnosis.has(Cause::noControlLines));
}

TEST(DoctorSerial, EchoOfTheOpeningByte) {
    Pty port;
    EXPECT_EQ(measured(examined(port, answering("\x7F")), Cause::echo), "7F itself came back: 7F");
}

TEST(DoctorSerial, BytesThatAreNoAnswer) {
    Pty port;
    EXPECT_EQ(measured(examined(port, answering("\xF8\x80")), Cause::wrongRate), "bytes came, none is 79 or 1F: F8 80");
}

TEST(DoctorSerial, MoreThanAnAnswer) {
    Pty port;
    EXPECT_EQ(measured(examined(port, answering("\xF8\x79")), Cause::unsteady), "more than an answer came: F8 79");
}

TEST(DoctorSerial, AnAnswerAndNothingAfterIt) {
    Pty port;
    const Diagnosis diagnosis = examined(port, [&port](int line) {
        answering("\x79")(line);
        char byte = 0;
        EXPECT_EQ(read(line, &byte, 1), 1); // the library's first
        port.unplug();
    });
    EXPECT_EQ(measured(diagnosis, Cause::unsteady), "it answered 7F, and no command");
}

TEST(DoctorSerial, ProgramTalksUnasked) {
    Pty port;
    const std::string text = "Hello, how are you today?";
    std::atomic<bool> isHeard{false};
    port.farEnd([&](int line) {
        while (!isHeard && write(line, text.data(), text.size()) > 0)
            poll(nullptr, 0, 10);
    });
    Diagnosis diagnosis;
    EXPECT_FALSE(judgeHeard(listenTo(port.path(), {}), diagnosis));
    isHeard = true;
    EXPECT_EQ(measured(diagnosis, Cause::talksUnasked).substr(0, 32), "bytes came before any was sent: ");
}

TEST(DoctorSerial, DeviceThatIsGone) {
    Pty port;
    const int kept = ::open(port.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const std::string path = "/proc/self/fd/" + std::to_string(kept);
    port.unplug();
    Diagnosis diagnosis;
    EXPECT_FALSE(judgeHeard(listenTo(path, {}), diagnosis));
    EXPECT_TRUE(diagnosis.has(Cause::gone));
    ::close(kept);
}

TEST(DoctorSerial, DeviceThatIsNoSerialPort) {
    Diagnosis diagnosis;
    EXPECT_FALSE(judgeHeard(listenTo("/dev/null", {}), diagnosis));
    EXPECT_TRUE(diagnosis.has(Cause::notAPort));
}

TEST(DoctorSerial, AnswersOfABootloader) {
    for (const char *answer : {"\x79", "\x1F"}) {
        Pty port;
        const int kept = ::open(port.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        port.farEnd(answering(answer));
        Diagnosis diagnosis;
        EXPECT_TRUE(judgeHeard(listenTo(port.path(), {}), diagnosis));
        EXPECT_TRUE(diagnosis.isHealthy());
        ::close(kept);
    }
}

TEST(DoctorSerial, LinesAreToldOf) {
    Heard heard;
    heard.hasLines = true;
    heard.lines = "DTR high";
    Diagnosis diagnosis;
    EXPECT_FALSE(judgeHeard(heard, diagnosis));
    EXPECT_TRUE(diagnosis.has(Cause::silence));
    EXPECT_FALSE(diagnosis.has(Cause::noControlLines));
}

} // namespace
