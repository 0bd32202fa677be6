#pragma once

#include <string>
#include <vector>

#include "line/station/Station.h"
#include "programs/machine/Machine.h"

// A port of the machine, as a station file names it.
struct PluggedPort {
    LinkKind kind;
    std::string device; // as the system calls it: ttyUSB0, can0, 1-2.1
    std::string port;   // of its socket, where it has one that stays
    bool stays;         // else the port goes by the order of plugging in
    std::string nest;   // that has this port in the station; empty for none
};

// All that are there, by kind and socket.
std::vector<PluggedPort> pluggedPorts(const Station &station, const Machine &machine);

// As [[nest]] tables of a station file. Those that have no name yet get one that the station has not.
std::string nestTables(const std::vector<PluggedPort> &ports, const Station &station);
