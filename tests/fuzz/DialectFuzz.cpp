// The step to SQLite's dialect, and SQLite's own reading of what comes out of it.
#include <sqlite3.h>

#include "FuzzTarget.h"
#include "platform/data/Dialect.h"

namespace {

sqlite3* Empty() {
    static sqlite3* database = [] {
        sqlite3* opened = nullptr;
        sqlite3_open(":memory:", &opened);
        sqlite3_exec(opened, "CREATE TABLE tMessages (\"Index\" INTEGER, Text TEXT)", nullptr, nullptr,
                     nullptr);
        return opened;
    }();
    return database;
}

// Queries are only prepared: what they would do is not the dialect's matter.
bool IsUnderstood(platform::TextView query) {
    sqlite3_stmt* statement = nullptr;
    const std::string text = platform::ToUtf8(query);
    const int result =
        sqlite3_prepare_v2(Empty(), text.c_str(), static_cast<int>(text.size()), &statement, nullptr);
    const bool something = statement != nullptr;
    sqlite3_finalize(statement);
    return result == SQLITE_OK && something;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace platform;
    const Text query = ToSqliteDialect(FromUtf8(horalink::fuzz::Bytes(data, size)));
    const bool understood = IsUnderstood(query);
    if (const auto numbered = WithRowNumber(query); numbered && !understood)
        horalink::fuzz::Require(!IsUnderstood(*numbered), "a row number makes no query of what is none");
    return 0;
}
