#pragma once

#include <deque>
#include <string>
#include <vector>

#include <libusb.h>

#include "libs/zvbl/Bytes.h"

// A libusb that the test plays: the linker catches its calls (CMakeLists.txt). It has one device, with one interface of
// one alternate setting.

// A control transfer that is expected: the request, and what comes back. That is bytes from the device, or as many as
// were sent to it, or an error.
struct UsbTransfer {
    int request;
    int error = 0;
    zvbl::Bytes data{};
    int less = 0; // so many bytes were not taken
};

struct FakeUsb {
    FakeUsb();
    FakeUsb(const FakeUsb &) = delete;
    FakeUsb &operator=(const FakeUsb &) = delete;

    // What its calls give: 0, or an error.
    int init = 0;
    int list = 0;
    int describe = 0;
    int configure = 0;
    int open = 0;
    int claim = 0;
    int alternate = 0;

    libusb_device_descriptor device{};
    libusb_interface_descriptor settings[2] = {};
    libusb_interface interfaces[2] = {};
    libusb_config_descriptor configuration{};
    zvbl::Bytes functional;

    std::deque<UsbTransfer> transfers;
    std::string wrong; // what was not expected
    int held = 0;      // what is open or taken and was not given back
};

extern FakeUsb *fakeUsb;
