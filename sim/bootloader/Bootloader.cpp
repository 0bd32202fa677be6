#include "sim/bootloader/Bootloader.h"

#include <algorithm>
#include <utility>

#include "libs/zvbl/wire/Wire.h"
#include "sim/bootloader/Groups.h"
#include "sim/chip/Hex.h"

namespace sim {

namespace {

Bytes opcodesIn(const CommandTable *table) {
    Bytes opcodes;
    for (std::size_t i = 0; table != nullptr && i < table->size(); ++i)
        opcodes.push_back((*table)[i].opcode);
    return opcodes;
}

// The groups one by one; nothing when these are more or fewer bytes than they take.
std::optional<std::vector<Bytes>> cut(const std::vector<GroupRow> &rows, Bytes groups) {
    std::vector<Bytes> parts;
    for (const GroupRow &row : rows) {
        const std::size_t length = row.length(groups);
        if (length > groups.size())
            return std::nullopt;
        const auto end = groups.begin() + static_cast<std::ptrdiff_t>(length);
        parts.emplace_back(groups.begin(), end);
        groups.erase(groups.begin(), end);
    }
    return groups.empty() ? std::optional(parts) : std::nullopt;
}

} // namespace

Bootloader::Bootloader(Chip &chip, Faults &faults, Log &log, const CommandTable *variants,
                       const CommandTable *additions)
    : m_chip(chip), m_faults(faults), m_log(log), m_variants(variants), m_additions(additions),
      m_exchange(chip, m_supported, faults, log, m_out), m_supported(opcodesOf(chip.facts(), opcodesIn(additions))) {}

bool Bootloader::listening(Nanoseconds now) const {
    return !m_held && !m_gone && !m_silent && now >= m_listensFrom;
}

const CommandRow *Bootloader::rowOf(std::uint8_t opcode) const {
    if (std::find(m_supported.begin(), m_supported.end(), opcode) == m_supported.end())
        return nullptr;
    for (const CommandTable *table : {m_variants, m_additions, &fixedCommands(), &ownCommands()}) {
        for (std::size_t i = 0; table != nullptr && i < table->size(); ++i)
            if ((*table)[i].opcode == opcode)
                return &(*table)[i];
    }
    return nullptr;
}

bool Bootloader::guarded(const CommandRow &row) const {
    return (row.guard == Guard::access && m_chip.access() != AccessLevel::open) ||
           (row.guard == Guard::high && m_chip.access() == AccessLevel::high);
}

// Opens a command; false when that is refused.
bool Bootloader::admit(std::uint8_t opcode, const CommandRow *row, Nanoseconds now) {
    m_ended = Next::end;
    if (!m_faults.frame(opcode)) {
        m_silent = true;
        return false;
    }
    if (row == nullptr) {
        m_busyUntil = now;
        refuse("opcode " + hex(opcode, 2) + ": unknown command", now);
        return false;
    }
    m_log.note(std::string("command: ") + row->name);
    m_exchange.now = now;
    m_exchange.begin(*row);
    if (m_exchange.refusedByFault())
        follow(m_exchange.refuse("fault"));
    else if (guarded(*row))
        follow(m_exchange.refuse("the chip is access-protected"));
    return !idle();
}

void Bootloader::command(std::uint8_t opcode, Nanoseconds now) {
    if (admit(opcode, rowOf(opcode), now))
        follow(m_exchange.row->begin(m_exchange));
}

void Bootloader::feed(std::uint8_t byte, Nanoseconds now) {
    m_group.push_back(byte);
    if (m_group.size() < lengthOf(m_group))
        return;
    take(std::exchange(m_group, {}), now);
}

void Bootloader::take(const Bytes &group, Nanoseconds now) {
    const GroupRow &row = m_exchange.row->groups[m_exchange.group];
    ++m_exchange.group;
    m_exchange.now = now;
    if (m_exchange.refusedByFault())
        follow(m_exchange.refuse("fault"));
    else if (!row.sound(group))
        follow(m_exchange.refuse("wrong checksum"));
    else
        follow(row.act(m_exchange, group));
}

std::size_t Bootloader::groupLength(const Bytes &more) const {
    Bytes bytes = m_group;
    bytes.insert(bytes.end(), more.begin(), more.end());
    return lengthOf(bytes);
}

std::size_t Bootloader::lengthOf(const Bytes &group) const {
    const std::size_t length = m_exchange.row->groups[m_exchange.group].length(group);
    return length != 0 ? length : m_exchange.expected();
}

void Bootloader::refuseGroup(const std::string &why, Nanoseconds now) {
    m_group.clear();
    m_exchange.now = now;
    follow(m_exchange.refuse(why));
}

void Bootloader::whole(std::uint8_t opcode, const Bytes &groups, Nanoseconds now) {
    if (admit(opcode, rowOf(opcode), now))
        wholeAfterOpcode(groups);
}

void Bootloader::whole(const CommandRow &row, const Bytes &groups, Nanoseconds now) {
    if (admit(row.opcode, &row, now))
        wholeAfterOpcode(groups);
}

void Bootloader::wholeAfterOpcode(const Bytes &groups) {
    const std::optional<std::vector<Bytes>> parts = cut(m_exchange.row->groups, groups);
    if (!parts) {
        m_exchange.accept();
        follow(m_exchange.refuse("longer or shorter than this command"));
        return;
    }
    follow(m_exchange.row->begin(m_exchange));
    for (const Bytes &part : *parts)
        if (!idle())
            take(part, m_busyUntil);
}

void Bootloader::follow(Next next) {
    m_busyUntil = m_exchange.now;
    if (next == Next::nextGroup)
        return;
    m_exchange.row = nullptr;
    m_ended = next;
    if (next == Next::reset)
        reset(m_exchange.now);
    else if (next == Next::powerLost)
        losePower(m_exchange.now);
    else if (next == Next::leave)
        leave();
}

void Bootloader::drop(const std::string &why) {
    if (m_exchange.row != nullptr)
        m_log.refused(std::string(m_exchange.row->name) + ": " + why);
    m_exchange.row = nullptr;
    m_group.clear();
}

void Bootloader::answer(std::uint8_t byte, Nanoseconds now) {
    m_out.push_back({{byte}, now});
}

void Bootloader::refuse(const std::string &why, Nanoseconds now) {
    m_log.refused(why);
    answer(wire::nack, now);
}

void Bootloader::start(Nanoseconds now) {
    m_exchange.row = nullptr;
    m_group.clear();
    m_gone = false;
    m_silent = false;
    m_listensFrom = now + startTime;
    m_busyUntil = now;
    if (m_selected == Start::application && !m_held)
        leave();
}

void Bootloader::leave() {
    m_log.note("the chip runs its own code");
    m_gone = true;
}

void Bootloader::reset(Nanoseconds now) {
    m_log.note("reset");
    m_chip.reset();
    start(now);
}

void Bootloader::losePower(Nanoseconds now) {
    m_chip.losePower();
    start(now);
}

void Bootloader::hold(Nanoseconds now) {
    m_log.note("held in reset");
    m_held = true;
    m_out.clear();
    m_chip.reset();
    start(now);
}

void Bootloader::release(Nanoseconds now) {
    m_log.note("released");
    m_held = false;
    start(now);
}

std::vector<Output> Bootloader::takeOutput() {
    return std::exchange(m_out, {});
}

} // namespace sim
