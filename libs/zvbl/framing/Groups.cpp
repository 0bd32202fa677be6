#include "libs/zvbl/framing/Groups.h"

namespace zvbl {

std::uint8_t sumOf(const Bytes &bytes) {
    std::uint8_t sum = 0;
    for (const std::uint8_t byte : bytes)
        sum ^= byte;
    return sum;
}

Bytes encodeOpcode(std::uint8_t opcode) {
    return {opcode, static_cast<std::uint8_t>(~opcode)};
}

Bytes encodeGroup(const Group &group, const Reply &reply) {
    Bytes bytes;
    if (group.counted) {
        const std::size_t count = group.bytes.empty() ? reply.size : group.bytes.size();
        bytes.push_back(static_cast<std::uint8_t>(count - 1));
    }
    bytes.insert(bytes.end(), group.bytes.begin(), group.bytes.end());
    const std::uint8_t sum = sumOf(bytes);
    bytes.push_back(group.check == Check::complement ? static_cast<std::uint8_t>(~sum) : sum);
    return bytes;
}

} // namespace zvbl
