// Images that are too large to lie in a file of a test: room for their bytes is asked for, and hardly written.

#include "libs/files/RunCollector.h"

#include <gtest/gtest.h>

namespace files {
namespace {

constexpr std::size_t megabyte = 1024 * 1024;
constexpr std::size_t settledBetween = 16; // megabytes

// So many megabytes from an address on.
Status commit(RunCollector &runs, std::uint64_t address, std::size_t megabytes) {
    Status status = Status::ok;
    for (std::size_t i = 0; i < megabytes && status == Status::ok; ++i) {
        runs.room(megabyte);
        status = runs.commit(address + i * megabyte, megabyte);
    }
    return status;
}

TEST(RunCollectorTest, AnImageHasALargestSize) {
    RunCollector runs;
    EXPECT_EQ(commit(runs, 0x08000000, maxImageSize / megabyte), Status::ok);
    EXPECT_EQ(commit(runs, 0x08000000 + maxImageSize, 1), Status::badAddressRange);
}

TEST(RunCollectorTest, RunsThatContradictEachOtherShowInBetween) {
    RunCollector runs;
    EXPECT_EQ(commit(runs, 0, settledBetween), Status::ok);
    *runs.room(megabyte) = 1;
    EXPECT_EQ(runs.commit(0, megabyte), Status::badFormat);
}

TEST(RunCollectorTest, ARunEndsWithTheAddresses) {
    RunCollector runs;
    EXPECT_EQ(commit(runs, addressSpace - megabyte, 1), Status::ok);
    EXPECT_EQ(commit(runs, addressSpace, 1), Status::badAddressRange);
}

} // namespace
} // namespace files
