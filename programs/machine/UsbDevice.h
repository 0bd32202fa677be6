#pragma once

#include <string>

#include "programs/machine/Machine.h"

// Devices on USB by their place, as "1-2.1": the bus, and the ports on the way to it.

// A file of the device in /sys; empty if it can't be read.
std::string usbAttribute(const Machine &machine, const std::string &place, const char *which);

// The node by which it is opened, /dev/bus/usb/BUS/DEVICE.
std::string usbNodeOf(const std::string &place, const Machine &machine);

// The interface by which firmware is exchanged (class FE, subclass 01 of the USB standard); empty if there is none.
std::string dfuInterfaceOf(const std::string &place, const Machine &machine);

bool isDfuDevice(const std::string &place, const Machine &machine);
