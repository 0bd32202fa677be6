#include "line/job/UnitTables.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <stdexcept>

#include "line/job/UnitText.h"
#include "line/job/Words.h"

namespace {

constexpr std::int64_t lastAddress = 0xFFFFFFFF;
constexpr std::int64_t longest = 4096;
constexpr std::uint32_t wordSize = 4;
constexpr std::uint32_t uidSize = 12;

const std::map<std::string, UnitValue> values = {{"number", UnitValue::number}, {"uid", UnitValue::uid},
                                                 {"time", UnitValue::time},     {"order", UnitValue::order},
                                                 {"text", UnitValue::text},     {"supply", UnitValue::supply}};
const std::map<std::string, UnitForm> forms = {
    {"u32le", UnitForm::u32le}, {"u32be", UnitForm::u32be}, {"ascii", UnitForm::ascii}, {"hex", UnitForm::hex}};

// Which forms a value has, and how many characters it has at least as a text.
struct Rule {
    UnitValue value;
    bool asWord;
    bool asHex;
    std::size_t characters;
};
constexpr Rule rules[] = {{UnitValue::number, true, false, 1},
                          {UnitValue::uid, false, true, uidDigits},
                          {UnitValue::time, true, false, timeCharacters},
                          {UnitValue::order, false, false, 1},
                          {UnitValue::text, false, true, 1},
                          {UnitValue::supply, true, true, 1}};

const Rule &ruleOf(UnitValue value) {
    return *std::find_if(std::begin(rules), std::end(rules), [&](const Rule &rule) { return rule.value == value; });
}

bool isWord(UnitForm form) {
    return form == UnitForm::u32le || form == UnitForm::u32be;
}

// Bytes of a text in hexadecimal digits.
std::uint32_t hexSize(const UnitDatum &datum, const Place &place) {
    const std::string &digits = datum.text;
    if (digits.size() % 2 != 0 || digits.find_first_not_of("0123456789abcdefABCDEF") != digits.npos)
        place.refuse("must be pairs of hexadecimal digits");
    return static_cast<std::uint32_t>(digits.size() / 2);
}

// Reads the text of a datum, and returns how many characters it has at least.
std::size_t readText(Table &table, UnitDatum &datum) {
    datum.text = table.text("text");
    if (datum.form == UnitForm::hex)
        return 0;
    try {
        const UnitText text(datum.text);
        if (text.has("number"))
            datum.series = table.text("series");
        return text.shortest();
    } catch (const std::invalid_argument &failure) {
        table.placeOf("text").refuse(failure.what());
    }
}

void readSize(Table &table, UnitDatum &datum, std::size_t characters) {
    if (isWord(datum.form))
        datum.size = wordSize;
    else if (datum.form == UnitForm::hex && datum.value != UnitValue::supply)
        datum.size = datum.value == UnitValue::uid ? uidSize : hexSize(datum, table.placeOf("text"));
    else
        datum.size = static_cast<std::uint32_t>(table.number("size", 1, longest));
    if (datum.size < characters)
        table.placeOf("size").refuse("is less than the " + std::to_string(characters) + " characters of the shortest");
    if (datum.end() > std::uint64_t(lastAddress) + 1)
        datum.place.refuse("reaches past the addresses of 32 bits");
}

UnitDatum readUnit(Table &table) {
    UnitDatum datum{};
    datum.at = static_cast<std::uint32_t>(table.number("at", 0, lastAddress));
    datum.place = table.placeOf("at");
    datum.value = table.choice("value", values);
    datum.form = table.choice("as", forms);
    const Rule &rule = ruleOf(datum.value);
    if ((isWord(datum.form) && !rule.asWord) || (datum.form == UnitForm::hex && !rule.asHex))
        table.placeOf("as").refuse(std::string("is no form of ") + nameOf(datum.value));
    if (datum.value == UnitValue::number)
        datum.series = table.text("series");
    if (datum.value == UnitValue::supply)
        datum.supply = table.text("supply");
    std::size_t characters = datum.form == UnitForm::ascii ? rule.characters : 0;
    if (datum.value == UnitValue::text)
        characters = readText(table, datum);
    readSize(table, datum, characters);
    table.finish();
    return datum;
}

void refuseOverlaps(const std::vector<UnitDatum> &units) {
    for (std::size_t i = 1; i < units.size(); ++i)
        if (units[i].at < units[i - 1].end())
            units[i].place.refuse("overlaps " + units[i - 1].place.key + " of line " +
                                  std::to_string(units[i - 1].place.line));
}

// MEANT: one number for each unit, so that a record names it by one.
void refuseSecondSeries(const std::vector<UnitDatum> &units) {
    const UnitDatum *first = nullptr;
    for (const UnitDatum &unit : units) {
        if (unit.series.empty())
            continue;
        if (first != nullptr && first->series != unit.series)
            unit.place.refuse("takes its number from another series than " + first->place.key);
        first = &unit;
    }
}

} // namespace

const char *nameOf(UnitValue value) {
    return wordOf(values, value);
}

const char *nameOf(UnitForm form) {
    return wordOf(forms, form);
}

std::vector<UnitDatum> readUnits(Table &job) {
    std::vector<UnitDatum> units;
    for (Table &table : job.tables("unit"))
        units.push_back(readUnit(table));
    std::stable_sort(units.begin(), units.end(), [](const UnitDatum &a, const UnitDatum &b) { return a.at < b.at; });
    refuseOverlaps(units);
    refuseSecondSeries(units);
    return units;
}
