// UTF-8, character by character, with what is none kept apart.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace lng {

// A character, or where `valid` is false a byte that belongs to none.
struct CodePoint {
    char32_t value;
    bool valid;
};

// Takes the first character, or byte, off the front of a text that isn't empty.
CodePoint TakeCodePoint(std::string_view& rest);

// Calls for each character until one call gives false; true where none did.
bool AllCodePoints(std::string_view text, const std::function<bool(const CodePoint&)>& holds);

bool IsUtf8(std::string_view text);

// False for what is no character, such as half of a surrogate pair.
bool AppendCodePoint(std::string& text, char32_t c);

}  // namespace lng
