#include "source/Literals.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "common/Fault.h"
#include "source/Utf8.h"

namespace lng {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

// Characters that an editor hides, drops or breaks a line at.
bool IsDelicate(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029 || c == 0xFEFF;
}

bool IsNameCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '.' || c == '-' || static_cast<unsigned char>(c) >= 0x80;
}

std::string Hex(unsigned number, std::size_t width) {
    char digits[8];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, 16).ptr;
    std::string text(digits, end);
    return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

std::string Escape(const CodePoint& c) {
    if (!c.valid) return "\\x" + Hex(static_cast<unsigned>(c.value), 2);
    switch (c.value) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        case '"':
            return "\\\"";
        case '\\':
            return "\\\\";
        default:
            return "\\u{" + Hex(static_cast<unsigned>(c.value), 1) + "}";
    }
}

unsigned ParseHex(std::string_view digits) {
    unsigned number = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    if (digits.empty() || result.ec != std::errc() || result.ptr != digits.data() + digits.size())
        throw tools::Fault("'" + std::string(digits) + "' is no hexadecimal number");
    return number;
}

std::string_view TakeFront(std::string_view& rest, std::size_t count) {
    const std::string_view front = rest.substr(0, count);
    rest.remove_prefix(front.size());
    return front;
}

void AppendNumbered(std::string& result, std::string_view& rest) {
    const auto end = rest.find('}');
    if (rest.empty() || rest.front() != '{' || end == std::string_view::npos)
        throw tools::Fault("\\u wants a number in braces, as in \\u{e9}");
    const unsigned number = ParseHex(rest.substr(1, end - 1));
    if (!AppendCodePoint(result, number))
        throw tools::Fault("there is no character \\u{" + Hex(number, 1) + "}");
    rest.remove_prefix(end + 1);
}

void AppendEscaped(std::string& result, std::string_view& rest) {
    if (rest.empty()) throw tools::Fault("the closing quote is missing");
    const char kind = TakeFront(rest, 1).front();
    constexpr std::string_view kinds = "nrt\"\\", meant = "\n\r\t\"\\";
    if (const auto place = kinds.find(kind); place != std::string_view::npos)
        result += meant[place];
    else if (kind == 'x')
        result += static_cast<char>(ParseHex(TakeFront(rest, 2)));
    else if (kind == 'u')
        AppendNumbered(result, rest);
    else
        throw tools::Fault(std::string("\\") + kind + " means nothing; write \\\\ for a backslash");
}

// Takes a text in quotes, whose first quote is at the front.
std::string TakeQuoted(std::string_view& rest) {
    std::string result;
    rest.remove_prefix(1);
    while (!rest.empty()) {
        const char c = TakeFront(rest, 1).front();
        if (c == '"') return result;
        if (c == '\\')
            AppendEscaped(result, rest);
        else
            result += c;
    }
    throw tools::Fault("the closing quote is missing");
}

std::string ParseQuoted(std::string_view literal) {
    std::string text = TakeQuoted(literal);
    if (!literal.empty()) throw tools::Fault("there is more behind the closing quote");
    return text;
}

Blob ParseBlob(std::string_view literal) {
    literal.remove_prefix(2);
    if (literal.empty() || literal.back() != '\'' || literal.size() % 2 == 0)
        throw tools::Fault("binary data is written as x'...' with two digits a byte");
    literal.remove_suffix(1);
    Blob blob;
    while (!literal.empty()) blob.bytes += static_cast<char>(ParseHex(TakeFront(literal, 2)));
    return blob;
}

std::string RealText(double number) {
    if (std::isinf(number)) return number < 0 ? "-inf" : "inf";
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    std::string text(digits, end);
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

bool IsWholeNumber(std::string_view literal) {
    if (literal.front() == '-') literal.remove_prefix(1);
    return !literal.empty() && literal.find_first_not_of("0123456789") == std::string_view::npos;
}

template <class Number>
Number ParseNumber(std::string_view literal) {
    Number number{};
    const char* end = literal.data() + literal.size();
    const auto result = std::from_chars(literal.data(), end, number);
    if (result.ec == std::errc::result_out_of_range)
        throw tools::Fault("the number " + std::string(literal) + " is out of range");
    if (result.ec != std::errc() || result.ptr != end || number != number)
        throw tools::Fault("'" + std::string(literal) +
                           "' is no number; a text stands behind a colon, or in double quotes");
    return number;
}

struct LiteralWriter {
    std::string operator()(Null) const { return "null"; }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(double number) const { return RealText(number); }
    std::string operator()(const std::string& text) const { return Quoted(text); }
    std::string operator()(const Blob& blob) const {
        std::string text = "x'";
        for (const char byte : blob.bytes) text += Hex(static_cast<unsigned char>(byte), 2);
        return text + "'";
    }
};

}  // namespace

bool SameName(std::string_view left, std::string_view right) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

std::string_view TrimBlanks(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

bool IsPlainText(std::string_view text) {
    if (TrimBlanks(text) != text) return false;
    return AllCodePoints(text, [](const CodePoint& c) { return c.valid && !IsDelicate(c.value); });
}

bool IsPlainBlock(std::string_view text) {
    if (text.find(" \n") != std::string_view::npos || text.find("\t\n") != std::string_view::npos)
        return false;
    if (!text.empty() && IsBlank(text.back())) return false;
    return AllCodePoints(text, [](const CodePoint& c) {
        return c.valid && (c.value == '\n' || c.value == '\t' || !IsDelicate(c.value));
    });
}

std::string Quoted(std::string_view text) {
    std::string result = "\"";
    AllCodePoints(text, [&](const CodePoint& c) {
        if (!c.valid || IsDelicate(c.value) || c.value == '"' || c.value == '\\')
            result += Escape(c);
        else
            AppendCodePoint(result, c.value);
        return true;
    });
    return result + "\"";
}

std::string LiteralOf(const Cell& cell) {
    return std::visit(LiteralWriter(), cell);
}

Cell ParseLiteral(std::string_view literal) {
    if (literal.empty()) throw tools::Fault("the value is missing; write null for none");
    if (literal.front() == '"') return ParseQuoted(literal);
    if (SameName(literal, "null")) return Null();
    if (SameName(literal.substr(0, 2), "x'")) return ParseBlob(literal);
    if (IsWholeNumber(literal)) return ParseNumber<std::int64_t>(literal);
    return ParseNumber<double>(literal);
}

std::string NameText(std::string_view name) {
    const bool plain =
        !name.empty() && std::all_of(name.begin(), name.end(), IsNameCharacter) && IsPlainText(name);
    return plain ? std::string(name) : Quoted(name);
}

std::optional<std::string> TakeName(std::string_view& rest) {
    if (!rest.empty() && rest.front() == '"') return TakeQuoted(rest);
    const auto end = std::find_if_not(rest.begin(), rest.end(), IsNameCharacter);
    const auto name = TakeFront(rest, static_cast<std::size_t>(end - rest.begin()));
    if (name.empty()) return std::nullopt;
    return std::string(name);
}

}  // namespace lng
