// The token language of the texts in a database. The first line holds the values, the rest the text.
#include "FuzzTarget.h"
#include "language/TextTokens.h"

namespace {

using namespace platform;

class CountedBoxes : public MessageBoxes {
  public:
    std::int16_t Show(const MessageBox&) override {
        ++shown;
        return 1;
    }
    int shown = 0;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace horalink;
    std::string_view input = fuzz::Bytes(data, size);
    const Text given = FromUtf8(fuzz::TakeLine(input));
    Text args = given;
    CountedBoxes boxes;
    ExpandTextTokens(boxes, FromUtf8(input), args);
    fuzz::Require(given.ends_with(args), "values are used from the front");
    fuzz::Require(boxes.shown == 0 || args == given, "after a failure the values are as they were");
    fuzz::Require(boxes.shown <= 1, "one failure is one notice");
    return 0;
}
