#pragma once

#include <cstdint>

namespace zvbl {

// How a call of the library ended. It becomes a status byte once, in Border.h.
enum class [[nodiscard]] Status{
    ok,
    notOpen,        // the link is not open, or there is no such link
    cantOpen,       // the port is absent, busy or forbidden, or this library has no such link
    gone,           // the operating system refused a send, or the device went away
    noAnswer,       // no answer in time, or a wrong byte where an answer belongs
    outOfStep,      // the chip did not get back in step: nothing of the command was sent
    noStart,        // no answer to the opening byte
    refusedCommand, // NACK after the opcode
    refused,        // NACK anywhere later
    differs,        // the memory holds other data
    badArgument     // out of range, or a null pointer
};

} // namespace zvbl
