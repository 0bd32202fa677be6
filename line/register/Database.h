#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

// A value of a database; the first is NULL.
using SqlValue = std::variant<std::monostate, std::int64_t, std::string>;

// A row of an answer, while it is looked at. Columns count from 0.
class SqlRow {
public:
    explicit SqlRow(sqlite3_stmt *statement) : m_statement(statement) {}

    bool isNull(int column) const;
    std::int64_t number(int column) const;   // 0 for NULL
    std::string text(int column) const;      // empty for NULL
    std::string_view view(int column) const; // the same, until the next row

private:
    sqlite3_stmt *m_statement;
};

// An open database of SQLite. Whatever goes wrong is a Refusal with registerUnusable, which names the file.
class Database {
public:
    enum class Purpose {
        writing, // what is committed is on disk
        reading  // nothing of it is changed, nor made
    };

    Database(const std::string &path, Purpose purpose);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    // Several statements that answer nothing.
    void run(const char *statements);
    // One statement, $1 and on being the values, for each row of its answer.
    void each(const char *statement, const std::vector<SqlValue> &values,
              const std::function<void(const SqlRow &)> &take);
    // The same where no answer matters.
    void tell(const char *statement, const std::vector<SqlValue> &values);
    // The first number of an answer, and another where there is no row or NULL in it.
    std::int64_t number(const char *statement, const std::vector<SqlValue> &values, std::int64_t missing = 0);

    // Does all of the work or, where it throws, nothing of it. Nobody else writes in between. Within another one it is
    // a part of that.
    void together(const std::function<void()> &work);

private:
    using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)>;

    [[noreturn]] void fail() const;
    Statement statementOf(const char *text);

    const std::string m_path;
    sqlite3 *m_database = nullptr;
    std::map<std::string, Statement, std::less<>> m_statements; // that are ready, by their text
};
