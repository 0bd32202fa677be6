// The pseudo terminal of a simulated serial port.

#include "sim/ports/pty/Pty.h"

#include <cstdlib>
#include <filesystem>
#include <iterator>

#include <gtest/gtest.h>

namespace sim {
namespace {

std::ptrdiff_t openFiles() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

TEST(PtyTest, NothingOfItIsLeftOpen) {
    char name[] = "/tmp/zv32-pty-XXXXXX";
    const std::string directory = mkdtemp(name);
    const std::ptrdiff_t before = openFiles();
    Pty pty;
    std::string error;
    ASSERT_TRUE(pty.open(directory + "/port", error)) << error;
    EXPECT_GT(openFiles(), before);
    pty.close();
    EXPECT_EQ(openFiles(), before);
    std::filesystem::remove_all(directory);
}

} // namespace
} // namespace sim
