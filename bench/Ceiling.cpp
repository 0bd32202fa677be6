#include "bench/Ceiling.h"

namespace bench {
namespace {

constexpr double packet = 256; // data bytes of a READ or WRITE

// The bytes of the groups and answers of one packet, check bytes included.
constexpr double opcode = 2;
constexpr double address = 5;
constexpr double answer = 1;
constexpr double writeGroup = 1 + packet + 1;
constexpr double readGroup = 2;

constexpr double writeBytes = opcode + address + writeGroup + 3 * answer;
constexpr double readBytes = opcode + address + readGroup + 3 * answer + packet;

// Whole frames of 8 bytes, and one for the rest.
double canBits(int bytes) {
    return bytes / 8 * canFrameBits(8) + (bytes % 8 > 0 ? canFrameBits(bytes % 8) : 0);
}

} // namespace

// 34 bits and the data, a stuffed bit for every tenth of those, and 13 that are never stuffed.
double canFrameBits(int bytes) {
    const int stuffable = 34 + 8 * bytes;
    return stuffable + stuffable / 10 + 13;
}

// Start, eight data bits, parity, stop.
Ceiling usartCeiling(double baud) {
    constexpr double bits = 11;
    return {packet * baud / bits / writeBytes, packet * baud / bits / readBytes, baud / bits};
}

// Nine bits a byte; a transfer has an address byte, a start and a stop.
Ceiling i2cCeiling(double hertz) {
    const auto bits = [](double bytes, double transfers) { return 9 * (bytes + transfers) + 2 * transfers; };
    return {packet * hertz / bits(writeBytes, 6), packet * hertz / bits(readBytes, 7), hertz / 9};
}

// Each group and each answer has a start byte; while an answer is fetched, nothing else travels; the
// reply of a READ has a check byte.
Ceiling spiCeiling(double hertz) {
    constexpr double bits = 8;
    return {packet * hertz / bits / (writeBytes + 6), packet * hertz / bits / (readBytes + 7 + 1), hertz / bits};
}

Ceiling canCeiling(double bitsPerSecond) {
    const auto bits = [](double bytes) { return canBits(static_cast<int>(bytes)); };
    const double open = canFrameBits(0) + bits(answer) + bits(address) + bits(answer);
    const double write = open + bits(writeGroup) + bits(answer);
    const double read = open + bits(readGroup) + bits(answer) + bits(packet + 1);
    return {packet * bitsPerSecond / write, packet * bitsPerSecond / read, bitsPerSecond / 8};
}

// A frame of 1 ms has room for 19 packets of 64 bytes of a control transfer; its setup and status take half
// a packet. A block to write is followed by two GETSTATUS, which have one short packet each.
constexpr double packetsPerFrame = 19;
constexpr double packetsOfShortTransfer = 1.5;

Ceiling dfuCeiling() {
    constexpr double block = 2048; // wTransferSize, a sector
    constexpr double packetsOfBlock = block / 64;
    constexpr double packetsPerSecond = packetsPerFrame * 1000;
    constexpr double upload = packetsOfBlock + 0.5;
    constexpr double download = upload + 2 * packetsOfShortTransfer;
    return {block * packetsPerSecond / download, block * packetsPerSecond / upload, packetsPerSecond * 64};
}

double dfuShortTransfer() {
    return packetsOfShortTransfer / packetsPerFrame;
}

} // namespace bench
