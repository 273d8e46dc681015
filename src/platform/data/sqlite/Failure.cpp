#include "platform/data/sqlite/Failure.h"

#include <sqlite3.h>

#include <optional>
#include <string>

namespace platform {

namespace {

std::optional<std::string> After(std::string_view start, std::string_view message) {
    if (!message.starts_with(start)) return std::nullopt;
    return std::string(message.substr(start.size()));
}

std::string WithMessage(std::string_view what, std::string_view message) {
    return std::string(what).append(": ").append(message);
}

// SQLite has one code for all errors in a query; only its message tells them apart.
RuntimeError QueryFailure(std::string_view message, const std::string& file) {
    if (const auto table = After("no such table: ", message))
        return MakeDataError(DataError::NoSuchTable, "The table '" + *table + "' was not found in " + file);
    if (const auto field = After("no such column: ", message))
        return MakeDataError(DataError::NoSuchQueryField,
                             "The field '" + *field + "' was not found in " + file);
    if (message.ends_with("ORDER BY term does not match any column in the result set"))
        return MakeDataError(DataError::NoSuchQueryField,
                             "The query is sorted by a field that was not found in " + file);
    if (message.ends_with("do not have the same number of result columns"))
        return MakeDataError(DataError::UnionColumns);
    return MakeDataError(DataError::QuerySyntax, WithMessage("The query is not well formed", message));
}

}  // namespace

RuntimeError SqliteFailure(int code, std::string_view message, const std::filesystem::path& file) {
    const std::string name = file.filename(), place = "'" + file.native() + "'";
    switch (code & 0xFF) {
        case SQLITE_ERROR:
            return QueryFailure(message, name);
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return MakeDataError(DataError::Locked,
                                 place + " is locked by another program; try again in a moment");
        case SQLITE_NOTADB:
        case SQLITE_CORRUPT:
            return MakeDataError(DataError::NotADatabase, name + " is not a database, or it is damaged");
        // The database is open by now, so what can't be opened is the journal beside it.
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
        case SQLITE_READONLY:
            return MakeDataError(DataError::ReadOnly, place + " can't be changed: it is read-only");
        case SQLITE_CONSTRAINT:
        case SQLITE_MISMATCH:
            return MakeDataError(DataError::ValueRefused,
                                 WithMessage("The table doesn't accept the value", message));
        default:
            return MakeDataError(DataError::DiskError,
                                 WithMessage(name + " can't be read or written", message));
    }
}

}  // namespace platform
