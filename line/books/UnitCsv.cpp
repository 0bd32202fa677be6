#include "line/books/UnitCsv.h"

#include <iterator>
#include <string_view>
#include <unordered_map>

#include "programs/Text.h"

namespace {

// Ways into a record. A column is named as its way, with "_" in the place of the point.
constexpr std::string_view columns[] = {
    "attempt",     "station",  "nest",     "port",      "order",          "chip",          "pid",
    "bootloader",  "uid",      "series",   "number",    "plan",           "image",         "unit_image",
    "verify",      "verified", "access",   "started",   "tries",          "result",        "cause",
    "code",        "text",     "version",  "v",         "options.before", "options.after", "ms.connect",
    "ms.identify", "ms.erase", "ms.write", "ms.verify", "ms.options",     "ms.protect",    "ms.otp",
    "ms.access",   "ms.run"};
static_assert(std::size(columns) == CsvRows::columns);

// Nothing of it tells a terminal or a table something.
bool isPlain(std::string_view text) {
    bool plain = true;
    for (const char c : text)
        plain &= c >= ' ' && c < 0x7F && c != '"' && c != ',';
    return plain;
}

std::string fieldOf(std::string_view text) {
    std::string shown = harmless(std::string(text));
    if (shown.find_first_of("\",") == shown.npos)
        return shown;
    for (std::size_t at = 0; (at = shown.find('"', at)) != shown.npos; at += 2)
        shown.insert(at, 1, '"');
    return '"' + shown + '"';
}

const std::unordered_map<std::string_view, std::size_t> &places() {
    static const auto all = [] {
        std::unordered_map<std::string_view, std::size_t> made;
        for (std::size_t i = 0; i < std::size(columns); ++i)
            made[columns[i]] = i;
        return made;
    }();
    return all;
}

} // namespace

std::string csvHead() {
    std::string head;
    for (const std::string_view column : columns) {
        head += head.empty() ? "" : ",";
        for (const char c : column)
            head += c == '.' ? '_' : c;
    }
    return head;
}

void CsvRows::take(std::string_view way, std::string_view value, bool isText) {
    const auto found = places().find(way);
    if (found == places().end())
        return;
    std::string &field = m_values[found->second];
    if (!isText && value == "null")
        field.clear();
    else if (isPlain(value))
        field = value;
    else
        field = fieldOf(value);
}

void CsvRows::clear() {
    for (std::string &value : m_values)
        value.clear();
}

const std::string &CsvRows::of(std::string_view record) {
    clear();
    const auto take = [this](std::string_view way, std::string_view value, bool isText) {
        this->take(way, value, isText);
    };
    if (!m_walk.run(record, take))
        clear();
    m_row.clear();
    for (const std::string &value : m_values) {
        m_row += value;
        m_row += ',';
    }
    m_row.pop_back();
    return m_row;
}
