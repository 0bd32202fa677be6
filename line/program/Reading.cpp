#include "line/program/Reading.h"

Reading::Reading(const std::string &jobFile, const std::string &stationFile)
    : station(readStation(stationFile)), job(readJob(jobFile)), chip(job.chip, job.chipPlace),
      image(imageOf(job, chip)), plan(planOf(job, chip, image)) {
    for (const UnitDatum &unit : job.units)
        if (station.read && !unit.supply.empty() && !station.before)
            unit.place.refuse("the station has no hook.before that supplies \"" + unit.supply + '"');
    for (const UnitDatum &unit : job.units)
        if (station.read && !unit.series.empty() && station.series.count(unit.series) == 0)
            unit.place.refuse("the station has no series \"" + unit.series + '"');
}
