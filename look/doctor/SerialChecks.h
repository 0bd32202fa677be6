#pragma once

#include <string>
#include <vector>

#include "look/doctor/Cause.h"
#include "look/doctor/NodeChecks.h"
#include "programs/machine/Machine.h"

// What the system does with a serial port. Opens nothing.
void checkSerialSystem(const Node &node, const Machine &machine, Diagnosis &diagnosis);

// What came back from a serial port.
struct Heard {
    int openError = 0;             // errno; 0: it opened
    bool isTerminal = true;        // it is a serial port at all
    bool hasLines = false;         // it has DTR and RTS
    bool isGone = false;           // the other side hung up
    std::string lines;             // how they stand
    std::vector<unsigned> unasked; // bytes that came before any was sent
    std::vector<unsigned> answer;  // after the opening byte
};

struct LineSetting {
    unsigned baud = 115200;
    char parity = 'e'; // e, o or n
};

// Opens the port, listens, sends the one byte that opens a bootloader, and listens again: 0.6 seconds at most.
Heard listenTo(const std::string &path, const LineSetting &setting);

// True where a bootloader answered.
bool judgeHeard(const Heard &heard, Diagnosis &diagnosis);
