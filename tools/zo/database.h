#pragma once

#include <functional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace ZoTool {

class Statement;

/// A database of SQLite. What it refuses is a `Trouble` with its own words.
class Database {
public:
    /// UTF-8; an empty path is a temporary database, which keeps in memory what fits in its cache.
    explicit Database(const std::string& path);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void Run(const std::string& sql);
    /// Whether it succeeded; otherwise `why` has the words.
    bool TryRun(const std::string& sql, std::string& why);
    /// Rows that the latest statement added.
    int Changes() const;

    /// Statements prepared from now on may only read tables: each that they read is told to `reads`. They may
    /// neither change anything nor attach other databases.
    void Restrict(std::function<void(std::string_view table)> reads);
    /// They may do everything again.
    void Permit();

private:
    friend class Statement;
    static int Authorize(void* self, int action, const char* first, const char* second, const char* database,
                         const char* trigger);

    sqlite3* handle = nullptr;
    std::function<void(std::string_view)> reads;
};

class Statement {
public:
    /// Throws `Trouble`, also if something follows the statement.
    Statement(Database& database, const std::string& sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // Parameters and columns count from 1.
    void BindNull(int index);
    void Bind(int index, long long value);
    void Bind(int index, double value);
    void BindText(int index, std::string_view utf8);
    void BindBlob(int index, std::string_view bytes);
    /// The next row; false behind the last.
    bool Step();
    /// Back to the start, with all parameters null.
    void Reset();

    enum class Type { Null, Integer, Real, Text, Blob };
    int Columns() const;
    std::string ColumnName(int index) const;
    Type TypeOf(int index) const;
    long long Integer(int index) const;
    double Real(int index) const;
    /// Of a text or blob; valid until the next step.
    std::string_view Bytes(int index) const;

private:
    [[noreturn]] void Fail() const;
    void Check(int result) const;

    Database& database;
    sqlite3_stmt* handle = nullptr;
};

/// A name in the quotation marks of SQL.
std::string SqlName(std::string_view name);
/// The same, unless it can stand without.
std::string SqlNameIfNeeded(std::string_view name);
/// A text in those of a literal.
std::string SqlText(std::string_view text);

} // namespace ZoTool
