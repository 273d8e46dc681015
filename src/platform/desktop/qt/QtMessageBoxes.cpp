#include "platform/desktop/qt/QtMessageBoxes.h"

#include "platform/desktop/MessageBoxButtons.h"
#include "platform/desktop/qt/BoxDialog.h"
#include "platform/runtime/RuntimeError.h"

namespace platform {

namespace {

enum Answer : std::int16_t { ok = 1, cancel, abort, retry, ignore, yes, no };

struct ButtonSet {
    std::vector<BoxContent::Button> buttons;
    std::int16_t escapeAnswer;
    std::int16_t leastAnswer;
};

// In the order of the constants, from okOnly to retryCancel.
const std::vector<ButtonSet>& ButtonSets() {
    static const std::vector<ButtonSet> sets{
        {{{"OK", ok}}, ok, ok},
        {{{"OK", ok}, {"Cancel", cancel}}, cancel, cancel},
        {{{"Abort", abort}, {"Retry", retry}, {"Ignore", ignore}}, 0, abort},
        {{{"&Yes", yes}, {"&No", no}, {"Cancel", cancel}}, cancel, cancel},
        {{{"&Yes", yes}, {"&No", no}}, 0, no},
        {{{"Retry", retry}, {"Cancel", cancel}}, cancel, cancel},
    };
    return sets;
}

// The parts that a buttons value is the sum of.
constexpr std::int32_t setPart = 0xF, signPart = 0xF0, defaultPart = 0xF00;

const ButtonSet& SetOf(std::int32_t buttons) {
    const auto set = static_cast<std::size_t>(buttons & setPart);
    if (set >= ButtonSets().size())
        throw RuntimeError(ErrorNumber::InvalidProcedureCall, "message box buttons");
    return ButtonSets()[set];
}

BoxSign SignOf(std::int32_t buttons) {
    switch (buttons & signPart) {
        case buttons::critical:
            return BoxSign::Critical;
        case buttons::question:
            return BoxSign::Question;
        case buttons::exclamation:
            return BoxSign::Exclamation;
        case buttons::information:
            return BoxSign::Information;
        default:
            return BoxSign::None;
    }
}

HelpButton HelpOf(const MessageBox& box) {
    if (!(box.buttons & buttons::helpButton)) return HelpButton::None;
    return box.helpFile ? HelpButton::Live : HelpButton::Dead;
}

}  // namespace

std::int16_t QtMessageBoxes::Show(const MessageBox& box) {
    const ButtonSet& set = SetOf(box.buttons);
    BoxContent content;
    content.title = box.title ? *box.title : application_.title;
    content.prompt = box.prompt;
    content.sign = SignOf(box.buttons);
    content.buttons = set.buttons;
    content.defaultButton = static_cast<std::size_t>((box.buttons & defaultPart) / buttons::defaultButton2);
    content.escapeAnswer = set.escapeAnswer;
    content.help = HelpOf(box);
    content.showHelp = [&](QWidget& beside) { help_.Show(beside, box.helpContext, *box.helpFile); };
    content.onTop = (box.buttons & buttons::systemModal) != 0;
    content.alignRight = (box.buttons & buttons::right) != 0;
    content.rightToLeft = (box.buttons & buttons::rightToLeft) != 0;

    BoxDialog dialog(content);
    dialog.Present();
    const int answer = dialog.exec();
    return answer != 0 ? static_cast<std::int16_t>(answer) : set.leastAnswer;
}

}  // namespace platform
