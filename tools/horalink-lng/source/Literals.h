// Values and names as they are written in a text source.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "source/Source.h"

namespace lng {

// True where a text can stand behind a colon as it is.
bool IsPlainText(std::string_view text);

// True where a text of several lines can stand in lines with "|".
bool IsPlainBlock(std::string_view text);

// A text in double quotes, whatever its bytes are.
std::string Quoted(std::string_view text);

// A number, blob, text or null as it stands behind "=".
std::string LiteralOf(const Cell& cell);

// The value of what stands behind "=". Raises Fault with what is wrong about it.
Cell ParseLiteral(std::string_view literal);

// A name as it is, or in quotes where it has other characters than letters, digits, "_", "." and "-".
std::string NameText(std::string_view name);

// Takes a name, in quotes or not, off the front of `rest`; nothing where there is none. Raises Fault.
std::optional<std::string> TakeName(std::string_view& rest);

std::string_view TrimBlanks(std::string_view text);

}  // namespace lng
