// bare-transfers COUNT
//
// Asks the first DFU device for its state, and then for a block of 2048 bytes, so many times, by control transfers and
// nothing else, and prints the milliseconds that one of each takes. What the bus does not need of that is the cost of
// an emulated device.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/DfuDevice.h"

namespace {

constexpr unsigned short firstDataBlock = 2;
constexpr std::uint16_t blockSize = 2048;

// The milliseconds of one transfer; below 0 when one fails.
double time(const bench::DfuDevice &device, int count, unsigned char request, unsigned short block,
            std::uint16_t size) {
    std::vector<unsigned char> data(size);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i)
        if (!device.fetch(request, block, data.data(), size))
            return -1;
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    return took.count() / count;
}

} // namespace

int main(int argc, char **argv) {
    const int count = argc == 2 ? std::atoi(argv[1]) : 0;
    if (count <= 0) {
        std::fprintf(stderr, "usage: bare-transfers COUNT\n");
        return 2;
    }
    const bench::DfuDevice device;
    if (!device.isThere())
        return 1;
    const double state = time(device, count, bench::dfuGetState, 0, 1);
    const double block = time(device, count, bench::dfuUpload, firstDataBlock, blockSize);
    std::printf("%.4f %.4f\n", state, block);
    return state < 0 || block < 0 ? 1 : 0;
}
