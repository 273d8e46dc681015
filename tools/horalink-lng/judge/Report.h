// What the judging finds: a line each on the standard output, for the tool that started it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace lng {

// Where something is. Without a row it concerns the table, without a field the row.
struct Place {
    std::string database, table;
    std::optional<std::int32_t> row = {};  // SQLite's number of it
    std::string field = {};
};

void Report(const Place& place, const std::string& message);

}  // namespace lng
