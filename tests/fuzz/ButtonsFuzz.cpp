// The button language of message boxes.
#include "FuzzTarget.h"
#include "language/LanguageMsgBox.h"

void horalink::fuzz::Try(std::string_view input) {
    const platform::Text text = platform::FromUtf8(input);
    std::int32_t sum = 0;
    const auto error = platform::ErrorOf([&] { sum = ParseMsgBoxButtons(text); });
    Require(error == 0 || error == 6, "the one error is an overflow");
    if (error == 0 && text.find(u'+') == platform::Text::npos)
        Require(sum == MsgBoxConstantValue(text), "one name is its value");
}
