#include "line/books/Books.h"

#include "line/register/Sql.h"

namespace {

class Conditions {
public:
    void add(const char *condition, const std::optional<std::string> &value) {
        if (value)
            add(condition, {SqlValue(*value)});
    }
    void add(std::string_view condition, const std::vector<SqlValue> &values) {
        std::size_t place = m_values.size();
        m_values.insert(m_values.end(), values.begin(), values.end());
        m_text += " AND ";
        for (const char c : condition)
            m_text += c == '?' ? '$' + std::to_string(++place) : std::string(1, c);
    }
    const std::string &text() const { return m_text; }
    const std::vector<SqlValue> &values() const { return m_values; }

private:
    std::string m_text;
    std::vector<SqlValue> m_values;
};

} // namespace

Books::Books(const std::string &path) : m_database(path, Database::Purpose::reading) {
    m_database.run("BEGIN");
}

void Books::each(const char *what, const Wanted &wanted, const char *order,
                 const std::function<void(const SqlRow &)> &take) {
    Conditions conditions;
    conditions.add(sql::isOfChip, wanted.uid);
    if (wanted.number)
        conditions.add(sql::hasNumber, {*wanted.number});
    conditions.add(sql::isOfOrder, wanted.order);
    conditions.add(sql::isOfResult, wanted.result);
    if (wanted.since)
        conditions.add(sql::startedSince, {m_database.number(sql::firstSince, {*wanted.since}),
                                           m_database.number(sql::lastBefore, {*wanted.since}), *wanted.since});
    m_database.each((what + conditions.text() + order).c_str(), conditions.values(), take);
}

void Books::units(const Wanted &wanted, const std::function<void(const UnitLine &)> &take) {
    each(sql::someUnits, wanted, sql::inOrder, [&](const SqlRow &row) {
        const auto number = row.isNull(6) ? std::nullopt : std::optional(row.number(6));
        take({row.number(0), row.text(1), row.text(2), row.text(3), row.text(4), row.text(5), number, row.text(7),
              row.text(8)});
    });
}

void Books::records(const Wanted &wanted, const std::function<void(std::string_view)> &take) {
    each(sql::someRecords, wanted, sql::inOrder, [&](const SqlRow &row) { take(row.view(0)); });
}

void Books::ends(const Wanted &wanted, const std::function<void(const UnitEnd &)> &take) {
    each(sql::someEnds, wanted, sql::inOrder, [&](const SqlRow &row) {
        take({row.view(0), row.view(1), row.view(2), row.view(3), row.view(4)});
    });
}

void Books::endsByChip(const Wanted &wanted, const std::function<void(const ChipEnd &)> &take) {
    each(sql::someOfChips, wanted, wanted.order ? sql::byChipOfSome : sql::byChip, [&](const SqlRow &row) {
        take({row.view(0), row.view(1), row.number(2)});
    });
}

std::int64_t Books::undelivered() {
    return m_database.number(sql::allUndelivered, {});
}
