#include <cstdio>
#include <iostream>
#include <memory>
#include <string_view>

#include "line/books/UnitCsv.h"
#include "line/program/BookVerbs.h"
#include "line/program/BookWords.h"
#include "line/station/Station.h"
#include "programs/Status.h"
#include "programs/Text.h"

namespace {

struct Wish {
    Wanted wanted;
    bool csv = false;
};

// Standard output, a line at a time. Whoever reads it may leave before a million of them.
class Sheet {
public:
    ~Sheet() { flush(); }
    void put(std::string_view line) {
        m_text += line;
        m_text += '\n';
        if (m_text.size() >= enough)
            flush();
        if (!std::cout)
            throw Refusal(notAcceptable, "the report can't be written");
    }

private:
    static constexpr std::size_t enough = 65536;

    void flush() {
        std::cout.write(m_text.data(), static_cast<std::streamsize>(m_text.size()));
        m_text.clear();
    }

    std::string m_text;
};

constexpr char form[] = "%8s  %-19s  %-8s  %-11s  %-12s  %-10s  %-24s  %-17s  %s";

std::string lineOf(const std::array<std::string, 9> &all) {
    char text[1024];
    std::snprintf(text, sizeof text, form, all[0].c_str(), all[1].c_str(), all[2].c_str(), all[3].c_str(),
                  all[4].c_str(), all[5].c_str(), all[6].c_str(), all[7].c_str(), all[8].c_str());
    std::string line = text;
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

// Of a time, what a person reads: to the second.
std::string shortTime(std::string time) {
    constexpr std::size_t toTheSecond = 19;
    time.resize(std::min(time.size(), toTheSecond));
    const std::size_t middle = time.find('T');
    if (middle != time.npos)
        time[middle] = ' ';
    return time;
}

std::string lineOf(const UnitLine &unit) {
    const std::string number = unit.number ? std::to_string(*unit.number) : "";
    return harmless(lineOf({std::to_string(unit.attempt), shortTime(unit.started), unit.nest, unit.result, unit.series,
                            number, unit.uid, unit.cause, unit.order}));
}

int units(const Wish &wish, const Asked &asked) {
    if (wish.csv && asked.json)
        throw Refusal(badWords, "--csv and --json exclude each other");
    Books books(readStation(asked.station).registerPath);
    std::int64_t count = 0;
    Sheet sheet;
    if (wish.csv)
        sheet.put(csvHead());
    if (!wish.csv && !asked.json)
        sheet.put(lineOf({"attempt", "started (UTC)", "nest", "result", "series", "number", "uid", "cause", "order"}));
    CsvRows rows;
    if (wish.csv || asked.json)
        books.records(wish.wanted, [&](std::string_view record) {
            ++count;
            sheet.put(wish.csv ? rows.of(record) : harmlessJson(std::string(record)));
        });
    else
        books.units(wish.wanted, [&](const UnitLine &unit) {
            ++count;
            sheet.put(lineOf(unit));
        });
    return count == 0 ? noUnit : allDone;
}

} // namespace

Work declareUnits(CLI::App &words) {
    const auto wish = std::make_shared<Wish>();
    declareUid(words, wish->wanted);
    words.add_option("--number", wish->wanted.number, "only units with this number");
    declareOrder(words, wish->wanted);
    declareSince(words, wish->wanted);
    words.add_option("--result", wish->wanted.result, "only attempts that ended so")
        ->check(CLI::IsMember({"pass", "fail", "refused", "interrupted", "open"}));
    words.add_flag("--csv", wish->csv, "print all of each record as comma-separated values");
    return [=](const Asked &asked) { return units(*wish, asked); };
}
