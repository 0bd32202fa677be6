#pragma once

#include <optional>
#include <string>
#include <vector>

#include "sim/bootloader/Log.h"
#include "sim/chip/Chip.h"

namespace sim {

struct CommandRow;

// What the chip wants to send, and from when: an ACK or NACK, or a whole reply.
struct Output {
    Bytes bytes;
    Nanoseconds at = 0;
    bool reply = false;
    bool checked = false;   // a reply that ends in a check byte of its own
    unsigned linkSpeed = 0; // after it the link runs at so many bits per second; 0 for no change
};

// What a command does after a group.
enum class Next { end, nextGroup, reset, leave, powerLost };

// One command that is under way: what its groups may use and leave for each other.
class Exchange {
public:
    Exchange(Chip &target, const Bytes &opcodes, Faults &faults, Log &log, std::vector<Output> &out)
        : chip(target), supported(opcodes), m_faults(faults), m_log(log), m_out(out) {}

    Chip &chip;
    const Bytes &supported; // the opcodes that GET lists

    // The address that the host sent; refusals name it.
    void setAddress(std::uint32_t address) { m_address = address; }
    std::uint32_t address() const { return m_address.value_or(0); }

    // Answers after a group. refuse() tells the reason.
    Next accept(Next next = Next::end);
    Next refuse(const std::string &why);

    // ACK for a group that is in order, with another one to come; else NACK.
    Next goOn(const Outcome &outcome = {});

    // ACK or NACK for work that has just been done, at the time when it is done.
    Next conclude(const Outcome &outcome, Next next = Next::end);

    // Whether an injected fault wants the coming answer to be a NACK; counts the answers.
    bool refusedByFault();

    void send(const Bytes &bytes); // the whole reply
    void sendChecked(Bytes bytes); // and the XOR of its bytes, on every link

    // The link changes its speed, bits per second, after the answer that was just given.
    void changeLinkSpeed(unsigned speed);

    // What came of the last work, for links that tell more than a NACK.
    const Outcome &outcome() const { return m_outcome; }

    // For a group whose length the group before it tells, not its own first bytes: that length, and what it
    // needs to know of the one before.
    void expect(std::size_t length, const Bytes &told);
    std::size_t expected() const { return m_expected; }
    const Bytes &told() const { return m_told; }

    void begin(const CommandRow &row);
    const CommandRow *row = nullptr;
    std::size_t group = 0; // which one belongs next
    Nanoseconds now = 0;

private:
    void answer(std::uint8_t byte);

    Faults &m_faults;
    Log &m_log;
    std::vector<Output> &m_out;
    unsigned m_answers = 0;
    Outcome m_outcome;
    std::optional<std::uint32_t> m_address;
    std::size_t m_expected = 0;
    Bytes m_told;
};

// One group of bytes from the host, in the table of a command.
struct GroupRow {
    std::size_t (*length)(const Bytes &arrived); // of the whole group, as far as what arrived tells; 0: see expect()
    bool (*sound)(const Bytes &group);           // its checksum
    Next (*act)(Exchange &exchange, const Bytes &group);
};

enum class Guard { none, access, high }; // refused under access protection; under its high level

struct CommandRow {
    std::uint8_t opcode;
    const char *name;
    Guard guard;
    Next (*begin)(Exchange &exchange); // answers the opcode
    std::vector<GroupRow> groups;
};

// The `begin` of a command that only waits for its groups.
Next awaitGroups(Exchange &exchange);

} // namespace sim
