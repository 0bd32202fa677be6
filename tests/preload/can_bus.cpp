// A CAN bus between processes that have libcan_shim.so preloaded: each frame goes to all other members.
//
// usage: can-bus PATH [BITS-PER-SECOND]
//
// PATH is DIR/NAME for CAN_SHIM_DIR=DIR and the interface NAME. With a bit rate frames take their time,
// and at most ten wait for the wire; without one the bus is as fast as a virtual one. It says "ready",
// obeys the commands of its input, one a line, says "ok" after each, and ends at the input's end:
//
//   down, up        the interface is taken down: members get ENETDOWN
//   unplug, plug    it goes away: members get ENODEV, then ENXIO
//   busy N          the next N frames are refused: ENOBUFS; -1 for all of them, 0 for no more
//   lose N, double N  what becomes of the N-th frame from now
//   frame ID#DATA   a frame from nowhere, as cansend writes it; ID 20000xxx is an error frame
//   bus-off         its error frame; what is sent afterwards gets lost, until
//   restart
//   lock            nobody may change the interface: EPERM
//   fix             its driver takes no other rate: EINVAL

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "tests/preload/Bus.h"

namespace can_bus {

static can_frame readFrame(const std::string &text) {
    can_frame frame{};
    const std::size_t mark = text.find('#');
    frame.can_id = static_cast<canid_t>(std::stoul(text.substr(0, mark), nullptr, 16));
    if (mark == 8 && !(frame.can_id & CAN_ERR_FLAG))
        frame.can_id |= CAN_EFF_FLAG;
    for (std::size_t i = mark + 1; mark != std::string::npos && i + 1 < text.size() && frame.can_dlc < CAN_MAX_DLEN;
         i += 2)
        frame.data[frame.can_dlc++] = static_cast<__u8>(std::stoul(text.substr(i, 2), nullptr, 16));
    return frame;
}

bool Bus::obey(const std::string &line) {
    std::istringstream words(line);
    std::string verb, argument;
    words >> verb >> argument;
    if (verb == "down" || verb == "up") {
        setUp(verb == "up");
    } else if (verb == "unplug" && m_listener >= 0) {
        unplug();
    } else if (verb == "plug" && m_listener < 0) {
        m_up = true;
        m_off = false;
        plug();
    } else if (verb == "busy") {
        m_busy = std::atol(argument.c_str());
    } else if (verb == "lose") {
        m_lose = std::atol(argument.c_str());
    } else if (verb == "double") {
        m_double = std::atol(argument.c_str());
    } else if (verb == "frame") {
        deliver(readFrame(argument), nullptr);
    } else if (verb == "bus-off") {
        m_off = true;
        m_queue.clear();
        deliver(readFrame("20000040#0000000000000000"), nullptr);
    } else if (verb == "restart") {
        m_off = false;
        deliver(readFrame("20000100#0000000000000000"), nullptr);
    } else if (verb == "lock") {
        m_locked = true;
    } else if (verb == "fix") {
        m_fixed = true;
    } else {
        return false;
    }
    return true;
}

} // namespace can_bus

int main(int argc, char **argv) {
    if (argc < 2) {
        std::cerr << "usage: can-bus PATH [BITS-PER-SECOND]" << std::endl;
        return 2;
    }
    try {
        can_bus::Bus bus(argv[1], argc > 2 ? std::atol(argv[2]) : 0);
        std::cout << "ready" << std::endl;
        bus.serve(STDIN_FILENO);
    } catch (const std::exception &error) {
        std::cerr << "can-bus: " << error.what() << std::endl;
        return 1;
    }
    return 0;
}
