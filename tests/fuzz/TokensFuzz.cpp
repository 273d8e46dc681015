// The token language of the texts in a database. The first line holds the values, the rest the text.
#include "FuzzTarget.h"
#include "language/TextTokens.h"
#include "platform/headless/Desktop.h"

void horalink::fuzz::Try(std::string_view input) {
    const std::size_t end = std::min(input.find('\n'), input.size());
    const platform::Text given = platform::FromUtf8(input.substr(0, end));
    platform::Text args = given;
    platform::headless::Boxes boxes;
    ExpandTextTokens(boxes, platform::FromUtf8(input.substr(std::min(end + 1, input.size()))), args);
    Require(given.ends_with(args), "values are used from the front");
    Require(boxes.shown.empty() || args == given, "after a failure the values are as they were");
    Require(boxes.shown.size() <= 1, "one failure is one notice");
}
