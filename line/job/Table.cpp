#include "line/job/Table.h"

#include "programs/Status.h"
#include "programs/Text.h"

namespace {

std::string kindOf(const toml::node &node) {
    switch (node.type()) {
    case toml::node_type::table: return "a table";
    case toml::node_type::array: return "a list";
    case toml::node_type::string: return "a text";
    case toml::node_type::integer: return "a whole number";
    case toml::node_type::floating_point: return "a number with a point";
    case toml::node_type::boolean: return "true or false";
    default: return "a date or a time";
    }
}

// A table that is written out of its headers alone has no line of its own.
std::int64_t lineOf(const toml::node &node, std::int64_t otherwise) {
    return node.source().begin.line != 0 ? node.source().begin.line : otherwise;
}

[[noreturn]] void refuseKind(const Place &place, const char *wanted, const toml::node &node) {
    place.refuse(std::string("must be ") + wanted + ", and is " + kindOf(node));
}

} // namespace

void Place::refuse(const std::string &why) const {
    throw Refusal(notAcceptable, file + ':' + std::to_string(line) + ": " + (key.empty() ? "" : key + ": ") + why);
}

Table::Table(std::shared_ptr<const toml::table> whole, const toml::table &table, Place place)
    : m_whole(std::move(whole)), m_table(&table), m_place(std::move(place)) {}

Table Table::parse(const std::string &file, const std::string &text) {
    try {
        const auto whole = std::make_shared<const toml::table>(toml::parse(std::string_view(text)));
        return {whole, *whole, {file, 1, ""}};
    } catch (const toml::parse_error &error) {
        Place{file, error.source().begin.line, ""}.refuse(std::string(error.description()));
    }
}

std::string Table::pathOf(const std::string &key) const {
    return m_place.key.empty() ? key : m_place.key + '.' + key;
}

Place Table::placeOf(const std::string &key) const {
    const toml::node *node = m_table->get(key);
    return {m_place.file, node != nullptr ? lineOf(*node, m_place.line) : m_place.line, pathOf(key)};
}

const toml::node &Table::node(const std::string &key) {
    m_asked.insert(key);
    const toml::node *found = m_table->get(key);
    if (found == nullptr)
        placeOf(key).refuse("is missing");
    return *found;
}

std::string Table::text(const std::string &key) {
    const toml::node &found = node(key);
    const auto *value = found.as_string();
    if (value == nullptr)
        refuseKind(placeOf(key), "a text", found);
    if (value->get().empty() || !isHarmless(value->get()))
        placeOf(key).refuse("is empty, or holds control characters");
    return value->get();
}

std::int64_t Table::number(const std::string &key, std::int64_t lowest, std::int64_t highest) {
    const toml::node &found = node(key);
    const auto *value = found.as_integer();
    if (value == nullptr)
        refuseKind(placeOf(key), "a whole number", found);
    if (value->get() < lowest || value->get() > highest)
        placeOf(key).refuse("is not within " + std::to_string(lowest) + " and " + std::to_string(highest));
    return value->get();
}

bool Table::flag(const std::string &key) {
    const toml::node &found = node(key);
    const auto *value = found.as_boolean();
    if (value == nullptr)
        refuseKind(placeOf(key), "true or false", found);
    return value->get();
}

std::vector<std::string> Table::texts(const std::string &key) {
    const toml::node &found = node(key);
    const toml::array *list = found.as_array();
    if (list == nullptr)
        refuseKind(placeOf(key), "a list of texts", found);
    std::vector<std::string> all;
    for (const toml::node &one : *list) {
        const auto *value = one.as_string();
        if (value == nullptr)
            refuseKind(placeOf(key), "a list of texts", one);
        if (!isHarmless(value->get()))
            placeOf(key).refuse("holds control characters");
        all.push_back(value->get());
    }
    return all;
}

bool Table::isTable(const std::string &key) const {
    return has(key) && m_table->get(key)->is_table();
}

Table Table::table(const std::string &key) {
    const toml::node &found = node(key);
    if (!found.is_table())
        refuseKind(placeOf(key), "a table", found);
    return {m_whole, *found.as_table(), placeOf(key)};
}

std::vector<Table> Table::tables(const std::string &key) {
    std::vector<Table> all;
    if (!has(key))
        return all;
    const toml::node &found = node(key);
    const toml::array *list = found.as_array();
    if (list == nullptr)
        refuseKind(placeOf(key), "a list of tables", found);
    for (const toml::node &one : *list) {
        const Place place{m_place.file, lineOf(one, m_place.line),
                          pathOf(key) + '[' + std::to_string(all.size()) + ']'};
        if (!one.is_table())
            refuseKind(place, "a table", one);
        all.push_back({m_whole, *one.as_table(), place});
    }
    return all;
}

std::vector<std::string> Table::names() const {
    std::vector<std::string> all;
    for (const auto &entry : *m_table)
        all.emplace_back(entry.first.str());
    return all;
}

void Table::finish() const {
    const toml::key *first = nullptr;
    for (const auto &entry : *m_table) {
        const bool earlier = first == nullptr || entry.first.source().begin.line < first->source().begin.line;
        if (m_asked.count(std::string(entry.first.str())) == 0 && earlier)
            first = &entry.first;
    }
    if (first != nullptr)
        Place{m_place.file, lineOf(*m_table->get(*first), first->source().begin.line),
              pathOf(std::string(first->str()))}
            .refuse("no such key");
}
