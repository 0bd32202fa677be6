// bare-client LINK PORT RATE FILE
//
// Connects to a chip, erases, writes FILE to 08000000, reads it back and compares. Nothing is repeated and nothing is
// waited for but the answers: what any programmer has to do at least. FILE is of whole sectors of 2 KB; over USART they
// are erased one by one, as the console does it. Prints the bytes a second of writing and of reading. Ends with 1 when
// something else comes than has to.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <unistd.h>

#include "bench/BareLink.h"

namespace {

using bench::BareLink;
using bench::Bytes;
using bench::demand;

constexpr unsigned longestJob = 600; // seconds

struct LinkRow {
    const char *name;
    std::unique_ptr<BareLink> (*make)(const std::string &port, unsigned rate);
};

constexpr LinkRow links[] = {
    {"usart", bench::bareUsart}, {"i2c", bench::bareI2c},       {"spi", bench::bareSpi},
    {"can", bench::bareCan},     {"slcan", bench::bareAdapter}, {"dfu", bench::bareDfu},
};

std::unique_ptr<BareLink> linkOf(const std::string &name, const std::string &port, unsigned rate) {
    for (const LinkRow &row : links)
        if (name == row.name)
            return row.make(port, rate);
    return nullptr;
}

template <class Call>
double bytesPerSecond(std::size_t bytes, std::size_t step, Call call) {
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t done = 0; done < bytes; done += step)
        call(done);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    return static_cast<double>(bytes) / took.count();
}

} // namespace

int main(int argc, char **argv) {
    demand(argc == 5, "usage: bare-client LINK PORT RATE FILE");
    alarm(longestJob);
    std::ifstream file(argv[4], std::ios::binary);
    const Bytes image((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    demand(!image.empty() && image.size() % bench::sectorSize == 0, "no image of whole sectors");
    const std::unique_ptr<BareLink> link = linkOf(argv[1], argv[2], static_cast<unsigned>(std::atoi(argv[3])));
    demand(link != nullptr, "no such link");
    link->connect();
    link->erase(image.size() / bench::sectorSize);
    const std::size_t step = link->packetSize();
    const double written =
        bytesPerSecond(image.size(), step, [&](std::size_t at) { link->write(at, image.data() + at); });
    Bytes back(image.size());
    const double read = bytesPerSecond(image.size(), step, [&](std::size_t at) { link->read(at, back.data() + at); });
    demand(back == image, "differs");
    std::printf("%.1f %.1f\n", written, read);
    return 0;
}
