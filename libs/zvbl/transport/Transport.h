#pragma once

#include <string>

#include "libs/zvbl/Status.h"

namespace zvbl {

// What SetCOMSettings told of a link.
struct LinkSettings {
    int portNumber = 0;
    std::string portName;
    int baud = 115200;
    int dataBits = 8;
    int parity = 2; // 0 none, 1 odd, 2 even
    float stopBits = 1.0F;
};

enum class ControlLine { dtr, rts };

// One open port of a link. It is made closed, opened once, and closed by its destruction. How bytes
// travel through it is known to the framing that goes with it.
class Transport {
public:
    virtual ~Transport() = default;
    virtual Status open(const LinkSettings &settings) = 0;
    virtual Status reconfigure(const LinkSettings &settings) = 0; // of the open port; the name stays
    virtual Status setLine(ControlLine line, bool high) = 0;      // gone: the port has no such line
};

} // namespace zvbl
