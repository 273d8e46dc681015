// The step to SQLite's dialect, and SQLite's own reading of the result.
#include <sqlite3.h>

#include <memory>

#include "FuzzTarget.h"
#include "platform/data/Dialect.h"

namespace {

sqlite3* Open() {
    sqlite3* database = nullptr;
    sqlite3_open(":memory:", &database);
    sqlite3_exec(database, "CREATE TABLE tMessages (\"Index\" INTEGER, Text TEXT)", nullptr, nullptr,
                 nullptr);
    return database;
}

// Only prepares the query: what it would do is not the dialect's matter.
bool IsUnderstood(platform::TextView query) {
    static const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(Open(), sqlite3_close);
    const std::string text = platform::ToUtf8(query);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database.get(), text.data(), static_cast<int>(text.size()), &statement, nullptr);
    const bool isUnderstood = statement != nullptr;
    sqlite3_finalize(statement);
    return isUnderstood;
}

}  // namespace

void horalink::fuzz::Try(std::string_view input) {
    const platform::Text query = platform::ToSqliteDialect(platform::FromUtf8(input));
    const bool understood = IsUnderstood(query);
    if (const auto numbered = platform::WithRowNumber(query, u"rowid"); numbered && !understood)
        Require(!IsUnderstood(*numbered), "a row number makes no query of what is none");
}
