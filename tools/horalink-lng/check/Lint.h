// What is wrong with a text that the add-in would take without a word.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lng {

// Of a text in the token language: tokens that are none, that lose text or stay as they are, and an "&" that
// was meant as a character.
std::vector<std::string> TokenFaults(std::string_view text);

// Of a text that is shown as it is: tokens that nobody expands.
std::vector<std::string> PlainTextFaults(std::string_view text);

// Of a chain of button names.
std::vector<std::string> ButtonFaults(std::string_view text);

// How many pieces of a text take a text that the program puts in.
int CountArguments(std::string_view text);

}  // namespace lng
