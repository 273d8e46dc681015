#include "source/Utf8.h"

namespace lng {

namespace {

constexpr char32_t lastCodePoint = 0x10FFFF;

bool IsCharacter(char32_t c) {
    return c <= lastCodePoint && !(c >= 0xD800 && c <= 0xDFFF);
}

// The length that the first byte announces; 0 for a byte that begins nothing.
std::size_t LengthFrom(unsigned char first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first < 0xE0) return 2;
    if (first >= 0xE0 && first < 0xF0) return 3;
    if (first >= 0xF0 && first < 0xF5) return 4;
    return 0;
}

char32_t SmallestOf(std::size_t length) {
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    return smallest[length];
}

bool Decode(std::string_view text, std::size_t length, char32_t& c) {
    if (length == 0 || text.size() < length) return false;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    c = length == 1 ? byte(0) : byte(0) & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) return false;
        c = (c << 6U) | (byte(i) & 0x3FU);
    }
    return c >= SmallestOf(length) && IsCharacter(c);
}

}  // namespace

CodePoint TakeCodePoint(std::string_view& rest) {
    const auto first = static_cast<unsigned char>(rest.front());
    const std::size_t length = LengthFrom(first);
    char32_t c = 0;
    const bool valid = Decode(rest, length, c);
    rest.remove_prefix(valid ? length : 1);
    return valid ? CodePoint{c, true} : CodePoint{first, false};
}

bool AllCodePoints(std::string_view text, const std::function<bool(const CodePoint&)>& holds) {
    while (!text.empty())
        if (!holds(TakeCodePoint(text))) return false;
    return true;
}

bool IsUtf8(std::string_view text) {
    return AllCodePoints(text, [](const CodePoint& c) { return c.valid; });
}

bool AppendCodePoint(std::string& text, char32_t c) {
    if (!IsCharacter(c)) return false;
    const auto tail = [&](unsigned shift) { text += static_cast<char>(0x80U | ((c >> shift) & 0x3FU)); };
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xC0U | (c >> 6U));
        tail(0);
    } else if (c < 0x10000) {
        text += static_cast<char>(0xE0U | (c >> 12U));
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0U | (c >> 18U));
        tail(12);
        tail(6);
        tail(0);
    }
    return true;
}

}  // namespace lng
