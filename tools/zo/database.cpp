#include "database.h"

#include "tool.h"
#include "words.h"

#include <sqlite3.h>

namespace ZoTool {

namespace {

const char* const ONLY_READS = Marked("a query only reads the tables: it is a SELECT");

std::string QuotedBy(char mark, std::string_view text) {
    std::string quoted(1, mark);
    for (const char c : text) quoted.append(c == mark ? 2 : 1, c);
    return quoted + mark;
}

bool IsBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n;") == std::string_view::npos; }

} // namespace

std::string SqlName(std::string_view name) { return QuotedBy('"', name); }
std::string SqlNameIfNeeded(std::string_view name) {
    const bool plain =
        !name.empty() &&
        name.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789") ==
            std::string_view::npos;
    const bool digit = !name.empty() && name[0] >= '0' && name[0] <= '9';
    return plain && !digit && sqlite3_keyword_check(name.data(), static_cast<int>(name.size())) == 0
               ? std::string(name)
               : SqlName(name);
}
std::string SqlText(std::string_view text) { return QuotedBy('\'', text); }

Database::Database(const std::string& path) {
    if (sqlite3_open(path.c_str(), &handle) != SQLITE_OK) {
        const std::string why = handle == nullptr ? "no memory" : sqlite3_errmsg(handle);
        sqlite3_close(handle);
        throw Trouble(Words("the database cannot be made: {}", why));
    }
    // It is made anew each time: nothing is lost with it.
    Run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA cache_size = -262144; PRAGMA temp_store "
        "= FILE");
}

Database::~Database() { sqlite3_close(handle); }

void Database::Run(const std::string& sql) {
    std::string why;
    if (!TryRun(sql, why)) throw Trouble(why);
}

bool Database::TryRun(const std::string& sql, std::string& why) {
    if (sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) return true;
    why = sqlite3_errmsg(handle);
    return false;
}

int Database::Changes() const { return sqlite3_changes(handle); }

int Database::Authorize(void* self, int action, const char* first, const char*, const char*, const char*) {
    switch (action) {
    case SQLITE_READ:
        static_cast<Database*>(self)->reads(first);
        return SQLITE_OK;
    case SQLITE_SELECT:
    case SQLITE_FUNCTION:
    case SQLITE_RECURSIVE:
        return SQLITE_OK;
    default:
        return SQLITE_DENY;
    }
}

void Database::Restrict(std::function<void(std::string_view)> newReads) {
    reads = std::move(newReads);
    sqlite3_set_authorizer(handle, &Database::Authorize, this);
}

void Database::Permit() { sqlite3_set_authorizer(handle, nullptr, nullptr); }

Statement::Statement(Database& itsDatabase, const std::string& sql) : database(itsDatabase) {
    const char* rest = nullptr;
    const int result =
        sqlite3_prepare_v2(database.handle, sql.data(), static_cast<int>(sql.size()), &handle, &rest);
    if (result == SQLITE_AUTH) throw Trouble(Translation(ONLY_READS));
    if (result != SQLITE_OK) Fail();
    const bool alone = IsBlank(std::string_view(rest, sql.data() + sql.size()));
    if (handle != nullptr && alone) return;
    sqlite3_finalize(handle);
    throw Trouble(alone ? Words("the query is empty")
                        : Words("one query at a time: what follows is \"{}\"", rest));
}

Statement::~Statement() { sqlite3_finalize(handle); }

void Statement::Fail() const {
    const std::string why = sqlite3_errmsg(database.handle);
    throw Trouble(why == "not authorized" ? Translation(ONLY_READS) : why);
}

void Statement::Check(int result) const {
    if (result != SQLITE_OK) Fail();
}

void Statement::BindNull(int index) { Check(sqlite3_bind_null(handle, index)); }
void Statement::Bind(int index, long long value) { Check(sqlite3_bind_int64(handle, index, value)); }
void Statement::Bind(int index, double value) { Check(sqlite3_bind_double(handle, index, value)); }
void Statement::BindText(int index, std::string_view utf8) {
    // A null address would be a null.
    const char* const text = utf8.empty() ? "" : utf8.data();
    Check(sqlite3_bind_text64(handle, index, text, utf8.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
}
void Statement::BindBlob(int index, std::string_view bytes) {
    const char* const block = bytes.empty() ? "" : bytes.data();
    Check(sqlite3_bind_blob64(handle, index, block, bytes.size(), SQLITE_TRANSIENT));
}

bool Statement::Step() {
    const int result = sqlite3_step(handle);
    if (result != SQLITE_ROW && result != SQLITE_DONE) Fail();
    return result == SQLITE_ROW;
}

void Statement::Reset() {
    sqlite3_reset(handle);
    sqlite3_clear_bindings(handle);
}

int Statement::Columns() const { return sqlite3_column_count(handle); }
std::string Statement::ColumnName(int index) const { return sqlite3_column_name(handle, index - 1); }

Statement::Type Statement::TypeOf(int index) const {
    switch (sqlite3_column_type(handle, index - 1)) {
    case SQLITE_INTEGER:
        return Type::Integer;
    case SQLITE_FLOAT:
        return Type::Real;
    case SQLITE_TEXT:
        return Type::Text;
    case SQLITE_BLOB:
        return Type::Blob;
    default:
        return Type::Null;
    }
}

long long Statement::Integer(int index) const { return sqlite3_column_int64(handle, index - 1); }
double Statement::Real(int index) const { return sqlite3_column_double(handle, index - 1); }

std::string_view Statement::Bytes(int index) const {
    const bool isText = TypeOf(index) == Type::Text;
    const void* const bytes = isText ? static_cast<const void*>(sqlite3_column_text(handle, index - 1))
                                     : sqlite3_column_blob(handle, index - 1);
    return {static_cast<const char*>(bytes),
            static_cast<std::size_t>(sqlite3_column_bytes(handle, index - 1))};
}

} // namespace ZoTool
