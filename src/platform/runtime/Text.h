// Texts as the system counts them: UTF-16, positions from 1 in the routines that say so.
#pragma once

#include <string>
#include <string_view>

namespace platform {

using Text = std::u16string;
using TextView = std::u16string_view;

// UTF-8 to UTF-16 and back. What is no valid code point on the way becomes U+FFFD.
Text FromUtf8(std::string_view utf8);
std::string ToUtf8(TextView text);

// Upper case by the character table of the C.UTF-8 locale; independent of the user's locale.
Text UpperCase(TextView text);

// Equal without regard to case, by the same table.
bool EqualsIgnoringCase(TextView left, TextView right);

// The first or last `count` characters, or the whole text where it is shorter.
Text Left(TextView text, std::size_t count);
Text Right(TextView text, std::size_t count);

// `count` characters from position `start`, counted from 1; what is after the end is left out.
Text Mid(TextView text, std::size_t start, std::size_t count = std::u16string::npos);

// Without the blanks (character 32 only) at both ends.
Text Trim(TextView text);

// Decimal text of a whole number.
Text DecimalText(long long number);

}  // namespace platform
