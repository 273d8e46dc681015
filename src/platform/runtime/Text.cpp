#include "platform/runtime/Text.h"

#include <algorithm>
#include <locale>

namespace platform {

namespace {

constexpr char32_t replacement = 0xFFFD;

bool IsSurrogate(char32_t code) {
    return code >= 0xD800 && code <= 0xDFFF;
}

void AppendUtf16(Text& text, char32_t code) {
    if (code < 0x10000) {
        text.push_back(static_cast<char16_t>(code));
        return;
    }
    code -= 0x10000;
    text.push_back(static_cast<char16_t>(0xD800 + (code >> 10)));
    text.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
}

void AppendUtf8(std::string& utf8, char32_t code) {
    const auto put = [&](char32_t byte) { utf8.push_back(static_cast<char>(byte)); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | (code >> 6));
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | (code >> 12));
        put(0x80 | ((code >> 6) & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | (code >> 18));
        put(0x80 | ((code >> 12) & 0x3F));
        put(0x80 | ((code >> 6) & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

// Removes the first code point from `utf8` and returns it. For an invalid sequence, removes one byte and
// returns the replacement character.
char32_t TakeCodePoint(std::string_view& utf8) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
    const unsigned char lead = byteAt(0);
    std::size_t length = 1;
    char32_t code = lead;
    char32_t least = 0;
    if (lead >= 0x80) {
        if ((lead & 0xE0) == 0xC0) {
            length = 2, code = lead & 0x1F, least = 0x80;
        } else if ((lead & 0xF0) == 0xE0) {
            length = 3, code = lead & 0x0F, least = 0x800;
        } else if ((lead & 0xF8) == 0xF0) {
            length = 4, code = lead & 0x07, least = 0x10000;
        } else {
            length = 0;
        }
        for (std::size_t i = 1; i < length; ++i) {
            if (i >= utf8.size() || (byteAt(i) & 0xC0) != 0x80) {
                length = 0;
                break;
            }
            code = (code << 6) | (byteAt(i) & 0x3F);
        }
        if (length == 0 || code < least || code > 0x10FFFF || IsSurrogate(code)) {
            utf8.remove_prefix(1);
            return replacement;
        }
    }
    utf8.remove_prefix(length);
    return code;
}

const std::ctype<wchar_t>& CharacterTable() {
    static const std::locale locale("C.UTF-8");
    return std::use_facet<std::ctype<wchar_t>>(locale);
}

char16_t Upper(char16_t character) {
    if (character < 0x80)
        return character >= u'a' && character <= u'z' ? static_cast<char16_t>(character - 32) : character;
    return static_cast<char16_t>(CharacterTable().toupper(static_cast<wchar_t>(character)));
}

}  // namespace

Text FromUtf8(std::string_view utf8) {
    Text text;
    text.reserve(utf8.size());
    while (!utf8.empty()) AppendUtf16(text, TakeCodePoint(utf8));
    return text;
}

std::string ToUtf8(TextView text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t code = text[i];
        const bool pair = code >= 0xD800 && code < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                          text[i + 1] <= 0xDFFF;
        if (pair)
            code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<char32_t>(text[++i]) - 0xDC00);
        else if (IsSurrogate(code))
            code = replacement;
        AppendUtf8(utf8, code);
    }
    return utf8;
}

Text UpperCase(TextView text) {
    Text upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), Upper);
    return upper;
}

bool EqualsIgnoringCase(TextView left, TextView right) {
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(),
                      [](char16_t a, char16_t b) { return a == b || Upper(a) == Upper(b); });
}

Text Left(TextView text, std::size_t count) {
    return Text(text.substr(0, count));
}

Text Right(TextView text, std::size_t count) {
    return Text(count < text.size() ? text.substr(text.size() - count) : text);
}

Text Mid(TextView text, std::size_t start, std::size_t count) {
    return start > text.size() ? Text() : Text(text.substr(start - 1, count));
}

Text Trim(TextView text) {
    const auto first = text.find_first_not_of(u' ');
    if (first == TextView::npos) return {};
    return Text(text.substr(first, text.find_last_not_of(u' ') - first + 1));
}

Text DecimalText(long long number) {
    return FromUtf8(std::to_string(number));
}

}  // namespace platform
