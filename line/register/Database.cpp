#include "line/register/Database.h"

#include <filesystem>
#include <sqlite3.h>

#include "programs/Status.h"

namespace {

constexpr int patience = 30000; // ms, for others that write

int bind(sqlite3_stmt *statement, int place, const SqlValue &value) {
    if (const auto *number = std::get_if<std::int64_t>(&value))
        return sqlite3_bind_int64(statement, place, *number);
    if (const auto *text = std::get_if<std::string>(&value))
        return sqlite3_bind_text64(statement, place, text->data(), text->size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    return sqlite3_bind_null(statement, place);
}

// A name in the form that takes parameters, for those who only read. The files beside it are not made, nor written.
// Where nobody has left a log, nobody is at work, and the file alone is all there is.
std::string nameForReading(const std::string &path) {
    std::string name = "file:";
    for (const char c : path)
        name += c == '%' ? "%25" : c == '?' ? "%3f" : c == '#' ? "%23" : std::string(1, c);
    std::error_code none;
    const auto logged = std::filesystem::file_size(path + "-wal", none);
    return name + (none || logged == 0 ? "?immutable=1" : "?readonly_shm=1");
}

} // namespace

bool SqlRow::isNull(int column) const {
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

std::int64_t SqlRow::number(int column) const {
    return sqlite3_column_int64(m_statement, column);
}

std::string_view SqlRow::view(int column) const {
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    const int length = sqlite3_column_bytes(m_statement, column);
    return bytes == nullptr ? std::string_view() : std::string_view(bytes, static_cast<std::size_t>(length));
}

std::string SqlRow::text(int column) const {
    return std::string(view(column));
}

Database::Database(const std::string &path, Purpose purpose) : m_path(path) {
    const bool writes = purpose == Purpose::writing;
    // Each connection is one thread's.
    const int flags = SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_NOMUTEX |
                      (writes ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    const std::string name = writes ? path : nameForReading(path);
    try {
        if (sqlite3_open_v2(name.c_str(), &m_database, flags, nullptr) != SQLITE_OK)
            fail();
        sqlite3_busy_timeout(m_database, patience);
        if (!writes)
            return;
        // The files beside it stay, so that those who may only read find them.
        int stays = 1;
        sqlite3_file_control(m_database, "main", SQLITE_FCNTL_PERSIST_WAL, &stays);
        std::string mode;
        each("PRAGMA journal_mode = WAL", {}, [&](const SqlRow &row) { mode = row.text(0); });
        if (mode != "wal")
            throw Refusal(registerUnusable, m_path + ": its file system allows no write-ahead log");
        run("PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON;");
    } catch (const Refusal &) {
        sqlite3_close(m_database);
        throw;
    }
}

Database::~Database() {
    m_statements.clear();
    sqlite3_close(m_database);
}

void Database::fail() const {
    throw Refusal(registerUnusable, m_path + ": " + sqlite3_errmsg(m_database));
}

void Database::run(const char *statements) {
    if (sqlite3_exec(m_database, statements, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail();
}

void Database::each(const char *statement, const std::vector<SqlValue> &values,
                    const std::function<void(const SqlRow &)> &take) {
    Statement ready = statementOf(statement);
    sqlite3_stmt *const made = ready.get();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const int place = sqlite3_bind_parameter_index(made, ('$' + std::to_string(i + 1)).c_str());
        if (bind(made, place, values[i]) != SQLITE_OK)
            fail();
    }
    int status;
    while ((status = sqlite3_step(made)) == SQLITE_ROW)
        take(SqlRow(made));
    if (status != SQLITE_DONE)
        fail();
    sqlite3_reset(made);
    sqlite3_clear_bindings(made);
    m_statements.insert_or_assign(statement, std::move(ready));
}

// One that is used is not among those that are ready, so that it may be used within itself, and one that has failed is
// not used again.
Database::Statement Database::statementOf(const char *text) {
    if (const auto known = m_statements.find(text); known != m_statements.end())
        return std::move(m_statements.extract(known).mapped());
    sqlite3_stmt *made = nullptr;
    if (sqlite3_prepare_v3(m_database, text, -1, SQLITE_PREPARE_PERSISTENT, &made, nullptr) != SQLITE_OK)
        fail();
    return {made, sqlite3_finalize};
}

void Database::tell(const char *statement, const std::vector<SqlValue> &values) {
    each(statement, values, [](const SqlRow &) {});
}

std::int64_t Database::number(const char *statement, const std::vector<SqlValue> &values, std::int64_t missing) {
    std::int64_t found = missing;
    each(statement, values, [&](const SqlRow &row) { found = row.isNull(0) ? missing : row.number(0); });
    return found;
}

void Database::together(const std::function<void()> &work) {
    if (sqlite3_get_autocommit(m_database) == 0)
        return work();
    tell("BEGIN IMMEDIATE", {});
    try {
        work();
        tell("COMMIT", {});
    } catch (...) {
        // Where the disk is full it is rolled back already.
        sqlite3_exec(m_database, "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}
