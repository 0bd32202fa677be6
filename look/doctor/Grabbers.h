#pragma once

#include <string>
#include <vector>

// Programs that open every new serial port on their own.
struct Grabber {
    const char *process;
    const char *stop; // the line that stops it
    // What udev says of a port that it leaves alone; empty where it can't be told to.
    const char *ignored;
};

const std::vector<Grabber> &grabbers();
// Null for a process that is none.
const Grabber *grabberOf(const std::string &process);
