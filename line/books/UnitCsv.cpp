#include "line/books/UnitCsv.h"

#include <array>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "programs/Json.h"
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
constexpr std::size_t columnCount = std::size(columns);

std::string fieldOf(const std::string &text) {
    std::string shown = harmless(text);
    if (shown.find_first_of("\",") == shown.npos)
        return shown;
    for (std::size_t at = 0; (at = shown.find('"', at)) != shown.npos; at += 2)
        shown.insert(at, 1, '"');
    return '"' + shown + '"';
}

const std::unordered_map<std::string_view, std::size_t> &places() {
    static const auto all = [] {
        std::unordered_map<std::string_view, std::size_t> made;
        for (std::size_t i = 0; i < columnCount; ++i)
            made[columns[i]] = i;
        return made;
    }();
    return all;
}

// Takes what a record holds as it is read, without building all of it: there may be a million.
class Taker : public nlohmann::json_sax<Json> {
public:
    const std::array<std::string, columnCount> &values() const { return m_values; }

    bool null() override { return put(""); }
    bool boolean(bool value) override { return put(value ? "true" : "false"); }
    bool number_integer(std::int64_t value) override { return put(std::to_string(value)); }
    bool number_unsigned(std::uint64_t value) override { return put(std::to_string(value)); }
    bool number_float(double /*value*/, const std::string &text) override { return put(text); }
    bool string(std::string &value) override { return put(fieldOf(value)); }
    bool binary(Json::binary_t & /*value*/) override { return false; }
    bool start_object(std::size_t /*count*/) override { return enter(); }
    bool end_object() override { return leave(); }
    bool start_array(std::size_t /*count*/) override { return enter(); }
    bool end_array() override { return leave(); }
    bool key(std::string &name) override {
        m_way.resize(m_starts.back());
        m_way += name;
        return true;
    }
    bool parse_error(std::size_t /*at*/, const std::string & /*token*/, const nlohmann::detail::exception &) override {
        return false;
    }

private:
    bool put(const std::string &value) {
        const auto found = places().find(m_way);
        if (found != places().end())
            m_values[found->second] = value;
        return true;
    }
    bool enter() {
        if (!m_starts.empty())
            m_way += '.';
        m_starts.push_back(m_way.size());
        return true;
    }
    bool leave() {
        m_starts.pop_back();
        return true;
    }

    std::string m_way;
    std::vector<std::size_t> m_starts; // in the way, of each object that is open
    std::array<std::string, columnCount> m_values;
};

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

std::string csvRow(const std::string &record) {
    Taker taker;
    Json::sax_parse(record, &taker);
    std::string row;
    for (std::size_t i = 0; i < columnCount; ++i)
        row += (i == 0 ? "" : ",") + taker.values()[i];
    return row;
}
