// bare-client PORT BAUD FILE
//
// Connects to a chip over USART, erases the sectors for FILE one by one, as the console does, writes it to 08000000,
// reads it back and compares. Nothing is repeated and nothing is waited for but the answers: what any programmer has
// to do at least. The sectors are of 2 KB. Ends with 1 when something else comes than has to.

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <vector>

#include <asm/termbits.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "libs/zvbl/wire/Wire.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t sectorSize = 2048;
constexpr unsigned longestJob = 600; // seconds

int g_port = -1;

void demand(bool right, const char *what) {
    if (right)
        return;
    std::fprintf(stderr, "bare-client: %s\n", what);
    std::exit(1);
}

// 8 data bits, even parity, one stop bit, raw.
void open(const char *name, unsigned baud) {
    g_port = ::open(name, O_RDWR | O_NOCTTY);
    termios2 line{};
    line.c_cflag = CS8 | PARENB | CREAD | CLOCAL | BOTHER | (BOTHER << IBSHIFT);
    line.c_ispeed = line.c_ospeed = baud;
    line.c_cc[VMIN] = 1;
    demand(g_port >= 0 && ioctl(g_port, TCSETS2, &line) == 0, "no such port");
}

void send(const Bytes &bytes) {
    demand(::write(g_port, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "cannot send");
}

void receive(std::uint8_t *bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t length = ::read(g_port, bytes, count);
        demand(length > 0, "cannot receive");
        bytes += length;
        count -= static_cast<std::size_t>(length);
    }
}

std::uint8_t answer() {
    std::uint8_t byte = 0;
    receive(&byte, 1);
    return byte;
}

void ask(Bytes group) {
    send(group);
    demand(answer() == wire::ack, "refused");
}

void askChecked(Bytes group) {
    std::uint8_t sum = 0;
    for (const std::uint8_t byte : group)
        sum ^= byte;
    group.push_back(sum);
    ask(group);
}

std::uint8_t low(std::size_t number) {
    return static_cast<std::uint8_t>(number);
}

void command(std::uint8_t opcode) {
    ask({opcode, low(~opcode)});
}

void commandAt(std::uint8_t opcode, std::size_t offset) {
    command(opcode);
    const std::size_t address = wire::flashBase + offset;
    askChecked({low(address >> 24), low(address >> 16), low(address >> 8), low(address)});
}

void connect() {
    send({wire::sync});
    const std::uint8_t first = answer();
    demand(first == wire::ack || first == wire::nack, "no bootloader");
}

void erase(std::size_t sectors) {
    for (std::size_t i = 0; i < sectors; ++i) {
        command(wire::opEraseExt);
        askChecked({0, 0, low(i >> 8), low(i)});
    }
}

void write(const Bytes &image) {
    for (std::size_t done = 0; done < image.size(); done += wire::maxPacket) {
        commandAt(wire::opWrite, done);
        Bytes group{low(wire::maxPacket - 1)};
        group.insert(group.end(), image.begin() + static_cast<std::ptrdiff_t>(done),
                     image.begin() + static_cast<std::ptrdiff_t>(done + wire::maxPacket));
        askChecked(group);
    }
}

void compare(const Bytes &image) {
    Bytes back(wire::maxPacket);
    for (std::size_t done = 0; done < image.size(); done += wire::maxPacket) {
        commandAt(wire::opRead, done);
        ask({low(wire::maxPacket - 1), low(~(wire::maxPacket - 1))});
        receive(back.data(), back.size());
        demand(std::equal(back.begin(), back.end(), image.begin() + static_cast<std::ptrdiff_t>(done)), "differs");
    }
}

} // namespace

int main(int argc, char **argv) {
    demand(argc == 4, "usage: bare-client PORT BAUD FILE");
    alarm(longestJob);
    std::ifstream file(argv[3], std::ios::binary);
    const Bytes image((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    demand(!image.empty() && image.size() % sectorSize == 0, "no image of whole sectors");
    open(argv[1], static_cast<unsigned>(std::atoi(argv[2])));
    connect();
    erase(image.size() / sectorSize);
    write(image);
    compare(image);
    return 0;
}
