#include "line/rehearsal/Rehearsal.h"

#include <ctime>

#include "line/rehearsal/SimulatedChip.h"

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

Outcome Rehearsal::run(const Attempt::Tell &tell) const {
    const auto imageOfUnit = [this](const std::string &uid) {
        return unitImageOf(job, image, {number(), uid, std::time(nullptr), order, supply});
    };
    const SimulatedChip chip(job.chip, keep);
    return Attempt(job, plan, imageOfUnit, tell).run({{"kind", "usart"}, {"port", chip.port()}});
}
