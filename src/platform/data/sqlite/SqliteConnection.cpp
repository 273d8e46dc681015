#include "platform/data/sqlite/SqliteConnection.h"

#include <sqlite3.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "platform/data/sqlite/Failure.h"
#include "platform/data/sqlite/Statement.h"
#include "platform/runtime/ScopeExit.h"
#include "platform/runtime/WholeFile.h"

namespace platform {

namespace fs = std::filesystem;

namespace {

// Long enough for another add-in to finish its one write, short enough for the operator.
constexpr int lockWaitMilliseconds = 2000;

int OpenFlags(bool readOnly) {
    // All objects live on one thread, so no mutex is needed. Without SQLITE_OPEN_CREATE, a missing file isn't
    // created.
    return (readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOMUTEX;
}

// Raises an error if a deleted database has left its journal: SQLite would apply that to the new copy.
// Checked before copying, since afterwards the journal may be the copy's own.
void RequireNoRemains(const fs::path& file) {
    for (const char* companion : {"-journal", "-wal"}) {
        const std::string remains = file.native() + companion;
        std::error_code error;
        if (fs::exists(remains, error) && !fs::exists(file, error))
            throw MakeDataError(DataError::NotADatabase,
                                "'" + remains + "' belongs to a database that is missing; delete it");
    }
}

RuntimeError CopyFailure(const std::error_code& why, const fs::path& file) {
    const bool isRefused = why == std::errc::permission_denied || why == std::errc::operation_not_permitted ||
                           why == std::errc::read_only_file_system;
    return MakeDataError(isRefused ? DataError::ReadOnly : DataError::DiskError,
                         "'" + file.native() + "' can't be written: " + why.message());
}

}  // namespace

// An absolute path is never taken for a URI or for a database in memory.
SqliteConnection::SqliteConnection(const fs::path& file, const fs::path& ownPlace, bool readOnly)
    : file_(fs::absolute(file)), ownPlace_(fs::absolute(ownPlace)), readOnly_(readOnly) {
    Open();
}

SqliteConnection::~SqliteConnection() {
    Close();
}

void SqliteConnection::Open() {
    try {
        const int code = sqlite3_open_v2(file_.c_str(), &handle_, OpenFlags(readOnly_), nullptr);
        if (code == SQLITE_CANTOPEN || code == SQLITE_PERM || code == SQLITE_AUTH)
            throw MakeDataError(DataError::NoPermission,
                                "You don't have permission to open '" + file_.native() + "'");
        if (code != SQLITE_OK) throw SqliteFailure(code, sqlite3_errstr(code), file_);
        sqlite3_busy_timeout(handle_, lockWaitMilliseconds);
        ReadSchema();
    } catch (...) {
        Close();
        throw;
    }
}

void SqliteConnection::ReadSchema() const {
    const int code = sqlite3_exec(handle_, "SELECT 1 FROM sqlite_master", nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) Fail(code);
}

sqlite3* SqliteConnection::Handle() const {
    if (!handle_) throw MakeDataError(DataError::ObjectInvalid);
    return handle_;
}

void SqliteConnection::PrepareToWrite() {
    if (file_ != ownPlace_ && !readOnly_) {
        CopyToOwnPlace();
        Close();
        file_ = ownPlace_;
        Open();
    }
    if (sqlite3_db_readonly(Handle(), "main") == 1) Fail(SQLITE_READONLY);
}

void SqliteConnection::CopyToOwnPlace() const {
    RequireNoRemains(ownPlace_);
    // A read transaction keeps others from writing meanwhile.
    const ScopeExit end([this] { sqlite3_exec(handle_, "COMMIT", nullptr, nullptr, nullptr); });
    const int code = sqlite3_exec(Handle(), "BEGIN; SELECT 1 FROM sqlite_master", nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) Fail(code);
    try {
        CopyWhole(file_, ownPlace_);
    } catch (const std::system_error& error) {
        throw CopyFailure(error.code(), ownPlace_);
    }
}

void SqliteConnection::Close() {
    for (Statement* statement : statements_) statement->Finalize();
    sqlite3_close(std::exchange(handle_, nullptr));
}

void SqliteConnection::Fail(int code) const {
    throw SqliteFailure(code, sqlite3_errmsg(Handle()), file_);
}

void SqliteConnection::FailQuery(std::string_view message) const {
    throw SqliteFailure(SQLITE_ERROR, message, file_);
}

void SqliteConnection::Remove(Statement& statement) {
    std::erase(statements_, &statement);
}

}  // namespace platform
