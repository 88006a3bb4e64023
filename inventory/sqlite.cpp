#include "inventory/sqlite.h"

#include "platform/failure.h"
#include "platform/text.h"

#include <cerrno>
#include <cstring>
#include <sqlite3.h>
#include <utility>

namespace inventory
{

namespace
{

/// Imports wait for each other this long: each holds the database for milliseconds, but there may be many.
constexpr int patience = 300'000;

} // namespace

Database::Database(std::string file, Access access) : shownName(platform::shown(file))
{
    // A name never stands for something else: neither a URI nor a database in memory.
    if (!file.starts_with('/')) file.insert(0, "./");
    // A reader too may have to undo what a killed writer left; where it must not write, it is opened for
    // reading.
    const int flags = SQLITE_OPEN_READWRITE | (access == Access::write ? SQLITE_OPEN_CREATE : 0);
    // SQLite refuses a path that is too long without asking the system: no earlier call's reason is told
    // then.
    errno = 0;
    if (sqlite3_open_v2(file.c_str(), &handle, flags, nullptr) == SQLITE_OK) {
        sqlite3_busy_timeout(handle, patience);
        if (access == Access::read) run("PRAGMA query_only = ON");
        return;
    }
    const std::string what = handle == nullptr ? "no memory" : sqlite3_errmsg(handle);
    const int reason = handle == nullptr ? 0 : sqlite3_system_errno(handle);
    sqlite3_close(handle);
    throw platform::Failure(shownName + ": " + (reason == 0 ? what : std::strerror(reason)));
}

Database::~Database()
{
    sqlite3_close(handle);
}

void Database::fail() const
{
    const int code = sqlite3_errcode(handle);
    const int reason = sqlite3_system_errno(handle);
    std::string what = sqlite3_errmsg(handle);
    if (code == SQLITE_NOTADB) what = "no database";
    if ((code == SQLITE_IOERR || code == SQLITE_CANTOPEN) && reason != 0)
        what.append(": ").append(std::strerror(reason));
    throw platform::Failure(shownName + ": " + what);
}

void Database::run(const std::string& sql)
{
    if (sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail();
}

int64_t Database::numberOf(const std::string& sql)
{
    Statement statement(*this, sql);
    return statement.step() ? statement.number(0) : 0;
}

int64_t Database::lastRow() const
{
    return sqlite3_last_insert_rowid(handle);
}

Statement::Statement(Database& of, const std::string& sql) : database(of)
{
    check(sqlite3_prepare_v3(of.handle, sql.c_str(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                             &handle, nullptr));
}

Statement::~Statement()
{
    sqlite3_finalize(handle);
}

void Statement::check(int result)
{
    if (result != SQLITE_OK) database.fail();
}

void Statement::bind(int index, std::string_view text)
{
    check(sqlite3_bind_text64(handle, index, text.data() == nullptr ? "" : text.data(), text.size(),
                              SQLITE_STATIC, SQLITE_UTF8));
}

void Statement::bind(int index, const std::optional<std::string_view>& text)
{
    if (text)
        bind(index, *text);
    else
        check(sqlite3_bind_null(handle, index));
}

void Statement::bind(int index, int64_t number)
{
    check(sqlite3_bind_int64(handle, index, number));
}

void Statement::bindBytes(int index, std::string_view bytes)
{
    check(sqlite3_bind_blob64(handle, index, bytes.data(), bytes.size(), SQLITE_STATIC));
}

bool Statement::step()
{
    const int result = sqlite3_step(handle);
    if (result != SQLITE_ROW && result != SQLITE_DONE) database.fail();
    return result == SQLITE_ROW;
}

void Statement::run()
{
    step();
    reset();
}

void Statement::reset()
{
    sqlite3_reset(handle); // what the run before ended with was told by its step
}

int Statement::columns() const
{
    return sqlite3_column_count(handle);
}

std::string_view Statement::text(int column) const
{
    const auto* const start = reinterpret_cast<const char*>(sqlite3_column_text(handle, column));
    return {start, static_cast<size_t>(sqlite3_column_bytes(handle, column))};
}

std::string_view Statement::bytes(int column) const
{
    const auto* const start = static_cast<const char*>(sqlite3_column_blob(handle, column));
    return {start, static_cast<size_t>(sqlite3_column_bytes(handle, column))};
}

int64_t Statement::number(int column) const
{
    return sqlite3_column_int64(handle, column);
}

bool Statement::isNull(int column) const
{
    return sqlite3_column_type(handle, column) == SQLITE_NULL;
}

bool Statement::isNumber(int column) const
{
    return sqlite3_column_type(handle, column) == SQLITE_INTEGER;
}

Transaction::Transaction(Database& of) : database(&of)
{
    of.run("BEGIN IMMEDIATE");
}

Transaction::~Transaction()
{
    if (database == nullptr) return;
    try {
        database->run("ROLLBACK");
    } catch (const platform::Failure&) { // SQLite has undone it itself, or the next to open the file will
        database = nullptr;
    }
}

void Transaction::commit()
{
    database->run("COMMIT");
    database = nullptr;
}

} // namespace inventory
