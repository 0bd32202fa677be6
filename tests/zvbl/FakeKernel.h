#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "libs/zvbl/Timing.h"
#include "libs/zvbl/Trace.h"
#include "libs/zvbl/transport/Transport.h"

// A kernel that answers the calls of the ports in this program: the linker catches them (CMakeLists.txt).
using Message = std::vector<char>;

struct Failure {
    unsigned after; // calls that work before it
    int error;
};

// Whatever is not told to fail works, and what is received is what was put there.
struct Kernel {
    std::map<std::string, Failure> failing;
    std::deque<Message> received; // an empty one ends with EINTR
    std::deque<Message> answers;  // what can be read after each write
    std::deque<Message> said;     // and was not read yet
    bool babbles = false;         // then there is always something to read
    unsigned newNode = 0;         // the node has another inode since
    unsigned newDevice = 0;       // or lies on another device
};

extern Kernel *kernel; // null: the real one writes, and no other call is made

namespace zvbl {

class SystemCallsTest : public ::testing::Test {
protected:
    void SetUp() override { kernel = &fake; }
    void TearDown() override { kernel = nullptr; }

    void fail(const char *call, int error, unsigned after = 0) { fake.failing[call] = {after, error}; }
    static TimePoint soon() { return Clock::now() + std::chrono::milliseconds(20); }

    Kernel fake;
    Trace trace{"can0", "CAN"};
    LinkSettings settings{0, "can0"};
};

} // namespace zvbl
