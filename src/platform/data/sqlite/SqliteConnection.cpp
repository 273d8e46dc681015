#include "platform/data/sqlite/SqliteConnection.h"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

#include "platform/data/sqlite/Failure.h"
#include "platform/data/sqlite/Statement.h"

namespace platform {

namespace {

// Long enough for another add-in to finish its one write, short enough for the operator.
constexpr int lockWaitMilliseconds = 2000;

int OpenFlags(bool readOnly) {
    // Every object lives on the process's one thread. Without the flag for creating, a file that is
    // missing stays missing.
    return (readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOMUTEX;
}

}  // namespace

SqliteConnection::SqliteConnection(const std::filesystem::path& file, bool readOnly)
    : name_(file.filename()) {
    try {
        Open(file, readOnly);
        ReadSchema();
    } catch (...) {
        Close();
        throw;
    }
}

SqliteConnection::~SqliteConnection() {
    Close();
}

void SqliteConnection::Open(const std::filesystem::path& file, bool readOnly) {
    // An absolute path is never taken for a URI or for a database in memory.
    const std::string path = std::filesystem::absolute(file);
    const int code = sqlite3_open_v2(path.c_str(), &handle_, OpenFlags(readOnly), nullptr);
    if (code == SQLITE_CANTOPEN || code == SQLITE_PERM || code == SQLITE_AUTH)
        throw MakeDataError(DataError::NoPermission, "You don't have permission to open '" + path + "'");
    if (code != SQLITE_OK) throw SqliteFailure(code, sqlite3_errstr(code), name_);
    sqlite3_busy_timeout(handle_, lockWaitMilliseconds);
}

void SqliteConnection::ReadSchema() const {
    const int code = sqlite3_exec(handle_, "SELECT 1 FROM sqlite_master", nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) Fail(code);
}

sqlite3* SqliteConnection::Handle() const {
    if (!handle_) throw MakeDataError(DataError::ObjectInvalid);
    return handle_;
}

bool SqliteConnection::IsReadOnly() const {
    return sqlite3_db_readonly(Handle(), "main") == 1;
}

void SqliteConnection::Close() {
    for (Statement* statement : statements_) statement->Finalize();
    sqlite3_close(std::exchange(handle_, nullptr));
}

void SqliteConnection::Fail(int code) const {
    throw SqliteFailure(code, sqlite3_errmsg(Handle()), name_);
}

void SqliteConnection::FailQuery(std::string_view message) const {
    throw SqliteFailure(SQLITE_ERROR, message, name_);
}

void SqliteConnection::Remove(Statement& statement) {
    std::erase(statements_, &statement);
}

}  // namespace platform
