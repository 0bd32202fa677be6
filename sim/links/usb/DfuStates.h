#pragma once

#include "sim/links/usb/DfuDevice.h"

namespace sim {

// The rows of the tables of DfuDevice: its requests, and which of them fits which state.

constexpr std::uint8_t toInterface = 0x21; // class requests
constexpr std::uint8_t fromInterface = 0xA1;

enum RequestNumber : std::uint8_t { detach, dnload, upload, getStatus, clrStatus, getState, abort };

constexpr std::uint16_t statusLength = 6;

struct DfuDevice::Request {
    RequestNumber number;
    const char *name;
    std::uint8_t type;
    bool hasValue;
    std::uint16_t shortest; // length of its data
    std::uint16_t longest;
};

struct DfuDevice::Transition {
    State state;
    RequestNumber request;
    UsbAnswer (DfuDevice::*act)(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
};

} // namespace sim
