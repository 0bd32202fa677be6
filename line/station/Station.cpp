#include "line/station/Station.h"

#include <set>

#include <unistd.h>

#include "programs/FileBytes.h"

namespace {

constexpr char systemFile[] = "/etc/zv32-line/station.toml";
constexpr char approvedDirectory[] = "/etc/zv32-line/approved";
constexpr char systemRegister[] = "/var/lib/zv32-line/units.db";
constexpr std::size_t longestStation = 1024 * 1024;
constexpr std::int64_t highestNumber = 0xFFFFFFFF;
constexpr std::int64_t mostFailures = 1000;
constexpr std::int64_t mostRetries = 10;
constexpr std::int64_t longestPause = 60;  // seconds
constexpr std::int64_t longestHook = 3600; // seconds
constexpr std::size_t mostNests = 64;      // so many a screen of 80 columns and 24 lines shows
constexpr std::size_t longestName = 8;     // of a nest

const std::map<std::string, ApprovalRule> approvalWords = {{"irreversible", ApprovalRule::irreversible},
                                                           {"always", ApprovalRule::always}};

std::string absolutePath(Table &table, const std::string &key, const char *missing) {
    if (!table.has(key))
        return missing;
    std::string path = table.text(key);
    if (path.front() != '/')
        table.placeOf(key).refuse("must be an absolute path");
    return path;
}

int numberOr(Table &table, const std::string &key, std::int64_t highest, int missing) {
    return table.has(key) ? static_cast<int>(table.number(key, 0, highest)) : missing;
}

std::string nestName(Table &table) {
    const std::string name = table.text("name");
    for (const char c : name)
        if (c <= ' ' || c > '~' || c == ',') // a comma is between two of them on a command line
            table.placeOf("name").refuse("must be of printable ASCII characters, without space and comma");
    if (name.size() > longestName)
        table.placeOf("name").refuse("is longer than " + std::to_string(longestName) + " characters");
    return name;
}

void readNests(Table &whole, Station &station) {
    std::set<std::string> names;
    std::set<std::string> ports;
    for (Table &table : whole.tables("nest")) {
        Nest nest{nestName(table), readPort(table, "port", station.link.kind), table.placeOf("port")};
        table.finish();
        if (!names.insert(nest.name).second)
            table.placeOf("name").refuse("another nest has this name");
        if (!ports.insert(nest.port).second)
            nest.place.refuse("another nest has this port");
        if (station.nests.size() == mostNests)
            table.placeOf("name").refuse("is one more than " + std::to_string(mostNests) + " nests");
        station.nests.push_back(std::move(nest));
    }
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

std::optional<HookCall> readHook(Table &hooks, const std::string &name) {
    if (!hooks.has(name))
        return std::nullopt;
    Table table = hooks.table(name);
    HookCall hook{table.texts("run"), static_cast<int>(table.number("seconds", 1, longestHook)), table.placeOf("run")};
    table.finish();
    if (hook.run.empty() || hook.run.front().empty() || hook.run.front().front() != '/')
        hook.place.refuse("must begin with the absolute path of a program");
    return hook;
}

void readHooks(Table table, Station &station) {
    station.before = readHook(table, "before");
    station.after = readHook(table, "after");
    table.finish();
}

Station parse(const std::string &path) {
    Table table = Table::parse(path, bytesOfFile(path, longestStation));
    Station station;
    station.read = true;
    table.number("format", 1, 1);
    station.name = table.text("station");
    station.registerPath = absolutePath(table, "register", systemRegister);
    station.registerPlace = table.placeOf("register");
    station.approval = table.choiceOr("approval", approvalWords, ApprovalRule::irreversible);
    station.approved = absolutePath(table, "approved", approvedDirectory);
    station.stopAfter = numberOr(table, "stop_after", mostFailures, station.stopAfter);
    station.retries = numberOr(table, "retries", mostRetries, station.retries);
    station.retryAfter = numberOr(table, "retry_after", longestPause, station.retryAfter);
    if (table.has("link") || table.has("nest"))
        station.link = readLink(table.table("link"));
    readNests(table, station);
    if (table.has("series"))
        readSeries(table.table("series"), station);
    if (table.has("hook"))
        readHooks(table.table("hook"), station);
    table.finish();
    return station;
}

} // namespace

Station readStation(const std::string &path) {
    if (!path.empty() || access(systemFile, F_OK) == 0)
        return parse(path.empty() ? systemFile : path);
    Station station;
    station.approved = approvedDirectory;
    station.registerPath = systemRegister;
    return station;
}
