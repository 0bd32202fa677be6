#pragma once

#include "sim/bootloader/Exchange.h"

namespace sim {

// What a chip runs after a reset.
enum class Start { bootloader, application };

using CommandTable = std::vector<CommandRow>;
const CommandTable &fixedCommands();
const CommandTable &ownCommands();
const CommandTable &i2cCommands(); // variants of I2C
const CommandTable &canCommands(); // additions of CAN

// The resident bootloader: commands come as an opcode and groups of bytes, answers go out with the
// time from which they may leave. It knows neither the link that carries them nor a clock.
class Bootloader {
public:
    // What the link makes different: `variants` are commands that have other groups on it, `additions`
    // commands that there are on no other.
    Bootloader(Chip &chip, Faults &faults, Log &log, const CommandTable *variants = nullptr,
               const CommandTable *additions = nullptr);
    Bootloader(const Bootloader &) = delete;
    Bootloader &operator=(const Bootloader &) = delete;

    // From a reset until it listens; what arrives meanwhile is lost.
    static constexpr Nanoseconds startTime = 20 * millisecond;

    // Whether bytes reach the bootloader: not while the chip starts or is held in reset, and not while it
    // runs its own program.
    bool listening(Nanoseconds now) const;

    // Until then the chip works at its flash and takes nothing in.
    Nanoseconds busyUntil() const { return m_busyUntil; }

    // Whether an opcode belongs next.
    bool idle() const { return m_exchange.row == nullptr; }

    void command(std::uint8_t opcode, Nanoseconds now);
    void feed(std::uint8_t byte, Nanoseconds now);

    // Inside a command, for links that travel in messages: how long the group is that belongs next, as far
    // as what has arrived of it and then `more` tell, and how much has arrived.
    std::size_t groupLength(const Bytes &more) const;
    std::size_t groupArrived() const { return m_group.size(); }

    // Something came in the place of that group: NACK, and the command is over.
    void refuseGroup(const std::string &why, Nanoseconds now);

    // A command in one message, its opcode and all its groups. One that is longer or shorter than that is
    // refused after its opcode, and nothing of it is carried out.
    void whole(std::uint8_t opcode, const Bytes &groups, Nanoseconds now);

    // The same with a row of the caller's own, for a link on which a command has a form that is in no table. The
    // row need not be one of those that the chip supports.
    void whole(const CommandRow &row, const Bytes &groups, Nanoseconds now);

    // How the last command went on after its last answer, and what came of its work.
    Next ended() const { return m_ended; }
    const Outcome &outcome() const { return m_exchange.outcome(); }

    // Whether a fault has made the chip silent, until a reset.
    bool silent() const { return m_silent; }

    // Drops a command that is under way; nothing of it is carried out.
    void drop(const std::string &why);

    // Bytes outside a command: what the link's own framing answers.
    void answer(std::uint8_t byte, Nanoseconds now);
    void refuse(const std::string &why, Nanoseconds now);

    // The last answer before a reset left only now, because the host had to fetch it: the chip starts now.
    void startFrom(Nanoseconds now) { m_listensFrom = now + startTime; }

    // The reset button, and the power.
    void reset(Nanoseconds now);
    void losePower(Nanoseconds now);

    // The pins: what every start from now on starts, and the reset line. While it is held the chip does
    // nothing, and what was under way is lost.
    void select(Start start) { m_selected = start; }
    void hold(Nanoseconds now);
    void release(Nanoseconds now);

    unsigned resets() const { return m_chip.resets(); }

    std::vector<Output> takeOutput();

private:
    const CommandRow *rowOf(std::uint8_t opcode) const;
    bool guarded(const CommandRow &row) const;
    std::size_t lengthOf(const Bytes &group) const;
    bool admit(std::uint8_t opcode, const CommandRow *row, Nanoseconds now);
    void take(const Bytes &group, Nanoseconds now);
    void wholeAfterOpcode(const Bytes &groups);
    void follow(Next next);
    void start(Nanoseconds now);
    void leave();

    Chip &m_chip;
    Faults &m_faults;
    Log &m_log;
    const CommandTable *m_variants;
    const CommandTable *m_additions;
    std::vector<Output> m_out;
    Exchange m_exchange;
    Bytes m_supported;
    Bytes m_group;
    Next m_ended = Next::end;
    Start m_selected = Start::bootloader;
    bool m_held = false;
    bool m_gone = false; // it runs its own program
    bool m_silent = false;
    Nanoseconds m_listensFrom = 0;
    Nanoseconds m_busyUntil = 0;
};

} // namespace sim
