// The step from the queries as the add-in writes them to the dialect of SQLite.
#pragma once

#include <optional>

#include "platform/runtime/Text.h"

namespace platform {

// Names that are key words in SQLite (the column Index) become quoted names, and strings in double quotes
// become strings in single quotes. Text inside quotes stays as it is.
Text ToSqliteDialect(TextView query);

// The same query with the row's number, by the name that it has in its table, as its first column. For a
// query in SQLite's dialect whose rows can be rows of a table; nothing for one that groups, or that doesn't
// begin with SELECT.
std::optional<Text> WithRowNumber(TextView query, TextView numberName);

}  // namespace platform
