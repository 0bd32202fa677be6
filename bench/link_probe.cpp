// link-probe TYPE PORT BAUD RATE SPEED KILOBYTES
//
// Writes a stretch of the chip's flash over one link, verifies it, by checksum and by reading, and reads it
// back. Prints the bytes a second of writing and reading, and of writing and verifying as multiples of the
// time of writing alone. TYPE is the interface type; BAUD, RATE and SPEED are what SetCOMSettings, ZVBL_Init_BL and
// ZVBL_SetSpeed are given. Ends with 1 when a call fails or other bytes come back.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "link/ZVBLLIB.h"

namespace {

constexpr unsigned char usart = 0;
constexpr unsigned char usbDfu = 1;
constexpr unsigned char can = 3;
constexpr unsigned flash = 0x08000000;

struct Wishes {
    unsigned char type;
    const char *port;
    int baud;
    unsigned long rate;
    unsigned long speed;
    std::size_t bytes;
};

void demand(unsigned char status, const char *call) {
    if (status != 0) {
        std::fprintf(stderr, "link-probe: %s answers %u\n", call, status);
        std::exit(1);
    }
}

// The link word of an open link with a chip in its command state.
HANDLE connect(const Wishes &wishes) {
    HANDLE link = nullptr;
    TARGET_SetComIntType(wishes.type);
    if (wishes.type == usbDfu) {
        signed char count = 99;
        static unsigned short vendors[255];
        static unsigned short products[255];
        static TDeviceInfo info;
        demand(ZVBL_GetZVDeviceList(&count, vendors, products, &info), "ZVBL_GetZVDeviceList");
    } else {
        demand(SetCOMSettings(&link, 1, wishes.port, wishes.baud, 8, 2, 1.0F), "SetCOMSettings");
    }
    demand(Interface_Open(link), "Interface_Open");
    if (wishes.type != usbDfu)
        demand(ZVBL_Init_BL(link, 0, wishes.rate, 0), "ZVBL_Init_BL");
    if (wishes.type == can)
        demand(ZVBL_SetSpeed(link, wishes.speed), "ZVBL_SetSpeed");
    if (wishes.type == usart)
        demand(ZVBL_ZV32ISP_TOOL(link), "ZVBL_ZV32ISP_TOOL");
    BYTE version = 0;
    Commands commands;
    demand(ZVBL_GET(link, &version, &commands), "ZVBL_GET");
    return link;
}

// Sector by sector, as the console does it.
constexpr unsigned sector = 2048;

void download(HANDLE link, std::vector<unsigned char> &data) {
    for (unsigned done = 0; done < data.size(); done += sector)
        demand(ZVBL_DNLOAD(link, flash + done, data.data() + done, sector, 0), "ZVBL_DNLOAD");
}

void verify(HANDLE link, std::vector<unsigned char> &data, const char *by) {
    setenv("ZVBL_VERIFY_BY", by, 1);
    for (unsigned done = 0; done < data.size(); done += sector)
        demand(ZVBL_VERIFY(link, flash + done, data.data() + done, sector, 0), "ZVBL_VERIFY");
}

template <class Call>
double bytesPerSecond(std::size_t bytes, Call call) {
    const auto start = std::chrono::steady_clock::now();
    call();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    return static_cast<double>(bytes) / took.count();
}

int measure(const Wishes &wishes) {
    std::vector<unsigned char> data(wishes.bytes);
    std::mt19937 random(4711);
    for (unsigned char &byte : data)
        byte = static_cast<unsigned char>(random());
    const HANDLE link = connect(wishes);
    demand(ZVBL_ERASE(link, 0xFFFE, nullptr, 0), "ZVBL_ERASE");
    const auto length = static_cast<unsigned>(data.size());
    const double down = bytesPerSecond(data.size(), [&] { download(link, data); });
    const double byCrc = bytesPerSecond(data.size(), [&] { verify(link, data, "crc"); });
    const double byReading = bytesPerSecond(data.size(), [&] { verify(link, data, "read"); });
    unsetenv("ZVBL_VERIFY_BY");
    std::vector<unsigned char> back(data.size());
    const double up =
        bytesPerSecond(data.size(), [&] { demand(ZVBL_UPLOAD(link, flash, back.data(), length), "ZVBL_UPLOAD"); });
    demand(Interface_Close(link), "Interface_Close");
    std::printf("%.1f %.1f %.4f %.4f\n", down, up, 1 + down / byCrc, 1 + down / byReading);
    return back == data ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 7) {
        std::fprintf(stderr, "usage: link-probe TYPE PORT BAUD RATE SPEED KILOBYTES\n");
        return 2;
    }
    return measure({static_cast<unsigned char>(std::atoi(argv[1])), argv[2], std::atoi(argv[3]),
                    std::strtoul(argv[4], nullptr, 10), std::strtoul(argv[5], nullptr, 10),
                    std::strtoul(argv[6], nullptr, 10) * 1024});
}
