// SQLite's interface with owners: a connection, its statements and a transaction. Whatever fails is a
// platform::Failure that names the file.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace inventory
{

class Database
{
public:
    enum class Access { read, write };

    /// Opens the file, which writing makes where there is none.
    Database(std::string file, Access access);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Runs statements that answer nothing.
    void run(const std::string& sql);
    /// The one number that a statement answers with.
    [[nodiscard]] int64_t numberOf(const std::string& sql);
    [[nodiscard]] int64_t lastRow() const;

    [[nodiscard]] const std::string& name() const { return shownName; }
    [[noreturn]] void fail() const;

private:
    friend class Statement;

    std::string shownName; ///< safe to show
    sqlite3* handle = nullptr;
};

class Statement
{
public:
    Statement(Database& of, const std::string& sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    /// The values of the statement's next run, from the first parameter on; one that was stepped through is
    /// reset before. They are read when it runs.
    template <typename... Values>
    Statement& with(const Values&... values)
    {
        int index = 0;
        (bind(++index, values), ...);
        return *this;
    }
    void bind(int index, std::string_view text);
    void bind(int index, const std::optional<std::string_view>& text);
    void bind(int index, int64_t number);
    void bindBytes(int index, std::string_view bytes);

    /// Whether there is a further row.
    bool step();
    /// Runs a statement that answers nothing; its values stay for the next run.
    void run();
    /// Behind the last row that is wanted: what was read is let go, and new values may come.
    void reset();

    [[nodiscard]] int columns() const;
    // Of the row; texts hold until the next step.
    [[nodiscard]] std::string_view text(int column) const;
    [[nodiscard]] std::string_view bytes(int column) const;
    [[nodiscard]] int64_t number(int column) const;
    [[nodiscard]] bool isNull(int column) const;
    [[nodiscard]] bool isNumber(int column) const;

private:
    void check(int result);

    Database& database;
    sqlite3_stmt* handle = nullptr;
};

/// Has the right to write from its start on; what is not committed is undone.
class Transaction
{
public:
    explicit Transaction(Database& of);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void commit();

private:
    Database* database;
};

} // namespace inventory
