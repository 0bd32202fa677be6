#include <set>

#include "line/station/Station.h"
#include "programs/Status.h"
#include "programs/Text.h"
#include "tests/fuzz/Target.h"
#include "tests/fuzz/Workplace.h"

namespace {

void check(const Station &station) {
    fuzz::require(isHarmless(station.name), "the name of a station tells a terminal nothing");
    fuzz::require(station.registerPath.front() == '/' && station.approved.front() == '/', "paths are absolute");
    std::set<std::string> names;
    std::set<std::string> ports;
    for (const Nest &nest : station.nests) {
        fuzz::require(isHarmless(nest.name) && isHarmless(nest.port), "a nest tells a terminal nothing");
        fuzz::require(names.insert(nest.name).second && ports.insert(nest.port).second, "a nest has a port of its own");
        linkJson(station.link, nest.port).dump();
    }
    for (const auto &series : station.series)
        fuzz::require(series.second.first <= series.second.last, "a series has numbers");
    for (const auto &hook : {station.before, station.after})
        fuzz::require(!hook || hook->run.front().front() == '/', "a hook is named by its absolute path");
}

} // namespace

// Any text as a station file: it is taken, or refused with its name in front.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const std::string path = fuzz::workplace() / "station.toml";
    fuzz::fill(path, std::string(data, data + size));
    try {
        check(readStation(path));
    } catch (const Refusal &refusal) {
        fuzz::require(refusal.status == notAcceptable, "a station is not acceptable");
        fuzz::require(std::string(refusal.what()).rfind(path + ':', 0) == 0, "file and line stand in front");
    }
    return 0;
}
