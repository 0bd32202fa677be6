#include <cstdio>
#include <iostream>
#include <memory>

#include "line/books/Stats.h"
#include "line/program/BookVerbs.h"
#include "line/program/BookWords.h"
#include "line/station/Station.h"
#include "programs/Json.h"
#include "programs/Status.h"
#include "programs/Text.h"

namespace {

std::string formed(const char *form, double value) {
    char text[64];
    std::snprintf(text, sizeof text, form, value);
    return text;
}

// Of those that passed, on average; below nothing where none has.
double secondsOf(const Stats::Counts &counts) {
    const std::int64_t passed = counts.ended[0];
    return passed == 0 ? -1 : static_cast<double>(counts.milliseconds) / 1000 / static_cast<double>(passed);
}

void add(Json &into, const Stats::Counts &counts) {
    into["attempts"] = counts.attempts;
    for (std::size_t i = 0; i < Stats::results.size(); ++i)
        into[Stats::results[i]] = counts.ended[i];
    const std::int64_t passed = counts.ended[0];
    into["ms"] = passed == 0 ? Json() : Json((counts.milliseconds + passed / 2) / passed);
}

Json jsonOf(const Wanted &wanted, const Stats &stats, std::int64_t undelivered) {
    Json whole = {{"verb", "stats"},
                  {"status", allDone},
                  {"since", wanted.since ? Json(*wanted.since) : Json()},
                  {"order", wanted.order ? Json(*wanted.order) : Json()}};
    add(whole, stats.all());
    const Stats::Chips &chips = stats.chips();
    whole["chips"] = {{"made", chips.made}, {"passed", chips.passed}, {"first", chips.first}};
    whole["undelivered"] = undelivered;
    whole["causes"] = Json(stats.causes());
    whole["nests"] = Json::object();
    for (const auto &nest : stats.nests())
        add(whole["nests"][nest.first], nest.second);
    return whole;
}

std::string rowOf(const std::string &name, const Stats::Counts &counts) {
    char text[256];
    std::snprintf(text, sizeof text, "%-8s %9lld", name.c_str(), static_cast<long long>(counts.attempts));
    std::string row = text;
    for (const std::int64_t count : counts.ended) {
        std::snprintf(text, sizeof text, " %12lld", static_cast<long long>(count));
        row += text;
    }
    const double seconds = secondsOf(counts);
    return row + (seconds < 0 ? "" : formed(" %12.1f", seconds));
}

std::string headOfRows() {
    std::string head = "nest      attempts";
    for (const char *result : Stats::results) {
        char text[64];
        std::snprintf(text, sizeof text, " %12s", result);
        head += text;
    }
    return head + "       s/unit";
}

void print(const Stats &stats, std::int64_t undelivered) {
    std::cout << headOfRows() << '\n';
    for (const auto &nest : stats.nests())
        std::cout << harmless(rowOf(nest.first, nest.second)) << '\n';
    std::cout << rowOf("all", stats.all()) << '\n';
    const Stats::Chips &chips = stats.chips();
    std::cout << "\nchips          " << chips.made << "\npassed         " << chips.passed << "\nat first       "
              << chips.first;
    if (chips.made > 0)
        std::cout << formed(" (%.1f %%)", 100.0 * static_cast<double>(chips.first) / static_cast<double>(chips.made));
    std::cout << "\nnot delivered  " << undelivered << '\n';
    const char *between = "causes         ";
    for (const auto &cause : stats.causes()) {
        std::cout << between << harmless(cause.first) << ' ' << cause.second;
        between = ", ";
    }
    std::cout << (stats.causes().empty() ? "" : "\n");
}

int stats(const Wanted &wanted, const Asked &asked) {
    Books books(readStation(asked.station).registerPath);
    Stats stats;
    books.ends(wanted, [&](const UnitEnd &end) { stats.add(end); });
    books.endsByChip(wanted, [&](const ChipEnd &end) { stats.add(end); });
    const std::int64_t undelivered = books.undelivered();
    if (asked.json)
        std::cout << printed(jsonOf(wanted, stats, undelivered), 2) << '\n';
    else
        print(stats, undelivered);
    return allDone;
}

} // namespace

Work declareStats(CLI::App &words) {
    const auto wanted = std::make_shared<Wanted>();
    declareOrder(words, *wanted);
    declareSince(words, *wanted);
    return [=](const Asked &asked) { return stats(*wanted, asked); };
}
