#include "platform/qt/QtWaitBoxes.h"

#include "platform/qt/BoxDialog.h"
#include "platform/runtime/Guard.h"

namespace platform {

namespace {

constexpr std::int16_t goOn = 1, giveUp = 2;

BoxContent ContentOf(TextView title, TextView text, const ButtonTexts& buttons) {
    BoxContent content;
    content.title = title;
    content.prompt = text;
    content.sign = BoxSign::Exclamation;
    content.buttons = {{buttons.keepWaiting, goOn}, {buttons.giveUp, giveUp}};
    content.escapeAnswer = giveUp;
    return content;
}

class QtWaitBox : public WaitBox {
  public:
    QtWaitBox(const BoxContent& content, std::function<void(bool)> answered)
        : dialog_(new BoxDialog(content)) {
        // The call is copied out of the connection, which goes when the box is dropped inside the call.
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
