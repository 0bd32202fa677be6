#include <cstdio>
#include <cstdlib>

#include "bench/BareLink.h"
#include "libs/zvbl/wire/Wire.h"

namespace bench {
namespace {

std::uint8_t low(std::size_t number) {
    return static_cast<std::uint8_t>(number);
}

constexpr std::size_t packet = wire::maxPacket;

} // namespace

void demand(bool right, const char *what) {
    if (right)
        return;
    std::fprintf(stderr, "bare-client: %s\n", what);
    std::exit(1);
}

std::size_t BareGroups::packetSize() const {
    return packet;
}

void BareGroups::command(std::uint8_t opcode) {
    ask(opcode, {opcode, low(~opcode)});
}

void BareGroups::askChecked(std::uint8_t opcode, Bytes group) {
    std::uint8_t sum = 0;
    for (const std::uint8_t byte : group)
        sum ^= byte;
    group.push_back(sum);
    ask(opcode, group);
}

void BareGroups::commandAt(std::uint8_t opcode, std::size_t offset) {
    command(opcode);
    const std::size_t address = wire::flashBase + offset;
    askChecked(opcode, {low(address >> 24), low(address >> 16), low(address >> 8), low(address)});
}

void BareGroups::erase(std::size_t) {
    command(wire::opEraseExt);
    askChecked(wire::opEraseExt, {low(wire::eraseBank1 >> 8), low(wire::eraseBank1)});
}

void BareGroups::write(std::size_t offset, const std::uint8_t *data) {
    commandAt(wire::opWrite, offset);
    Bytes group{low(packet - 1)};
    group.insert(group.end(), data, data + packet);
    askChecked(wire::opWrite, group);
}

void BareGroups::read(std::size_t offset, std::uint8_t *data) {
    commandAt(wire::opRead, offset);
    ask(wire::opRead, {low(packet - 1), low(~(packet - 1))}, data, packet);
}

} // namespace bench
