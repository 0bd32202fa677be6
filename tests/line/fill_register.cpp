// Fills a register with attempts at units, the same ones each time: what became of them, and of how many, differs from
// one to the next. With "--hold" it stays at the register until its standard input ends.
//
// usage: fill-register FILE COUNT [--hold]
#include <cstdio>
#include <cstring>
#include <iostream>

#include "line/gang/UnitRecord.h"
#include "line/register/Register.h"
#include "line/register/Sql.h"
#include "programs/FileBytes.h"

namespace {

constexpr int attemptsOfAStep = 10000; // in one go
constexpr int nests = 16;

struct Fate {
    const char *result;
    const char *cause; // null for none
    const char *text;
};
// By the last digits of an attempt.
const Fate fates[] = {{"fail", "no-answer", "no answer, \"nothing\" came"},
                      {"fail", "verify-differs", "08000100: 1,2"},
                      {"refused", "not-allowed",
                       "on hold\xC2\x9B"
                       "31m \x1B[31m,\nstop \xC3\xA4\x7F"},
                      {"interrupted", nullptr, nullptr},
                      {"interrupted", "station-died", "the line ended"}};
constexpr int oneInSoMany = 23; // is not made at the first attempt

std::string timeOf(std::int64_t attempt, int more) {
    const std::int64_t ms = attempt * 13107 + more;
    char text[64];
    std::snprintf(text, sizeof text, "2026-%02d-%02dT%02d:%02d:%02d.%03dZ", static_cast<int>(ms / 2419200000 % 12 + 1),
                  static_cast<int>(ms / 86400000 % 28 + 1), static_cast<int>(ms / 3600000 % 24),
                  static_cast<int>(ms / 60000 % 60), static_cast<int>(ms / 1000 % 60), static_cast<int>(ms % 1000));
    return text;
}

Fate fateOf(std::int64_t attempt) {
    return attempt % oneInSoMany != 0 ? Fate{"pass", nullptr, nullptr}
                                      : fates[static_cast<std::size_t>(attempt / oneInSoMany) % std::size(fates)];
}

std::string uidOf(std::int64_t chip) {
    char uid[32];
    std::snprintf(uid, sizeof uid, "%024llx", 0x59a1bed7a33c9000ULL + static_cast<unsigned long long>(chip));
    return uid;
}

// What the records of all attempts have in common, as a line at work makes it.
class Line {
public:
    explicit Line(const std::string &path) : m_units(path) {
        m_job.verify = Verify::crc;
        m_job.access = Access::on;
        m_plan.hash = sha256Of("plan");
        m_plan.imageHash = sha256Of("image");
        m_station.name = "line-3/programming";
    }
    const std::string &plan() const { return m_plan.hash; }
    Register &units() { return m_units; }

    // At its beginning.
    Json record(std::int64_t attempt) {
        const char *const orders[] = {"PO-88", "PO-89, \"second\"", ""};
        const Shift shift = {m_job, m_plan, m_image, m_station, orders[attempt % 3], m_units};
        Json record = newRecord(shift, {'A' + std::to_string(attempt % nests + 1), "usb 1-2.1", {}});
        record["attempt"] = attempt;
        record["started"] = timeOf(attempt, 0);
        return record;
    }

private:
    Job m_job{};
    Plan m_plan{};
    const Runs m_image;
    Station m_station;
    Register m_units;
};

Outcome outcomeOf(const Fate &fate, std::int64_t attempt, bool isKnown) {
    Outcome outcome;
    outcome.cause = fate.cause == nullptr ? "" : fate.cause;
    outcome.text = fate.text == nullptr ? "" : fate.text;
    outcome.stopped = std::strcmp(fate.result, "interrupted") == 0;
    const bool passes = outcome.passed();
    outcome.code = passes ? 0 : 47;
    if (!isKnown)
        return outcome;
    const Json after = passes ? Json("aa55ff00ed12ff00") : Json();
    outcome.end = {{"verified", passes}, {"options", {{"before", "aa55ff00ff00ff00"}, {"after", after}}}};
    if (passes)
        outcome.end["ms"] = {{"connect", 31}, {"erase", 2410}, {"write", 7900}, {"verify", attempt % 100}};
    if (passes && attempt % 100 == 7) { // a job that does all there is
        int ms = 11;
        for (const char *step : {"identify", "options", "protect", "otp", "access", "run"})
            outcome.end["ms"][step] = ms++;
    }
    return outcome;
}

Json recordOf(Line &line, std::int64_t attempt) {
    const Fate fate = fateOf(attempt);
    const bool isRefused = std::strcmp(fate.result, "refused") == 0;
    const bool isKnown = fate.cause == nullptr || std::strcmp(fate.cause, "no-answer") != 0;
    const Outcome outcome = outcomeOf(fate, attempt, isKnown);
    // What failed is made again by the next attempt; what gave no answer is not known.
    const std::int64_t chip = outcome.passed() ? attempt : attempt + 1;
    const std::string uid = uidOf(chip);
    Json record = line.record(attempt);
    if (isKnown)
        setIdentified(record, {{"chip", "ZV32F403A_1024K"}, {"pid", "70050347"}, {"bootloader", "2.1"}, {"uid", uid}});
    if (isKnown && !isRefused) {
        record["series"] = "ZX100";
        record["number"] = 100000 + chip;
    }
    if (outcome.passed())
        record["unit_image"] = sha256Of(uid);
    setOutcome(record, outcome, 1);
    if (isRefused)
        setResult(record, fate.result, fate.cause, fate.text);
    return record;
}

SqlValue valueOf(const Json &value) {
    if (value.is_null())
        return {};
    return value.is_number() ? SqlValue(value.get<std::int64_t>()) : SqlValue(value.get<std::string>());
}

void add(Database &units, Line &line, std::int64_t attempt) {
    const Json record = recordOf(line, attempt);
    const auto value = [&](const char *key) { return valueOf(record.at(key)); };
    if (!record.at("number").is_null() && record.at("result") == "pass")
        units.tell(sql::giveNumber, {value("series"), value("number"), value("uid")});
    const bool given = record.at("result") == "pass";
    units.tell(sql::beginAttempt,
               {attempt, value("plan"), value("order"), value("station"), value("nest"), value("uid"),
                given ? value("series") : SqlValue(), given ? value("number") : SqlValue(), std::string("nobody"),
                value("result"), value("cause"), value("started"),
                timeOf(attempt, 10341 + static_cast<int>(attempt % 100))});
    units.tell(sql::beginRecord, {attempt, record.dump()});
    if (attempt % 1000 == 1)
        units.tell(sql::queueDelivery, {attempt});
}

// Nothing of it has to outlast a loss of power.
void fill(const std::string &path, std::int64_t count) {
    Line line(path);
    line.units().keepPlan(line.plan(), "ZX100", count, "plan 1\n");
    Database units(path, Database::Purpose::writing);
    units.run("PRAGMA synchronous = OFF");
    for (std::int64_t first = 1; first <= count; first += attemptsOfAStep)
        units.together([&] {
            for (std::int64_t attempt = first; attempt < first + attemptsOfAStep && attempt <= count; ++attempt)
                add(units, line, attempt);
        });
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 3)
        return 1;
    fill(argv[1], std::stoll(argv[2]));
    if (argc == 3)
        return 0;
    // As a line does that has recorded one thing and has read nothing since.
    Register units(argv[1]);
    units.keepPlan("5be1", "another", 1, "plan 1\n");
    std::cout << "ready" << std::endl;
    std::cin.get();
    return 0;
}
