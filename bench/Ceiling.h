#pragma once

namespace bench {

// What a link could carry if it never rested: bytes of flash a second, from what the packets of
// docs/wire-protocol.md take on its wire and nothing else.
struct Ceiling {
    double download;
    double upload;
    double data; // what its wire takes of bytes alone, without framing, groups and answers
};

Ceiling usartCeiling(double baud);
Ceiling i2cCeiling(double hertz);
Ceiling spiCeiling(double hertz);
Ceiling canCeiling(double bitsPerSecond);
Ceiling dfuCeiling();           // full speed
double canFrameBits(int bytes); // of a data frame with an 11-bit identifier
double dfuShortTransfer();      // milliseconds of a control transfer of one byte

} // namespace bench
