#pragma once

namespace zvbl {

// The part of rtnetlink that a CAN interface needs. Each call answers an errno, 0 for done.

// Reads the bit rate; 0 if the interface has none of its own, as a virtual one.
int readCanBitRate(int interfaceIndex, unsigned &bitsPerSecond);

// Whether this process may change the interface: EPERM without CAP_NET_ADMIN.
int mayChangeCanInterface(int interfaceIndex);

// Takes the interface down, sets the rate, and takes it up again, also after a failure.
int setCanBitRate(int interfaceIndex, unsigned bitsPerSecond);

} // namespace zvbl
