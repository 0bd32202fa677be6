#include "sim/Bootloader.h"

#include "libs/zvbl/wire/Wire.h"
#include "sim/Groups.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace sim {

namespace {

constexpr Nanoseconds startTime = 20 * millisecond; // behind a reset; bytes that arrive meanwhile are lost

std::string hex(std::uint32_t value, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, static_cast<unsigned>(value));
    return text;
}

Bytes opcodesIn(const CommandTable *table) {
    Bytes opcodes;
    for (std::size_t i = 0; table != nullptr && i < table->size(); ++i) {
        opcodes.push_back((*table)[i].opcode);
    }
    return opcodes;
}

} // namespace

void Exchange::begin(const CommandRow &opened) {
    row = &opened;
    step = 0;
    address_.reset();
    answers_ = 0;
}

void Exchange::answer(std::uint8_t byte) { out_.push_back({{byte}, now}); }

void Exchange::send(const Bytes &bytes) { out_.push_back({bytes, now, true}); }

void Exchange::sendChecked(Bytes bytes) {
    appendXor(bytes);
    out_.push_back({std::move(bytes), now, true, true});
}

void Exchange::changeLinkSpeed(unsigned speed) { out_.back().linkSpeed = speed; }

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
    return outcome.done() ? accept(Next::nextGroup) : refuse(outcome.why);
}

Next awaitGroups(Exchange &exchange) { return exchange.goOn(); }

Next Exchange::conclude(const Outcome &outcome, Next next) {
    now += chip.takeTime();
    if (outcome.kind == Outcome::Kind::powerLost) {
        return Next::powerLost;
    }
    return outcome.done() ? accept(next) : refuse(outcome.why);
}

bool Exchange::refusedByFault() { return faults_.refuses(answers_++); }

Bootloader::Bootloader(Chip &chip, Faults &faults, Log &log, const CommandTable *variants, const CommandTable *additions)
    : chip_(chip), faults_(faults), log_(log), variants_(variants), additions_(additions),
      exchange_(chip, supported_, faults, log, out_), supported_(opcodesOf(chip.facts(), opcodesIn(additions))) {}

bool Bootloader::listening(Nanoseconds now) const { return !gone_ && now >= listensFrom_; }

const CommandRow *Bootloader::rowOf(std::uint8_t opcode) const {
    if (std::find(supported_.begin(), supported_.end(), opcode) == supported_.end()) {
        return nullptr;
    }
    for (const CommandTable *table : {variants_, additions_, &fixedCommands(), &ownCommands()}) {
        for (std::size_t i = 0; table != nullptr && i < table->size(); ++i) {
            if ((*table)[i].opcode == opcode) {
                return &(*table)[i];
            }
        }
    }
    return nullptr;
}

bool Bootloader::guarded(const CommandRow &row) const {
    return (row.guard == Guard::access && chip_.access() != AccessLevel::open) ||
           (row.guard == Guard::high && chip_.access() == AccessLevel::high);
}

void Bootloader::command(std::uint8_t opcode, Nanoseconds now) {
    if (!faults_.frame(opcode)) {
        gone_ = true;
        return;
    }
    const CommandRow *row = rowOf(opcode);
    if (row == nullptr) {
        refuse("opcode " + hex(opcode, 2) + ": unknown command", now);
        return;
    }
    log_.note(std::string("command: ") + row->name);
    exchange_.now = now;
    exchange_.begin(*row);
    if (exchange_.refusedByFault()) {
        follow(exchange_.refuse("fault"));
    } else if (guarded(*row)) {
        follow(exchange_.refuse("the chip is access-protected"));
    } else {
        follow(row->begin(exchange_));
    }
}

void Bootloader::feed(std::uint8_t byte, Nanoseconds now) {
    group_.push_back(byte);
    const Step &step = exchange_.row->steps[exchange_.step];
    if (group_.size() < step.length(group_)) {
        return;
    }
    const Bytes group = std::exchange(group_, {});
    ++exchange_.step;
    exchange_.now = now;
    if (exchange_.refusedByFault()) {
        follow(exchange_.refuse("fault"));
    } else if (!step.sound(group)) {
        follow(exchange_.refuse("wrong checksum"));
    } else {
        follow(step.act(exchange_, group));
    }
}

std::size_t Bootloader::groupLength(const Bytes &more) const {
    Bytes bytes = group_;
    bytes.insert(bytes.end(), more.begin(), more.end());
    return exchange_.row->steps[exchange_.step].length(bytes);
}

void Bootloader::refuseGroup(const std::string &why, Nanoseconds now) {
    group_.clear();
    exchange_.now = now;
    follow(exchange_.refuse(why));
}

void Bootloader::follow(Next next) {
    busyUntil_ = exchange_.now;
    if (next == Next::nextGroup) {
        return;
    }
    exchange_.row = nullptr;
    if (next == Next::reset) {
        reset(exchange_.now);
    } else if (next == Next::powerLost) {
        losePower(exchange_.now);
    } else if (next == Next::leave) {
        log_.note("the chip runs its own code");
        gone_ = true;
    }
}

void Bootloader::drop(const std::string &why) {
    if (exchange_.row != nullptr) {
        log_.refused(std::string(exchange_.row->name) + ": " + why);
    }
    exchange_.row = nullptr;
    group_.clear();
}

void Bootloader::answer(std::uint8_t byte, Nanoseconds now) { out_.push_back({{byte}, now}); }

void Bootloader::refuse(const std::string &why, Nanoseconds now) {
    log_.refused(why);
    answer(wire::nack, now);
}

void Bootloader::start(Nanoseconds now) {
    exchange_.row = nullptr;
    group_.clear();
    gone_ = false;
    listensFrom_ = now + startTime;
    busyUntil_ = now;
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

std::vector<Output> Bootloader::takeOutput() { return std::exchange(out_, {}); }

} // namespace sim
