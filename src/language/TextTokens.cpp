#include "language/TextTokens.h"

#include <limits>

#include "common/FatalNotice.h"

namespace horalink {

namespace {

using namespace platform;

constexpr std::int16_t lastArgumentPosition = 16383;

Text TakeArgument(Text& args) {
    const auto end = args.find(u'%');
    if (end == Text::npos) return args;
    if (TextPosition(end) > lastArgumentPosition) throw RuntimeError(ErrorNumber::Overflow);
    const Text argument = args.substr(0, end);
    args.erase(0, end + 1);
    return argument;
}

TextView TakePiece(TextView& rest) {
    const auto end = rest.find(u'&');
    const TextView piece = rest.substr(0, end);
    rest.remove_prefix(end == TextView::npos ? rest.size() : static_cast<std::size_t>(TextPosition(end)));
    return piece;
}

void AddPiece(Text& result, TextView piece, Text& args) {
    if (piece == u"-1")
        result = u"-1";
    else if (piece == u"%CR")
        result += u'\r';
    else if (piece == u"%AND")
        result += u'&';
    else if (piece == u"%SP")
        result += u' ';
    else if (piece == u"%SP4")
        result += u"    ";
    else if (piece.find(u"%ST") != TextView::npos)
        result += TakeArgument(args);
    else
        result += piece;
}

}  // namespace

std::int16_t TextPosition(std::size_t index) {
    if (index >= static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max()))
        throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<std::int16_t>(index + 1);
}

Text ExpandTextTokens(MessageBoxes& boxes, TextView text, Text& args) {
    Text result;
    Text remaining = args;
    try {
        for (TextView rest = text; !rest.empty();) AddPiece(result, Trim(TakePiece(rest)), remaining);
        args = remaining;
    } catch (const RuntimeError& error) {
        ShowLongNotice(boxes, error);
    }
    return result;
}

}  // namespace horalink
