#include "platform/data/Dialect.h"

#include <algorithm>
#include <array>

namespace platform {

namespace {

enum class Kind { Word, String, Name, Other };

struct Token {
    Kind kind;
    TextView text;  // with its quotes
};

bool IsWordCharacter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'_' ||
           c == u'$' || c >= 0x80;
}

// The length of a quoted string or name. A doubled closing quote, other than "]", doesn't end it. If it is
// never closed, it extends to the end.
std::size_t QuotedLength(TextView rest, char16_t close) {
    for (std::size_t i = 1; i < rest.size(); ++i) {
        if (rest[i] != close) continue;
        const bool doubled = close != u']' && i + 1 < rest.size() && rest[i + 1] == close;
        if (!doubled) return i + 1;
        ++i;
    }
    return rest.size();
}

std::size_t WordLength(TextView rest) {
    const auto end = std::find_if_not(rest.begin(), rest.end(), IsWordCharacter);
    return static_cast<std::size_t>(end - rest.begin());
}

Token FirstToken(TextView rest) {
    switch (rest.front()) {
        case u'\'':
        case u'"':
            return {Kind::String, rest.substr(0, QuotedLength(rest, rest.front()))};
        case u'`':
            return {Kind::Name, rest.substr(0, QuotedLength(rest, u'`'))};
        case u'[':
            return {Kind::Name, rest.substr(0, QuotedLength(rest, u']'))};
        default:
            break;
    }
    if (!IsWordCharacter(rest.front())) return {Kind::Other, rest.substr(0, 1)};
    return {Kind::Word, rest.substr(0, WordLength(rest))};
}

template <class Visitor>
void ForEachToken(TextView query, Visitor visit) {
    while (!query.empty()) {
        const Token token = FirstToken(query);
        visit(token);
        query.remove_prefix(token.text.size());
    }
}

// Reserved words of SQLite that mean nothing in a query that only reads, and so can only be names.
constexpr auto reservedNames = std::to_array<TextView>({
    u"add",     u"alter",       u"autoincrement", u"check",      u"commit",    u"constraint", u"create",
    u"default", u"deferrable",  u"delete",        u"drop",       u"foreign",   u"index",      u"insert",
    u"into",    u"nothing",     u"primary",       u"references", u"returning", u"set",        u"table",
    u"to",      u"transaction", u"unique",        u"update",     u"values",
});

bool IsReservedName(TextView word) {
    return std::any_of(reservedNames.begin(), reservedNames.end(),
                       [&](TextView name) { return EqualsIgnoringCase(name, word); });
}

// Turns a double-quoted string into a single-quoted one. An unclosed string stays unclosed, and is refused
// later.
Text WithSingleQuotes(TextView quoted) {
    Text result(1, u'\'');
    std::size_t i = 1;
    for (; i < quoted.size() && !(quoted[i] == u'"' && i + 1 == quoted.size()); ++i) {
        if (quoted[i] == u'"') ++i;  // the first of two
        result.append(quoted[i] == u'\'' ? 2 : 1, quoted[i]);
    }
    if (i < quoted.size()) result.push_back(u'\'');
    return result;
}

void AppendInSqliteDialect(Text& result, const Token& token) {
    if (token.kind == Kind::Word && IsReservedName(token.text)) {
        // Not in double quotes: SQLite would treat an unknown name in them as a string.
        result.append(u"[").append(token.text).append(u"]");
    } else if (token.kind == Kind::String && token.text.front() == u'"') {
        result.append(WithSingleQuotes(token.text));
    } else {
        result.append(token.text);
    }
}

}  // namespace

Text ToSqliteDialect(TextView query) {
    Text result;
    ForEachToken(query, [&](const Token& token) { AppendInSqliteDialect(result, token); });
    return result;
}

std::optional<Text> WithRowNumber(TextView query, TextView numberName) {
    constexpr TextView select = u"select";
    query.remove_prefix(std::min(query.find_first_not_of(u" \t\r\n"), query.size()));
    if (query.empty() || !EqualsIgnoringCase(FirstToken(query).text, select)) return std::nullopt;
    bool groups = false;
    ForEachToken(query, [&](const Token& token) {
        groups |= token.kind == Kind::Word && EqualsIgnoringCase(token.text, u"group");
    });
    if (groups) return std::nullopt;
    return Text(select).append(u" ").append(numberName).append(u",").append(query.substr(select.size()));
}

}  // namespace platform
