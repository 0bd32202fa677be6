#pragma once

#include <string>

#include "look/doctor/Cause.h"
#include "look/doctor/Person.h"
#include "programs/machine/Machine.h"

// All that is asked of it; opens nothing but to see whether it may. True where it can be spoken to.
bool checkUsb(const std::string &name, const Machine &machine, const Person &person, Diagnosis &diagnosis);

// Adapters for serial ports, I2C and CAN that no driver has, although a module of this kernel says that it knows them.
void checkAdapters(const Machine &machine, Diagnosis &diagnosis);
