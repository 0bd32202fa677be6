#pragma once

#include <string>

#include "look/doctor/Cause.h"
#include "look/doctor/Person.h"
#include "programs/machine/Machine.h"

// What every device node has: that it is there, who may open it and who has it open.
struct Node {
    std::string name;      // as it is called: ttyUSB0
    std::string path;      // where it is opened
    std::string subsystem; // as udev calls it: tty, i2c-dev, spidev, usb
};

// False where nothing more can be looked at: what stands there is no node.
bool checkPlace(const Node &node, Diagnosis &diagnosis);
// False where it may not be opened.
bool checkPermission(const Node &node, const Person &person, Diagnosis &diagnosis);
// False where somebody has it. Where we may open it, a lock tells of a holder that we can't see.
bool checkHolders(const Node &node, const Machine &machine, bool mayOpen, Diagnosis &diagnosis);
