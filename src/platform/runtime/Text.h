// Texts in UTF-16. Positions count from 1 in the routines that say so.
#pragma once

#include <string>
#include <string_view>

namespace platform {

using Text = std::u16string;
using TextView = std::u16string_view;

// Convert UTF-8 to UTF-16 and back. Invalid input becomes U+FFFD.
Text FromUtf8(std::string_view utf8);
std::string ToUtf8(TextView text);

// Upper case by the character table of the C.UTF-8 locale; independent of the user's locale.
Text UpperCase(TextView text);

// Compares by the same table.
bool EqualsIgnoringCase(TextView left, TextView right);

// The first or last `count` characters, or the whole text if it is shorter.
Text Left(TextView text, std::size_t count);
Text Right(TextView text, std::size_t count);

// Up to `count` characters from position `start`, counted from 1.
Text Mid(TextView text, std::size_t start, std::size_t count = std::u16string::npos);

// Removes the blanks (character 32 only) at both ends.
Text Trim(TextView text);

Text DecimalText(long long number);

}  // namespace platform
