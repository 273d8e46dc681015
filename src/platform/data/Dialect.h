// Translates the add-in's queries to SQLite's dialect.
#pragma once

#include <optional>

#include "platform/runtime/Text.h"

namespace platform {

// Quotes names that are keywords in SQLite, e.g. the column Index, and turns double-quoted strings into
// single-quoted ones. Text inside quotes stays as it is.
Text ToSqliteDialect(TextView query);

// Adds the row number as the first column of a query in SQLite's dialect; `numberName` is its name in the
// table. Returns nothing for a query that groups rows or doesn't begin with SELECT.
std::optional<Text> WithRowNumber(TextView query, TextView numberName);

}  // namespace platform
