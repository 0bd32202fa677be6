#include "line/books/Books.h"

#include "line/register/Sql.h"

namespace {

class Conditions {
public:
    void add(const char *condition, const std::optional<std::string> &value) {
        if (value)
            add(condition, SqlValue(*value));
    }
    void add(const char *condition, const SqlValue &value) {
        m_values.push_back(value);
        m_text +=
            (m_text.empty() ? " WHERE " : " AND ") + std::string(condition) + '$' + std::to_string(m_values.size());
    }
    const std::string &text() const { return m_text; }
    const std::vector<SqlValue> &values() const { return m_values; }

private:
    std::string m_text;
    std::vector<SqlValue> m_values;
};

} // namespace

void Books::each(const char *what, const Wanted &wanted, const std::function<void(const SqlRow &)> &take) {
    Conditions conditions;
    conditions.add(sql::isOfChip, wanted.uid);
    if (wanted.number)
        conditions.add(sql::hasNumber, SqlValue(*wanted.number));
    conditions.add(sql::isOfOrder, wanted.order);
    conditions.add(sql::isOfResult, wanted.result);
    if (wanted.since) {
        conditions.add(sql::isNotBefore, SqlValue(m_database.number(sql::firstSince, {*wanted.since})));
        conditions.add(sql::startedSince, wanted.since);
    }
    m_database.each((what + conditions.text() + sql::inOrder).c_str(), conditions.values(), take);
}

void Books::units(const Wanted &wanted, const std::function<void(const UnitLine &)> &take) {
    each(sql::someUnits, wanted, [&](const SqlRow &row) {
        const auto number = row.isNull(6) ? std::nullopt : std::optional(row.number(6));
        take({row.number(0), row.text(1), row.text(2), row.text(3), row.text(4), row.text(5), number, row.text(7),
              row.text(8)});
    });
}

void Books::records(const Wanted &wanted, const std::function<void(std::string_view)> &take) {
    each(sql::someRecords, wanted, [&](const SqlRow &row) { take(row.view(0)); });
}

void Books::ends(const Wanted &wanted, const std::function<void(const UnitEnd &)> &take) {
    each(sql::someEnds, wanted, [&](const SqlRow &row) {
        take({row.view(0), row.view(1), row.view(2), row.view(3), row.view(4), row.view(5)});
    });
}

std::int64_t Books::undelivered() {
    return m_database.number(sql::allUndelivered, {});
}
