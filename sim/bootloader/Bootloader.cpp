#include "sim/bootloader/Bootloader.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "libs/zvbl/wire/Wire.h"
#include "sim/bootloader/Groups.h"

namespace sim {

namespace {

std::string hex(std::uint32_t value, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, static_cast<unsigned>(value));
    return text;
}

Bytes opcodesIn(const CommandTable *table) {
    Bytes opcodes;
    for (std::size_t i = 0; table != nullptr && i < table->size(); ++i)
        opcodes.push_back((*table)[i].opcode);
    return opcodes;
}

// The groups one by one; nothing when these are more or fewer bytes than they take.
std::optional<std::vector<Bytes>> cut(const std::vector<Step> &steps, Bytes groups) {
    std::vector<Bytes> parts;
    for (const Step &step : steps) {
        const std::size_t length = step.length(groups);
        if (length > groups.size())
            return std::nullopt;
        const auto end = groups.begin() + static_cast<std::ptrdiff_t>(length);
        parts.emplace_back(groups.begin(), end);
        groups.erase(groups.begin(), end);
    }
    return groups.empty() ? std::optional(parts) : std::nullopt;
}

} // namespace

void Exchange::begin(const CommandRow &opened) {
    row = &opened;
    step = 0;
    address_.reset();
    answers_ = 0;
    outcome_ = {};
}

void Exchange::answer(std::uint8_t byte) {
    out_.push_back({{byte}, now});
}

void Exchange::send(const Bytes &bytes) {
    out_.push_back({bytes, now, true});
}

void Exchange::sendChecked(Bytes bytes) {
    appendXor(bytes);
    out_.push_back({std::move(bytes), now, true, true});
}

void Exchange::expect(std::size_t length, const Bytes &told) {
    expected_ = length;
    told_ = told;
}

void Exchange::changeLinkSpeed(unsigned speed) {
    out_.back().linkSpeed = speed;
}

Next Exchange::accept(Next next) {
    answer(wire::ack);
    return next;
}

Next Exchange::refuse(const std::string &why) {
    log_.refused(row->name + (address_ ? " " + hex(*address_, 8) : std::string()) + ": " + why);
    answer(wire::nack);
    return Next::end;
}

Next Exchange::goOn(const Outcome &outcome) {
    outcome_ = outcome;
    return outcome.done() ? accept(Next::nextGroup) : refuse(outcome.why);
}

Next awaitGroups(Exchange &exchange) {
    return exchange.goOn();
}

Next Exchange::conclude(const Outcome &outcome, Next next) {
    now += chip.takeTime();
    outcome_ = outcome;
    if (outcome.kind == Outcome::Kind::powerLost)
        return Next::powerLost;
    return outcome.done() ? accept(next) : refuse(outcome.why);
}

bool Exchange::refusedByFault() {
    return faults_.refuses(answers_++);
}

Bootloader::Bootloader(Chip &chip, Faults &faults, Log &log, const CommandTable *variants,
                       const CommandTable *additions)
    : chip_(chip), faults_(faults), log_(log), variants_(variants), additions_(additions),
      exchange_(chip, supported_, faults, log, out_), supported_(opcodesOf(chip.facts(), opcodesIn(additions))) {}

bool Bootloader::listening(Nanoseconds now) const {
    return !held_ && !gone_ && !silent_ && now >= listensFrom_;
}

const CommandRow *Bootloader::rowOf(std::uint8_t opcode) const {
    if (std::find(supported_.begin(), supported_.end(), opcode) == supported_.end())
        return nullptr;
    for (const CommandTable *table : {variants_, additions_, &fixedCommands(), &ownCommands()}) {
        for (std::size_t i = 0; table != nullptr && i < table->size(); ++i)
            if ((*table)[i].opcode == opcode)
                return &(*table)[i];
    }
    return nullptr;
}

bool Bootloader::guarded(const CommandRow &row) const {
    return (row.guard == Guard::access && chip_.access() != AccessLevel::open) ||
           (row.guard == Guard::high && chip_.access() == AccessLevel::high);
}

// Opens a command; false when that is refused.
bool Bootloader::admit(std::uint8_t opcode, const CommandRow *row, Nanoseconds now) {
    ended_ = Next::end;
    if (!faults_.frame(opcode)) {
        silent_ = true;
        return false;
    }
    if (row == nullptr) {
        busyUntil_ = now;
        refuse("opcode " + hex(opcode, 2) + ": unknown command", now);
        return false;
    }
    log_.note(std::string("command: ") + row->name);
    exchange_.now = now;
    exchange_.begin(*row);
    if (exchange_.refusedByFault())
        follow(exchange_.refuse("fault"));
    else if (guarded(*row))
        follow(exchange_.refuse("the chip is access-protected"));
    return !idle();
}

void Bootloader::command(std::uint8_t opcode, Nanoseconds now) {
    if (admit(opcode, rowOf(opcode), now))
        follow(exchange_.row->begin(exchange_));
}

void Bootloader::feed(std::uint8_t byte, Nanoseconds now) {
    group_.push_back(byte);
    if (group_.size() < lengthOf(group_))
        return;
    take(std::exchange(group_, {}), now);
}

void Bootloader::take(const Bytes &group, Nanoseconds now) {
    const Step &step = exchange_.row->steps[exchange_.step];
    ++exchange_.step;
    exchange_.now = now;
    if (exchange_.refusedByFault())
        follow(exchange_.refuse("fault"));
    else if (!step.sound(group))
        follow(exchange_.refuse("wrong checksum"));
    else
        follow(step.act(exchange_, group));
}

std::size_t Bootloader::groupLength(const Bytes &more) const {
    Bytes bytes = group_;
    bytes.insert(bytes.end(), more.begin(), more.end());
    return lengthOf(bytes);
}

std::size_t Bootloader::lengthOf(const Bytes &group) const {
    const std::size_t length = exchange_.row->steps[exchange_.step].length(group);
    return length != 0 ? length : exchange_.expected();
}

void Bootloader::refuseGroup(const std::string &why, Nanoseconds now) {
    group_.clear();
    exchange_.now = now;
    follow(exchange_.refuse(why));
}

void Bootloader::whole(std::uint8_t opcode, const Bytes &groups, Nanoseconds now) {
    if (admit(opcode, rowOf(opcode), now))
        wholeBehindOpcode(groups);
}

void Bootloader::whole(const CommandRow &row, const Bytes &groups, Nanoseconds now) {
    if (admit(row.opcode, &row, now))
        wholeBehindOpcode(groups);
}

void Bootloader::wholeBehindOpcode(const Bytes &groups) {
    const std::optional<std::vector<Bytes>> parts = cut(exchange_.row->steps, groups);
    if (!parts) {
        exchange_.accept();
        follow(exchange_.refuse("longer or shorter than this command"));
        return;
    }
    follow(exchange_.row->begin(exchange_));
    for (const Bytes &part : *parts)
        if (!idle())
            take(part, busyUntil_);
}

void Bootloader::follow(Next next) {
    busyUntil_ = exchange_.now;
    if (next == Next::nextGroup)
        return;
    exchange_.row = nullptr;
    ended_ = next;
    if (next == Next::reset)
        reset(exchange_.now);
    else if (next == Next::powerLost)
        losePower(exchange_.now);
    else if (next == Next::leave)
        leave();
}

void Bootloader::drop(const std::string &why) {
    if (exchange_.row != nullptr)
        log_.refused(std::string(exchange_.row->name) + ": " + why);
    exchange_.row = nullptr;
    group_.clear();
}

void Bootloader::answer(std::uint8_t byte, Nanoseconds now) {
    out_.push_back({{byte}, now});
}

void Bootloader::refuse(const std::string &why, Nanoseconds now) {
    log_.refused(why);
    answer(wire::nack, now);
}

void Bootloader::start(Nanoseconds now) {
    exchange_.row = nullptr;
    group_.clear();
    gone_ = false;
    silent_ = false;
    listensFrom_ = now + startTime;
    busyUntil_ = now;
    if (selected_ == Start::application && !held_)
        leave();
}

void Bootloader::leave() {
    log_.note("the chip runs its own code");
    gone_ = true;
}

void Bootloader::reset(Nanoseconds now) {
    log_.note("reset");
    chip_.reset();
    start(now);
}

void Bootloader::losePower(Nanoseconds now) {
    chip_.losePower();
    start(now);
}

void Bootloader::hold(Nanoseconds now) {
    log_.note("held in reset");
    held_ = true;
    out_.clear();
    chip_.reset();
    start(now);
}

void Bootloader::release(Nanoseconds now) {
    log_.note("released");
    held_ = false;
    start(now);
}

std::vector<Output> Bootloader::takeOutput() {
    return std::exchange(out_, {});
}

} // namespace sim
