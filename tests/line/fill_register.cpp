// Fills a register with attempts at units, the same ones each time: what became of them, and of how many, differs from
// one to the next. With "--hold" it stays at the register until its standard input ends.
//
// usage: fill-register FILE COUNT [--hold]
#include <cstdio>
#include <cstring>
#include <iostream>

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

Json recordOf(std::int64_t attempt) {
    const bool passes = attempt % oneInSoMany != 0;
    const Fate fate = fateOf(attempt);
    // What failed is made again by the next attempt; what gave no answer is not known.
    const std::int64_t chip = passes ? attempt : attempt + 1;
    const bool isKnown = fate.cause == nullptr || std::strcmp(fate.cause, "no-answer") != 0;
    const std::string uid = uidOf(chip);
    const auto known = [&](const Json &value) { return isKnown ? value : Json(); };
    const bool numbered = isKnown && std::strcmp(fate.result, "refused") != 0;
    return {{"v", 1},
            {"attempt", attempt},
            {"station", "line-3/programming"},
            {"nest", 'A' + std::to_string(attempt % nests + 1)},
            {"port", "usb 1-2.1"},
            {"order", attempt % 3 == 0   ? "PO-88"
                      : attempt % 3 == 1 ? "PO-89, \"second\""
                                         : ""},
            {"chip", known("ZV32F403A_1024K")},
            {"pid", known("70050347")},
            {"bootloader", known("2.1")},
            {"uid", known(uid)},
            {"series", numbered ? Json("ZX100") : Json()},
            {"number", numbered ? Json(100000 + chip) : Json()},
            {"plan", sha256Of("plan")},
            {"image", sha256Of("image")},
            {"unit_image", passes ? Json(sha256Of(uid)) : Json()},
            {"verify", "crc"},
            {"verified", passes},
            {"options", {{"before", known("aa55ff00ff00ff00")}, {"after", passes ? Json("aa55ff00ed12ff00") : Json()}}},
            {"access", "on"},
            {"started", timeOf(attempt, 0)},
            {"ms", passes ? Json{{"connect", 31}, {"erase", 2410}, {"write", 7900}, {"verify", attempt % 100}}
                          : Json::object()},
            {"tries", 1},
            {"result", fate.result},
            {"cause", fate.cause == nullptr ? Json() : Json(fate.cause)},
            {"code", passes ? 0 : 47},
            {"text", fate.text == nullptr ? Json() : Json(fate.text)},
            {"version", ZV32_VERSION}};
}

SqlValue valueOf(const Json &value) {
    if (value.is_null())
        return {};
    return value.is_number() ? SqlValue(value.get<std::int64_t>()) : SqlValue(value.get<std::string>());
}

void add(Database &units, std::int64_t attempt) {
    const Json record = recordOf(attempt);
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

void fill(const std::string &path, std::int64_t count) {
    Register(path).keepPlan(sha256Of("plan"), "ZX100", count, "plan 1\n");
    Database units(path, Database::Purpose::writing);
    for (std::int64_t first = 1; first <= count; first += attemptsOfAStep)
        units.together([&] {
            for (std::int64_t attempt = first; attempt < first + attemptsOfAStep && attempt <= count; ++attempt)
                add(units, attempt);
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
