// What a database consists of.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "store/Sql.h"

namespace lng {

inline constexpr std::string_view sequenceTable = "sqlite_sequence";

// A column that can be written.
struct Column {
    std::string name;
    std::string type;
    // What a row has here that doesn't name it; nothing where that is worked out anew for each row.
    std::optional<Cell> standard;
};

// The columns of a table, without those that are worked out from others.
std::vector<Column> ColumnsOf(const Connection& connection, const std::string& table);

bool HasObject(const Connection& connection, const std::string& kind, const std::string& name);

}  // namespace lng
