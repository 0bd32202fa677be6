// Causes that every node can have.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include "look/doctor/NodeChecks.h"
#include "tests/look/DoctorPlace.h"

namespace {

Node tty(const std::string &path) {
    return {"ttyUSB0", path, "tty"};
}

// All words of a diagnosis, a line for each check.
std::string text(const Diagnosis &diagnosis) {
    std::string all;
    for (const Check &check : diagnosis.checks())
        all += check.name + ": " + check.measured + (check.cure.empty() ? "" : " -- " + check.cure) + "\n";
    return all;
}

struct stat nodeOf(mode_t mode, gid_t group) {
    struct stat node {};
    node.st_mode = S_IFCHR | mode;
    node.st_gid = group;
    return node;
}

TEST(DoctorCauses, EveryCauseHasItsRowAtItsPlace) {
    const auto &rows = causeRows();
    for (std::size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ(static_cast<std::size_t>(rows[i].cause), i) << rows[i].check << ": " << rows[i].cure;
    EXPECT_EQ(rows.back().cause, Cause::latency);
}

TEST(DoctorCauses, TheFirstIsThatOfTheLowestRow) {
    Diagnosis diagnosis;
    EXPECT_TRUE(diagnosis.isHealthy());
    diagnosis.found(Cause::latency, "16 ms", {"F"});
    diagnosis.found(Cause::held, "cat, pid 1");
    EXPECT_EQ(diagnosis.first()->row->cause, Cause::held);
    EXPECT_EQ(text(diagnosis), "latency: 16 ms -- echo 1 > F\nheld by: cat, pid 1 -- close it\n");
}

TEST(DoctorNode, MissingNode) {
    Diagnosis diagnosis;
    EXPECT_FALSE(checkPlace(tty("/dev/no-such-port"), diagnosis));
    EXPECT_TRUE(diagnosis.has(Cause::noPort));
}

TEST(DoctorNode, FileInThePlaceOfANode) {
    const FakeMachine fake;
    fake.file("/dev/ttyUSB0", "");
    Diagnosis diagnosis;
    EXPECT_FALSE(checkPlace(tty(fake.root() + "/dev/ttyUSB0"), diagnosis));
    EXPECT_TRUE(diagnosis.has(Cause::notAPort));
}

TEST(DoctorNode, WhyTheKernelSaysNo) {
    const Person person{"ann", 1000, {1000}, {1000, 20}};
    EXPECT_EQ(whyDenied(nodeOf(0600, 0), person), Cause::noGroup);
    EXPECT_EQ(whyDenied(nodeOf(0660, 0), person), Cause::noGroup) << "nobody is to be put into the group of root";
    EXPECT_EQ(whyDenied(nodeOf(0640, 21), person), Cause::noGroup) << "the group may only read";
    EXPECT_EQ(whyDenied(nodeOf(0660, 21), person), Cause::notInGroup);
    EXPECT_EQ(whyDenied(nodeOf(0660, 20), person), Cause::oldLogin);
}

// The same at a real port, by somebody who is not root and owns nothing.
TEST(DoctorNode, PortOfSomebodyElse) {
    const Pty port;
    ASSERT_EQ(chmod(port.path().c_str(), 0), 0);
    EXPECT_TRUE(asNobody([&port] {
        Diagnosis diagnosis;
        return !checkPermission(tty(port.path()), Person::self(), diagnosis) && diagnosis.has(Cause::noGroup);
    }));
}

TEST(DoctorNode, CuresNameGroupAndPerson) {
    Diagnosis diagnosis;
    diagnosis.found(Cause::notInGroup, "no", {"dialout", "ann"});
    diagnosis.found(Cause::oldLogin, "no", {"dialout"});
    diagnosis.found(Cause::noGroup, "no", {"spidev", "spidev0.0"});
    EXPECT_EQ(text(diagnosis), "permission: no -- usermod -aG dialout ann, and log in again\n"
                               "permission: no -- log in again, or: newgrp dialout\n"
                               "permission: no -- a udev rule: SUBSYSTEM==\"spidev\", KERNEL==\"spidev0.0\", "
                               "MODE=\"0660\", GROUP=\"plugdev\"\n");
}

TEST(DoctorNode, ProcessThatHoldsIt) {
    const Pty port;
    const Holder holder("minicom", port.path());
    Diagnosis diagnosis;
    EXPECT_FALSE(checkHolders(tty(port.path()), Machine(), true, diagnosis));
    EXPECT_TRUE(diagnosis.has(Cause::held));
    EXPECT_EQ(text(diagnosis), "held by: minicom, pid " + std::to_string(holder.number()) + " -- close it\n");
}

TEST(DoctorNode, LoginPromptOnIt) {
    const Pty port;
    const Holder holder("agetty", port.path());
    Diagnosis diagnosis;
    EXPECT_FALSE(checkHolders(tty(port.path()), Machine(), true, diagnosis));
    EXPECT_TRUE(diagnosis.has(Cause::loginPrompt));
    EXPECT_EQ(diagnosis.first()->cure, "systemctl disable --now serial-getty@ttyUSB0");
}

TEST(DoctorNode, ProgramThatGrabsPortsHoldsIt) {
    const Pty port;
    const Holder holder("brltty", port.path());
    Diagnosis diagnosis;
    EXPECT_FALSE(checkHolders(tty(port.path()), Machine(), true, diagnosis));
    EXPECT_TRUE(diagnosis.has(Cause::grabberHolds));
    EXPECT_EQ(diagnosis.first()->cure, "systemctl mask --now brltty-udev brltty");
}

TEST(DoctorNode, HolderThatCannotBeSeen) {
    const Pty port;
    const FakeMachine blind; // without /proc
    const int held = open(port.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    Diagnosis diagnosis;
    EXPECT_TRUE(checkHolders(tty(port.path()), blind.machine(), false, diagnosis)) << "nothing is opened";
    EXPECT_FALSE(checkHolders(tty(port.path()), blind.machine(), true, diagnosis));
    EXPECT_TRUE(diagnosis.has(Cause::heldUnseen));
    close(held);
}

TEST(DoctorNode, FreePortHasNoCause) {
    const Pty port;
    const Node node = tty(port.path());
    Diagnosis diagnosis;
    EXPECT_TRUE(checkPlace(node, diagnosis));
    EXPECT_TRUE(checkPermission(node, Person::self(), diagnosis));
    EXPECT_TRUE(checkHolders(node, Machine(), true, diagnosis));
    EXPECT_TRUE(diagnosis.isHealthy()) << text(diagnosis);
}

} // namespace
