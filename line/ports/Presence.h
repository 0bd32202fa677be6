#pragma once

#include <string>

#include "line/station/Link.h"
#include "programs/machine/Machine.h"

// What is at a port at this moment.
struct Presence {
    std::string identity; // changes with every plugging in; empty where nothing is
    bool mayOpen = false; // by this process
    std::string serial;   // number of a device on USB
};

// Opens nothing and sends nothing. A node has to be a device, something on USB has to have a DFU interface.
Presence presenceAt(const std::string &port, LinkKind kind, const Machine &machine);
