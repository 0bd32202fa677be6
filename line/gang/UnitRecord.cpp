#include "line/gang/UnitRecord.h"

#include "programs/FileBytes.h"

Terms Shift::terms() const {
    Terms terms;
    terms.quantity = job.quantity;
    terms.again = job.makeAgain;
    for (const UnitDatum &unit : job.units)
        if (!unit.series.empty())
            terms.series = unit.series; // there is one for all of a job
    const auto found = station.series.find(terms.series);
    if (found != station.series.end()) {
        terms.first = found->second.first;
        terms.last = found->second.last;
    }
    return terms;
}

Json newRecord(const Shift &shift, const Nest &nest) {
    return {{"v", 1},
            {"attempt", nullptr},
            {"station", shift.station.name},
            {"nest", nest.name},
            {"port", nest.port},
            {"order", shift.order},
            {"chip", nullptr},
            {"pid", nullptr},
            {"bootloader", nullptr},
            {"uid", nullptr},
            {"series", nullptr},
            {"number", nullptr},
            {"plan", shift.plan.hash},
            {"image", shift.plan.imageHash},
            {"unit_image", nullptr},
            {"verify", nameOf(shift.job.verify)},
            {"verified", false},
            {"options", {{"before", nullptr}, {"after", nullptr}}},
            {"access", nameOf(shift.job.access)},
            {"started", timeNow()},
            {"ms", Json::object()},
            {"tries", 1},
            {"result", "open"},
            {"cause", nullptr},
            {"code", 0},
            {"text", nullptr},
            {"version", ZV32_VERSION}};
}

void setIdentified(Json &record, const Json &identified) {
    for (const char *key : {"chip", "pid", "bootloader", "uid"})
        record[key] = identified.at(key).get<std::string>();
}

void setImage(Json &record, const Runs &image) {
    record["unit_image"] = sha256Of(bytesOf(image));
}

void setOutcome(Json &record, const Outcome &outcome, int tries) {
    for (const char *key : {"verified", "options", "ms"})
        if (outcome.end.is_object() && outcome.end.contains(key))
            record[key] = outcome.end.at(key);
    record["tries"] = tries;
    record["result"] = outcome.passed() ? "pass" : outcome.stopped ? "interrupted" : "fail";
    record["code"] = outcome.code;
    if (!outcome.cause.empty()) {
        record["cause"] = outcome.cause;
        record["text"] = outcome.text;
    }
}

void setResult(Json &record, const char *result, const std::string &cause, const std::string &text) {
    record["result"] = result;
    record["cause"] = cause;
    record["text"] = text;
}
