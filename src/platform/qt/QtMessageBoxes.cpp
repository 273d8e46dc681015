#include "platform/qt/QtMessageBoxes.h"

#include "platform/desktop/Desktop.h"
#include "platform/qt/BoxDialog.h"
#include "platform/runtime/RuntimeError.h"

namespace platform {

namespace {

enum Button : std::int16_t { ok = 1, cancel, abort, retry, ignore, yes, no };

struct ButtonSet {
    std::vector<std::pair<Text ButtonTexts::*, Button>> buttons;
    std::int16_t escapeButton;
    std::int16_t leastButton;
};

// In the order of the constants, from okOnly to retryCancel.
const std::vector<ButtonSet>& ButtonSets() {
    using Word = ButtonTexts;
    static const std::vector<ButtonSet> sets{
        {{{&Word::ok, ok}}, ok, ok},
        {{{&Word::ok, ok}, {&Word::cancel, cancel}}, cancel, cancel},
        {{{&Word::abort, abort}, {&Word::retry, retry}, {&Word::ignore, ignore}}, 0, abort},
        {{{&Word::yes, yes}, {&Word::no, no}, {&Word::cancel, cancel}}, cancel, cancel},
        {{{&Word::yes, yes}, {&Word::no, no}}, 0, no},
        {{{&Word::retry, retry}, {&Word::cancel, cancel}}, cancel, cancel},
    };
    return sets;
}

// The parts of a buttons value.
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

}  // namespace

std::int16_t QtMessageBoxes::Show(const MessageBox& box) {
    const ButtonSet& set = SetOf(box.buttons);
    BoxContent content;
    content.title = box.title ? *box.title : application_.title;
    content.prompt = box.prompt;
    content.sign = SignOf(box.buttons);
    for (const auto& [word, button] : set.buttons)
        content.buttons.push_back({application_.buttons.*word, button});
    content.defaultButton = static_cast<std::size_t>((box.buttons & defaultPart) / buttons::defaultButton2);
    content.escapeButton = set.escapeButton;
    if (box.buttons & buttons::helpButton) content.helpButton = application_.buttons.help;
    if (box.helpFile)
        content.showHelp = [&](QWidget& beside) { help_.Show(beside, box.helpContext, *box.helpFile); };
    content.onTop = (box.buttons & buttons::systemModal) != 0;
    content.alignRight = (box.buttons & buttons::right) != 0;
    content.rightToLeft = (box.buttons & buttons::rightToLeft) != 0;

    BoxDialog dialog(content);
    dialog.Present();
    const int pressed = dialog.exec();
    return pressed != 0 ? static_cast<std::int16_t>(pressed) : set.leastButton;
}

namespace {

constexpr std::int16_t goOn = 1, giveUp = 2;

BoxContent ContentOf(TextView title, TextView text, const ButtonTexts& buttons) {
    BoxContent content;
    content.title = title;
    content.prompt = text;
    content.sign = BoxSign::Exclamation;
    content.buttons = {{buttons.keepWaiting, goOn}, {buttons.giveUp, giveUp}};
    content.escapeButton = giveUp;
    return content;
}

class QtWaitBox : public WaitBox {
  public:
    QtWaitBox(const BoxContent& content, std::function<void(bool)> answered)
        : dialog_(new BoxDialog(content)) {
        // Copied out of the connection, which is destroyed if the call drops the box.
        QObject::connect(dialog_, &QDialog::finished, dialog_, [call = std::move(answered)](int answer) {
            const auto running = call;
            Guard([&] { running(answer == giveUp); });
        });
        dialog_->Present();
    }
    ~QtWaitBox() override {
        dialog_->disconnect();
        dialog_->hide();
        dialog_->deleteLater();
    }

  private:
    BoxDialog* dialog_;
};

}  // namespace

std::unique_ptr<WaitBox> QtWaitBoxes::Open(TextView title, TextView text,
                                           std::function<void(bool)> answered) {
    return std::make_unique<QtWaitBox>(ContentOf(title, text, application_.buttons), std::move(answered));
}

}  // namespace platform
