#pragma once

#include <string>
#include <vector>

#include "programs/machine/Machine.h"

// Where a chip could be.
enum class PortKind { serial, i2c, spi, can, usb };

struct Port {
    PortKind kind;
    std::string name; // as the system calls it: ttyUSB0, i2c-1, spidev0.0, can0, 1-2.1
    std::string path; // of the node; empty for what has none
};

// What a person calls a port: a path, or a name. "usb" before its place on the bus: 1-2.1.
Port portOf(const std::string &word, const Machine &machine);

// All that are there, by kind, sorted. Adapters without their node are there too.
std::vector<Port> allPorts(const Machine &machine);
