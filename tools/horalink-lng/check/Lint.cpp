#include "check/Lint.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <optional>
#include <set>

#include "language/LanguageMsgBox.h"
#include "source/Literals.h"

namespace lng {

namespace {

using Faults = std::vector<std::string>;

// The longest first, since %SP begins %SP4.
constexpr std::string_view tokens[] = {"%SP4", "%AND", "%CR", "%SP", "%ST"};
constexpr std::string_view argument = "%ST", noValue = "-1";

bool IsToken(std::string_view piece) {
    return std::find(std::begin(tokens), std::end(tokens), piece) != std::end(tokens);
}

bool IsWordCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0;
}

// The token, in any case, that stands at a "%" and doesn't go on as a word.
std::optional<std::string_view> TokenAt(std::string_view rest) {
    for (const std::string_view token : tokens) {
        const bool ends = rest.size() <= token.size() || !IsWordCharacter(rest[token.size()]);
        if (ends && SameName(rest.substr(0, token.size()), token)) return token;
    }
    return std::nullopt;
}

// The first token, in any case, anywhere in a text.
std::optional<std::string_view> TokenIn(std::string_view text) {
    for (auto at = text.find('%'); at != std::string_view::npos; at = text.find('%', at + 1))
        if (const auto token = TokenAt(text.substr(at))) return token;
    return std::nullopt;
}

std::string Cited(std::string_view text) {
    constexpr std::size_t longest = 40;
    if (text.size() <= longest) return "\"" + std::string(text) + "\"";
    std::string cut(text.substr(0, longest));
    while (!cut.empty() && (static_cast<unsigned char>(cut.back()) & 0x80U) != 0) cut.pop_back();
    return "\"" + cut + "...\"";
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    for (;;) {
        const auto end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return pieces;
        text.remove_prefix(end + 1);
    }
}

std::string_view TrimSpaces(std::string_view text) {
    const auto start = text.find_first_not_of(' ');
    return start == std::string_view::npos ? "" : text.substr(start, text.find_last_not_of(' ') + 1 - start);
}

// A piece of capitals behind a "%", which looks like a token of another program.
bool LooksLikeToken(std::string_view piece) {
    return piece.size() > 1 && piece.front() == '%' &&
           std::all_of(piece.begin() + 1, piece.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

// A piece that is a token, or that its writer took for one.
bool IsMeantAsToken(std::string_view piece) {
    const auto token = TokenIn(piece);
    return (token && token->size() == piece.size()) || LooksLikeToken(piece) ||
           piece.find(argument) != std::string_view::npos || piece == noValue;
}

void AddPieceFaults(Faults& faults, std::string_view piece, bool alone) {
    if (IsToken(piece)) return;
    if (piece == noValue) {
        if (!alone) faults.push_back("the piece \"-1\" wipes out what stands before it");
    } else if (piece.find(argument) != std::string_view::npos) {
        faults.push_back("%ST has to stand alone between two &: the other text in " + Cited(piece) +
                         " is lost");
    } else if (const auto token = TokenIn(piece)) {
        const bool wholePiece = token->size() == piece.size();
        faults.push_back(Cited(piece) +
                         (wholePiece ? " is no token: its letters have to be capitals, "
                                     : " is shown as it is: inside a piece nobody expands ") +
                         std::string(*token));
    } else if (LooksLikeToken(piece)) {
        faults.push_back(Cited(piece) + " is no token and is shown as it is");
    }
}

// Two texts with nothing but an "&" between them need none, so the "&" was meant to be read.
void AddSeparatorFaults(Faults& faults, const std::vector<std::string_view>& pieces) {
    for (std::size_t i = 0; i + 1 < pieces.size(); ++i) {
        const std::string_view left = pieces[i], right = pieces[i + 1];
        if (left.empty() || right.empty())
            faults.push_back("there is an & with nothing beside it; a character & is written %AND");
        else if (!IsMeantAsToken(left) && !IsMeantAsToken(right))
            faults.push_back("the & between " + Cited(left) + " and " + Cited(right) +
                             " and the blanks beside it vanish; a character & is written & %AND &");
    }
}

// The values of a group exclude one another.
constexpr std::int32_t groups[] = {0xF, 0xF0, 0xF00};

void AddGroupFaults(Faults& faults, const std::vector<std::int32_t>& values) {
    std::int32_t seen = 0;
    for (const std::int32_t value : values) {
        const bool clashes =
            (seen & value) != 0 || std::any_of(std::begin(groups), std::end(groups), [&](std::int32_t group) {
                return (seen & group) != 0 && (value & group) != 0;
            });
        if (clashes) {
            faults.push_back("names that exclude each other add up to something else");
            return;
        }
        seen |= value;
    }
}

void AddNameFaults(Faults& faults, std::string_view name) {
    using platform::FromUtf8;
    if (horalink::IsMsgBoxConstant(FromUtf8(name))) return;
    if (name.empty())
        faults.push_back("there is a + with nothing beside it");
    else if (horalink::IsMsgBoxConstant(FromUtf8(TrimBlanks(name))))
        faults.push_back("the blanks beside + make " + Cited(name) + " an unknown name");
    else
        faults.push_back(Cited(name) + " is no name of a button and counts for nothing");
}

}  // namespace

std::vector<std::string> TokenFaults(std::string_view text) {
    Faults faults;
    std::vector<std::string_view> pieces = Split(text, '&');
    for (std::string_view& piece : pieces) piece = TrimSpaces(piece);
    for (const std::string_view piece : pieces) AddPieceFaults(faults, piece, pieces.size() == 1);
    AddSeparatorFaults(faults, pieces);
    return faults;
}

std::vector<std::string> PlainTextFaults(std::string_view text) {
    const auto token = TokenIn(text);
    if (!token) return {};
    return {"this text is shown as it is: nobody expands " + std::string(*token) + " here"};
}

std::vector<std::string> ButtonFaults(std::string_view text) {
    Faults faults;
    if (text.empty()) return faults;
    std::vector<std::int32_t> values;
    for (const std::string_view name : Split(text, '+')) {
        AddNameFaults(faults, name);
        values.push_back(horalink::MsgBoxConstantValue(platform::FromUtf8(name)));
    }
    AddGroupFaults(faults, values);
    return faults;
}

int CountArguments(std::string_view text) {
    const auto pieces = Split(text, '&');
    return static_cast<int>(std::count_if(pieces.begin(), pieces.end(), [](std::string_view piece) {
        // In small letters it is a fault of its own, and not one that is missing besides.
        return piece.find(argument) != std::string_view::npos || SameName(TrimSpaces(piece), argument);
    }));
}

}  // namespace lng
