// The token language of the texts in a database. The first line holds the values, the rest the text.
#include "FuzzTarget.h"
#include "language/TextTokens.h"
#include "platform/headless/Desktop.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace horalink;
    const std::string_view input = fuzz::Bytes(data, size);
    const std::size_t end = std::min(input.find('\n'), size);
    const platform::Text given = platform::FromUtf8(input.substr(0, end));
    platform::Text args = given;
    platform::headless::Boxes boxes;
    ExpandTextTokens(boxes, platform::FromUtf8(input.substr(std::min(end + 1, size))), args);
    fuzz::Require(given.ends_with(args), "values are used from the front");
    fuzz::Require(boxes.shown.empty() || args == given, "after a failure the values are as they were");
    fuzz::Require(boxes.shown.size() <= 1, "one failure is one notice");
    return 0;
}
