#pragma once

#include "look/doctor/Cause.h"
#include "look/doctor/Person.h"
#include "look/doctor/SerialChecks.h"
#include "programs/machine/Machine.h"
#include "programs/machine/Ports.h"

// Who looks, and how.
struct Examination {
    const Machine &machine;
    const Person &person;
    LineSetting line;
    bool speaks; // opens the port and asks for a bootloader; else nothing is opened or sent
};

Diagnosis examine(const Port &port, const Examination &how);
