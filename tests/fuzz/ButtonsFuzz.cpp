// The button language of message boxes.
#include "FuzzTarget.h"
#include "language/MsgBoxButtons.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace horalink;
    const platform::Text text = platform::FromUtf8(fuzz::Bytes(data, size));
    try {
        const std::int32_t sum = ParseMsgBoxButtons(text);
        if (text.find(u'+') == platform::Text::npos)
            fuzz::Require(sum == MsgBoxConstantValue(text), "one name is its value");
    } catch (const platform::RuntimeError& error) {
        fuzz::Require(error.Number() == static_cast<int>(platform::ErrorNumber::Overflow),
                      "the one error is an overflow");
    }
    return 0;
}
