#include "Lint.h"

#include <algorithm>
#include <optional>

#include "language/LanguageMsgBox.h"
#include "language/TextTokens.h"
#include "platform/headless/Desktop.h"

namespace lng {

namespace {

using namespace platform;
using Faults = std::vector<std::string>;

constexpr TextView noValue = u"-1", argument = u"%ST";

Text Expanded(TextView piece) {
    headless::Boxes boxes;
    Text args = u"\uE000%";
    return horalink::ExpandTextTokens(boxes, piece, args);
}

bool IsLetter(char16_t c) {
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

bool IsWordCharacter(char16_t c) {
    return IsLetter(c) || (c >= u'0' && c <= u'9');
}

// The words of a text that begin with "%".
std::vector<TextView> PercentWords(TextView text) {
    std::vector<TextView> words;
    for (auto at = text.find(u'%'); at != TextView::npos; at = text.find(u'%', at + 1)) {
        const TextView rest = text.substr(at);
        const auto end = std::find_if_not(rest.begin() + 1, rest.end(), IsWordCharacter);
        words.push_back(rest.substr(0, static_cast<std::size_t>(end - rest.begin())));
    }
    return words;
}

bool IsToken(TextView word) {
    return word.size() > 1 && word.front() == u'%' && Expanded(word) != word;
}

// The first token, in any case, anywhere in a text.
std::optional<Text> TokenIn(TextView text) {
    for (const TextView word : PercentWords(text))
        if (Text token = UpperCase(Text(word)); IsToken(token)) return token;
    return std::nullopt;
}

// True for a piece that is one word after a "%": a token, in any case, or a token of another program.
bool IsOneWord(TextView piece) {
    return piece.size() > 1 && piece.front() == u'%' &&
           std::all_of(piece.begin() + 1, piece.end(), IsWordCharacter) && IsLetter(piece[1]);
}

std::string Cited(TextView text) {
    constexpr std::size_t longest = 40;
    return "\"" + ToUtf8(text.substr(0, longest)) + (text.size() > longest ? "..." : "") + "\"";
}

std::vector<TextView> Split(TextView text, char16_t separator) {
    std::vector<TextView> pieces;
    for (;;) {
        const auto end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == TextView::npos) return pieces;
        text.remove_prefix(end + 1);
    }
}

void AddPieceFaults(Faults& faults, TextView piece, bool alone) {
    if (piece == noValue) {
        if (!alone) faults.push_back("the piece \"-1\" wipes out what is before it");
    } else if (IsOneWord(piece)) {
        const bool isToken = TokenIn(piece).has_value();
        if (!IsToken(piece))
            faults.push_back(Cited(piece) + " is no token" +
                             (isToken ? ": its letters have to be capitals" : " and is shown as it is"));
    } else if (piece.find(argument) != TextView::npos) {
        faults.push_back("%ST has to be alone between two &: the other text in " + Cited(piece) + " is lost");
    } else if (const auto token = TokenIn(piece)) {
        faults.push_back(Cited(piece) + " is shown as it is: " + ToUtf8(*token) +
                         " has to be alone between two &");
    }
}

bool IsPlain(TextView piece) {
    return piece != noValue && !IsOneWord(piece) && piece.find(argument) == TextView::npos;
}

// Two plain texts need no "&" between them, so the author meant the "&" to be shown.
void AddSeparatorFaults(Faults& faults, const std::vector<Text>& pieces) {
    for (std::size_t i = 0; i + 1 < pieces.size(); ++i) {
        if (pieces[i].empty() || pieces[i + 1].empty())
            faults.push_back("there is an & with nothing beside it; a character & is written %AND");
        else if (IsPlain(pieces[i]) && IsPlain(pieces[i + 1]))
            faults.push_back("the & between " + Cited(pieces[i]) + " and " + Cited(pieces[i + 1]) +
                             " and the blanks beside it vanish; a character & is written & %AND &");
    }
}

void AddNameFaults(Faults& faults, TextView name) {
    if (horalink::IsMsgBoxConstant(name)) return;
    if (name.empty())
        faults.push_back("there is a + with nothing beside it");
    else if (horalink::IsMsgBoxConstant(Trim(name)))
        faults.push_back("the blanks beside + make " + Cited(name) + " an unknown name");
    else
        faults.push_back(Cited(name) + " is no name of a button and counts for nothing");
}

// True if a group of bits gets a second value: those exclude each other.
bool Clashes(std::int32_t seen, std::int32_t value) {
    constexpr std::int32_t groups[] = {0xF, 0xF0, 0xF00};
    return (seen & value) != 0 || std::any_of(std::begin(groups), std::end(groups), [&](std::int32_t group) {
               return (seen & group) != 0 && (value & group) != 0;
           });
}

}  // namespace

std::vector<std::string> TokenFaults(TextView text) {
    Faults faults;
    std::vector<Text> pieces;
    for (const TextView piece : Split(text, u'&')) pieces.push_back(Trim(piece));
    for (const Text& piece : pieces) AddPieceFaults(faults, piece, pieces.size() == 1);
    AddSeparatorFaults(faults, pieces);
    return faults;
}

std::vector<std::string> PlainTextFaults(TextView text) {
    const auto token = TokenIn(text);
    if (!token) return {};
    return {"this text is shown as it is: " + ToUtf8(*token) + " has no meaning here"};
}

std::vector<std::string> ButtonFaults(TextView text) {
    Faults faults;
    if (text.empty()) return faults;
    std::int32_t seen = 0;
    bool clash = false;
    for (const TextView name : Split(text, u'+')) {
        AddNameFaults(faults, name);
        const std::int32_t value = horalink::MsgBoxConstantValue(name);
        clash |= Clashes(seen, value);
        seen |= value;
    }
    if (clash) faults.push_back("names that exclude each other add up to something else");
    return faults;
}

}  // namespace lng
