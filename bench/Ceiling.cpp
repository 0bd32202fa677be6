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

// Frames of CAN with 11-bit identifiers take 47 bits and 8 a byte, before stuffing.
double canBits(double bytes) {
    const double frames = static_cast<double>((static_cast<int>(bytes) + 7) / 8);
    return 47 * frames + 8 * bytes;
}

} // namespace

// Start, eight data bits, parity, stop.
Ceiling usartCeiling(double baud) {
    constexpr double bits = 11;
    return {packet * baud / bits / writeBytes, packet * baud / bits / readBytes};
}

// Nine bits a byte; a transfer has an address byte, a start and a stop.
Ceiling i2cCeiling(double hertz) {
    const auto bits = [](double bytes, double transfers) { return 9 * (bytes + transfers) + 2 * transfers; };
    return {packet * hertz / bits(writeBytes, 6), packet * hertz / bits(readBytes, 7)};
}

// Each group and each answer has a start byte; while an answer is fetched, nothing else travels; the
// reply of a READ has a check byte.
Ceiling spiCeiling(double hertz) {
    constexpr double bits = 8;
    return {packet * hertz / bits / (writeBytes + 6), packet * hertz / bits / (readBytes + 7 + 1)};
}

Ceiling canCeiling(double bitsPerSecond) {
    const double open = 47 + canBits(answer) + canBits(address) + canBits(answer);
    const double write = open + canBits(writeGroup) + canBits(answer);
    const double read = open + canBits(readGroup) + canBits(answer) + canBits(packet + 1);
    return {packet * bitsPerSecond / write, packet * bitsPerSecond / read};
}

// A frame of 1 ms has room for 19 packets of 64 bytes of a control transfer; its setup and status take half
// a packet. A block to write is followed by two GETSTATUS, which have one short packet each.
Ceiling dfuCeiling() {
    constexpr double block = 2048; // wTransferSize, a sector
    constexpr double packetsOfBlock = block / 64;
    constexpr double packetsPerSecond = 19 * 1000;
    constexpr double upload = packetsOfBlock + 0.5;
    constexpr double download = upload + 2 * 1.5;
    return {block * packetsPerSecond / download, block * packetsPerSecond / upload};
}

} // namespace bench
