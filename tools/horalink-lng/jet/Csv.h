// Rows of fields with commas between them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lng {

// A field; nothing for the mark of Null, which stands outside quotes and so differs from any text.
using CsvField = std::optional<std::string>;

// Splits a text into rows. Fields in quotes hold any character, a quote twice. Raises Fault where the quotes
// don't match.
std::vector<std::vector<CsvField>> ParseCsv(std::string_view text, std::string_view nullMark);

}  // namespace lng
