// The step to SQLite's dialect, and SQLite's own reading of what comes out of it.
#include <memory>

#include "FuzzTarget.h"
#include "platform/data/Dialect.h"
#include "store/Sql.h"

namespace {

// Queries are only prepared: what they would do is not the dialect's matter.
bool IsUnderstood(platform::TextView query) {
    static const auto database = [] {
        auto made = std::make_unique<lng::Connection>();
        made->Run("CREATE TABLE tMessages (\"Index\" INTEGER, Text TEXT)");
        return made;
    }();
    try {
        lng::Query prepared(*database, platform::ToUtf8(query));
        return true;
    } catch (const lng::SqlFailure&) {
        return false;
    }
}

}  // namespace

void horalink::fuzz::Try(std::string_view input) {
    const platform::Text query = platform::ToSqliteDialect(platform::FromUtf8(input));
    const bool understood = IsUnderstood(query);
    if (const auto numbered = platform::WithRowNumber(query, u"rowid"); numbered && !understood)
        Require(!IsUnderstood(*numbered), "a row number makes no query of what is none");
}
