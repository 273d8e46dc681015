#include "store/Sql.h"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

namespace lng {

namespace {

int Index(std::size_t number) {
    return static_cast<int>(number);
}

[[noreturn]] void Fail(sqlite3* connection) {
    throw SqlFailure(sqlite3_errmsg(connection));
}

void Require(int code, sqlite3* connection) {
    if (code != SQLITE_OK) Fail(connection);
}

bool IsRest(std::string_view text) {
    return text.find_first_not_of(std::string_view(" \t\r\n;\0", 6)) == std::string_view::npos;
}

struct Binder {
    sqlite3_stmt* statement;
    int parameter;

    int operator()(Null) const { return sqlite3_bind_null(statement, parameter); }
    int operator()(std::int64_t number) const { return sqlite3_bind_int64(statement, parameter, number); }
    int operator()(double number) const { return sqlite3_bind_double(statement, parameter, number); }
    int operator()(const std::string& text) const {
        return sqlite3_bind_text64(statement, parameter, text.data(), text.size(), SQLITE_TRANSIENT,
                                   SQLITE_UTF8);
    }
    int operator()(const Blob& blob) const {
        // A pointer to nothing would be taken for Null.
        const char* bytes = blob.bytes.empty() ? "" : blob.bytes.data();
        return sqlite3_bind_blob64(statement, parameter, bytes, blob.bytes.size(), SQLITE_TRANSIENT);
    }
};

std::string Bytes(const void* start, int count) {
    return start ? std::string(static_cast<const char*>(start), static_cast<std::size_t>(count)) : "";
}

}  // namespace

Connection::Connection() {
    Open(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
}

Connection::Connection(const std::filesystem::path& file, bool readOnly) {
    // An absolute path is never taken for a URI or for a database in memory.
    Open(std::filesystem::absolute(file).c_str(), readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE);
}

void Connection::Open(const char* file, int flags) {
    if (const int code = sqlite3_open_v2(file, &handle_, flags, nullptr); code != SQLITE_OK) {
        sqlite3_close(std::exchange(handle_, nullptr));
        throw SqlFailure(sqlite3_errstr(code));
    }
    // A statement out of a source reaches no other file.
    sqlite3_limit(handle_, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_busy_timeout(handle_, 2000);
}

Connection::~Connection() {
    sqlite3_close(handle_);
}

void Connection::Close() {
    Require(sqlite3_close(handle_), handle_);
    handle_ = nullptr;
}

void Connection::Run(std::string_view statement) {
    Query query(*this, statement);
    while (query.Step()) continue;
}

std::int64_t Connection::LastRowId() const {
    return sqlite3_last_insert_rowid(handle_);
}

Query::Query(const Connection& connection, std::string_view statement) : connection_(connection.Handle()) {
    const char* rest = nullptr;
    Require(sqlite3_prepare_v2(connection_, statement.data(), Index(statement.size()), &statement_, &rest),
            connection_);
    if (!statement_) throw SqlFailure("the statement is empty");
    if (IsRest(statement.substr(static_cast<std::size_t>(rest - statement.data())))) return;
    sqlite3_finalize(std::exchange(statement_, nullptr));
    throw SqlFailure("there is more than one statement");
}

Query::Query(Query&& other) noexcept
    : connection_(other.connection_), statement_(std::exchange(other.statement_, nullptr)) {}

Query::~Query() {
    sqlite3_finalize(statement_);
}

void Query::Bind(std::size_t parameter, const Cell& value) {
    Require(std::visit(Binder{statement_, Index(parameter) + 1}, value), connection_);
}

bool Query::Step() {
    const int code = sqlite3_step(statement_);
    if (code == SQLITE_ROW) return true;
    if (code != SQLITE_DONE) Fail(connection_);
    return false;
}

void Query::Reset() {
    sqlite3_reset(statement_);
}

Cell Query::Column(std::size_t column) const {
    const int index = Index(column);
    switch (sqlite3_column_type(statement_, index)) {
        case SQLITE_INTEGER:
            return std::int64_t{sqlite3_column_int64(statement_, index)};
        case SQLITE_FLOAT:
            return sqlite3_column_double(statement_, index);
        case SQLITE_TEXT:
            return TextOf(column);
        case SQLITE_BLOB: {
            const void* bytes = sqlite3_column_blob(statement_, index);
            return Blob{Bytes(bytes, sqlite3_column_bytes(statement_, index))};
        }
        default:
            return Null();
    }
}

std::string Query::TextOf(std::size_t column) const {
    const void* text = sqlite3_column_text(statement_, Index(column));
    return Bytes(text, sqlite3_column_bytes(statement_, Index(column)));
}

std::int64_t Query::NumberOf(std::size_t column) const {
    return sqlite3_column_int64(statement_, Index(column));
}

std::string QuotedName(std::string_view name) {
    std::string result = "\"";
    for (const char c : name) result.append(c == '"' ? 2 : 1, c);
    return result + "\"";
}

}  // namespace lng
