#pragma once

#include <cstdint>

#include <linux/can.h>

// What the preloaded sockets and the bus program say to each other, over an AF_UNIX SEQPACKET socket of
// the interface's name in the directory that CAN_SHIM_DIR names.

namespace can_bus {

enum class Verb : std::uint32_t {
    ask,   // how is the interface?
    join,  // with the other end of the member's socket as SCM_RIGHTS, and its Options
    tune,  // new Options
    send,  // a frame
    change // the interface: up or down, bit rate
};

struct Request {
    Verb verb = Verb::ask;
    can_frame frame{};
    std::uint32_t which = 0; // IFF_UP if `flags` has a new value of it
    std::uint32_t flags = 0;
    std::uint32_t bitRate = 0; // 0: as it is
};

constexpr unsigned maxFilters = CAN_RAW_FILTER_MAX;

// Of a member. In a request only as many filters as are used follow.
struct Options {
    std::uint32_t errorMask = 0;
    std::uint32_t loopback = 1;
    std::uint32_t ownFrames = 0;
    std::uint32_t filters = 1;
    can_filter filter[maxFilters] = {{0, 0}};
};

struct Answer {
    std::int32_t error = 0;    // an errno, 0 for done
    std::uint32_t flags = 0;   // IFF_...
    std::uint32_t bitRate = 0; // 0: none, a virtual bus
};

// What a member reads from its socket: a frame, or an errno and no more.
struct Delivery {
    std::int32_t error = 0;
    std::int32_t messageFlags = 0; // MSG_DONTROUTE, MSG_CONFIRM
    can_frame frame{};
};

} // namespace can_bus
