#include "sim/bootloader/Exchange.h"

#include <utility>

#include "libs/zvbl/wire/Wire.h"
#include "sim/bootloader/Groups.h"
#include "sim/chip/Hex.h"

namespace sim {

void Exchange::begin(const CommandRow &opened) {
    row = &opened;
    group = 0;
    m_address.reset();
    m_answers = 0;
    m_outcome = {};
}

void Exchange::answer(std::uint8_t byte) {
    m_out.push_back({{byte}, now});
}

void Exchange::send(const Bytes &bytes) {
    m_out.push_back({bytes, now, true});
}

void Exchange::sendChecked(Bytes bytes) {
    appendXor(bytes);
    m_out.push_back({std::move(bytes), now, true, true});
}

void Exchange::expect(std::size_t length, const Bytes &told) {
    m_expected = length;
    m_told = told;
}

void Exchange::changeLinkSpeed(unsigned speed) {
    m_out.back().linkSpeed = speed;
}

Next Exchange::accept(Next next) {
    answer(wire::ack);
    return next;
}

Next Exchange::refuse(const std::string &why) {
    m_log.refused(row->name + (m_address ? " " + hex(*m_address, 8) : std::string()) + ": " + why);
    answer(wire::nack);
    return Next::end;
}

Next Exchange::goOn(const Outcome &outcome) {
    m_outcome = outcome;
    return outcome.done() ? accept(Next::nextGroup) : refuse(outcome.why);
}

Next awaitGroups(Exchange &exchange) {
    return exchange.goOn();
}

Next Exchange::conclude(const Outcome &outcome, Next next) {
    now += chip.takeTime();
    m_outcome = outcome;
    if (outcome.kind == Outcome::Kind::powerLost)
        return Next::powerLost;
    return outcome.done() ? accept(next) : refuse(outcome.why);
}

bool Exchange::refusedByFault() {
    return m_faults.refuses(m_answers++);
}

} // namespace sim
