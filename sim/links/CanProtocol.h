#pragma once

#include <optional>

#include "sim/bootloader/Bootloader.h"
#include "sim/links/CanFrame.h"

namespace sim {

// How commands travel over CAN: the opcode is the identifier, groups and replies are cut into frames, a
// frame without data opens a command. Fed one frame at a time, each with the time of its arrival.
class CanProtocol {
public:
    // The bootloader has to have canCommands() among its additions.
    CanProtocol(Bootloader &bootloader, Log &log);

    // `speed` is that of the bus in bits per second, 0 where nobody can tell it. False when the frame is
    // noise to the chip, because that is not its own.
    bool receive(const CanFrame &frame, unsigned speed, Nanoseconds now);

    // What the chip wants to send by now.
    std::vector<TimedFrame> takeOutput();

    // The bus tells when a frame has left.
    void sent(const TimedFrame &frame, Nanoseconds at);

    // The chip's own speed, in bits per second.
    unsigned speed(Nanoseconds now);

private:
    void followReset();
    bool hears(const CanFrame &frame, Nanoseconds now);
    void open(std::uint8_t opcode, Nanoseconds now);
    void goOn(const CanFrame &frame, Nanoseconds now);
    void collect(std::uint8_t opcode);

    struct SpeedChange {
        unsigned speed;
        Nanoseconds from;
    };

    Bootloader &m_bootloader;
    Log &m_log;
    unsigned m_resets;
    bool m_synchronised = false;
    std::uint8_t m_opcode = 0; // of the command that is under way
    unsigned m_speed;
    std::optional<SpeedChange> m_change;
    std::vector<TimedFrame> m_out;
};

// Whether a frame has to do with the chip: data, under an identifier of its host or, wrongly, its own.
bool concernsChip(const CanFrame &frame);

// As the log names a frame: its identifier in hexadecimal.
std::string nameOf(const CanFrame &frame);

} // namespace sim
