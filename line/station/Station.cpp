#include "line/station/Station.h"

#include <unistd.h>

#include "line/job/Table.h"
#include "programs/FileBytes.h"

namespace {

constexpr char systemFile[] = "/etc/zv32-line/station.toml";
constexpr char approvedDirectory[] = "/etc/zv32-line/approved";
constexpr std::size_t longestStation = 1024 * 1024;
constexpr std::int64_t highestNumber = 0xFFFFFFFF;

std::string absolutePath(Table &table, const std::string &key) {
    std::string path = table.text(key);
    if (path.front() != '/')
        table.placeOf(key).refuse("must be an absolute path");
    return path;
}

void readSeries(Table table, Station &station) {
    for (const std::string &name : table.names()) {
        Table one = table.table(name);
        Station::Series series{};
        series.first = static_cast<std::uint32_t>(one.number("first", 0, highestNumber));
        series.last = static_cast<std::uint32_t>(one.number("last", series.first, highestNumber));
        one.finish();
        station.series[name] = series;
    }
}

Station parse(const std::string &path) {
    Table table = Table::parse(path, bytesOfFile(path, longestStation));
    Station station;
    station.read = true;
    table.number("format", 1, 1);
    station.name = table.text("station");
    station.approved = table.has("approved") ? absolutePath(table, "approved") : approvedDirectory;
    if (table.has("series"))
        readSeries(table.table("series"), station);
    table.finish();
    return station;
}

} // namespace

Station readStation(const std::string &path) {
    if (!path.empty() || access(systemFile, F_OK) == 0)
        return parse(path.empty() ? systemFile : path);
    Station station;
    station.approved = approvedDirectory;
    return station;
}
