#include "line/rehearsal/Rehearsal.h"

#include <algorithm>
#include <chrono>
#include <ctime>

#include <poll.h>

#include "line/plan/Order.h"
#include "line/rehearsal/SimulatedChip.h"
#include "programs/Text.h"

namespace {

void wait(const Attempt &attempt) {
    std::vector<pollfd> all;
    attempt.watch(all);
    const auto left = attempt.deadline() - Attempt::Clock::now();
    const auto time = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    poll(all.data(), all.size(), static_cast<int>(std::max<std::int64_t>(time, 0)));
}

} // namespace

Outcome attemptAlone(const Json &order, const MakeImage &makeImage, const TellStep &tell) {
    Attempt attempt(order);
    for (;;)
        switch (attempt.next()) {
        case Attempt::Event::nothing: wait(attempt); break;
        case Attempt::Event::step: tell(attempt.step()); break;
        case Attempt::Event::identified:
            attempt.go(wholeWords(makeImage(bytesOfHex(attempt.outcome().identified.at("uid").get<std::string>()))));
            break;
        case Attempt::Event::irreversible: attempt.burn(); break; // a simulated chip can be thrown away
        case Attempt::Event::end: return attempt.outcome();
        }
}

std::string Rehearsal::series() const {
    for (const UnitDatum &unit : job.units)
        if (!unit.series.empty())
            return unit.series;
    return {};
}

std::uint32_t Rehearsal::number() const {
    const auto found = station.series.find(series());
    return found != station.series.end() ? found->second.first : 1;
}

Outcome Rehearsal::run(const TellStep &tell) const {
    const auto imageOfUnit = [this](const std::string &uid) {
        return unitImageOf(job, image, {number(), uid, std::time(nullptr), order, supply});
    };
    const SimulatedChip chip(job.chip, keep);
    const Json link = {{"kind", "usart"}, {"port", chip.port()}};
    return attemptAlone(makeOrder(job, plan, link), imageOfUnit, tell);
}
