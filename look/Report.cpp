#include "look/Report.h"

#include <algorithm>
#include <cctype>

#include "look/Lines.h"

namespace {

const char *const markNames[] = {"good", "note", "warning", "error"};

std::string camelCase(const std::string &name) {
    std::string text;
    bool up = false;
    for (const char c : name) {
        const bool joins = std::isalnum(static_cast<unsigned char>(c)) == 0;
        if (!joins)
            text += up ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
        up = joins;
    }
    return text;
}

} // namespace

std::string Section::Finding::shownName() const {
    return list == "checks" ? name : markNames[static_cast<int>(mark)];
}

void Section::fact(const std::string &name, Value value) {
    m_entries.push_back(Fact{name, std::move(value)});
}

void Section::finding(Mark mark, const std::string &name, const std::string &text, const std::string &cure) {
    m_entries.push_back(Finding{"findings", name, mark, text, cure});
}

void Section::check(Mark mark, const std::string &name, const std::string &measured, const std::string &cure) {
    m_entries.push_back(Finding{"checks", name, mark, measured, cure});
}

void Section::plain(const std::string &name, const std::string &text) {
    m_entries.emplace_back(Plain{name, text});
}

void Section::table(const std::string &name, std::vector<std::string> columns, std::vector<std::vector<Value>> rows) {
    m_entries.push_back(Table{name, std::move(columns), std::move(rows)});
}

Section &Section::section(const std::string &name, const std::string &title) {
    m_entries.push_back(Inner{name, {}});
    return std::get<Inner>(m_entries.back()).section.emplace_back(title);
}

Mark Section::worst() const {
    Mark worst = Mark::good;
    for (const Entry &entry : m_entries) {
        if (const auto *finding = std::get_if<Finding>(&entry))
            worst = std::max(worst, finding->mark);
        if (const auto *inner = std::get_if<Inner>(&entry))
            worst = std::max(worst, inner->section.front().worst());
    }
    return worst;
}

void Section::put(Json &object, const Fact &fact) {
    object[camelCase(fact.name)] = fact.value.json;
}

void Section::put(Json &object, const Finding &finding) {
    Json row = {{"name", finding.name}, {"mark", markNames[static_cast<int>(finding.mark)]}, {"text", finding.text}};
    if (!finding.cure.empty())
        row["cure"] = finding.cure;
    object[finding.list].push_back(std::move(row));
}

void Section::put(Json &object, const Table &table) {
    Json rows = Json::array();
    for (const std::vector<Value> &row : table.rows) {
        Json one = Json::object();
        for (std::size_t i = 0; i < table.columns.size(); ++i)
            one[camelCase(table.columns[i])] = row[i].json;
        rows.push_back(std::move(one));
    }
    object[camelCase(table.name)] = std::move(rows);
}

void Section::put(Json &object, const Plain &plain) {
    object[camelCase(plain.name)] = plain.text;
}

void Section::put(Json &object, const Inner &inner) {
    object[camelCase(inner.name)].push_back(inner.section.front().json());
}

Json Section::json() const {
    Json object = Json::object();
    if (!m_title.empty())
        object["title"] = m_title;
    for (const Entry &entry : m_entries)
        std::visit([&object](const auto &one) { put(object, one); }, entry);
    return object;
}

std::size_t Section::nameWidth() const {
    std::size_t width = 0;
    for (const Entry &entry : m_entries) {
        if (const auto *fact = std::get_if<Fact>(&entry))
            width = std::max(width, fact->name.size());
        if (const auto *finding = std::get_if<Finding>(&entry))
            width = std::max(width, finding->shownName().size());
    }
    return width;
}

std::string Section::text(bool inColour, int indentation) const {
    Lines lines(inColour, indentation, nameWidth());
    if (!m_title.empty())
        lines.title(m_title);
    for (const Entry &entry : m_entries)
        if (const auto *fact = std::get_if<Fact>(&entry))
            lines.named(fact->name, fact->value.text);
        else if (const auto *finding = std::get_if<Finding>(&entry))
            lines.marked(finding->mark, finding->shownName(), finding->text, finding->cure);
        else if (const auto *table = std::get_if<Table>(&entry))
            lines.table(table->name, table->columns, table->rows);
        else if (const auto *plain = std::get_if<Plain>(&entry))
            lines.add(plain->text);
        else
            lines.add(std::get<Inner>(entry).section.front().text(inColour, lines.inner()));
    return lines.text();
}
