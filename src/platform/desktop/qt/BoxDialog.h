// The window of a message box and of a wait box.
#pragma once

#include <QDialog>
#include <cstdint>
#include <functional>
#include <vector>

#include "platform/desktop/qt/BoxIcons.h"
#include "platform/runtime/Text.h"

class QLayout;

namespace platform {

enum class HelpButton { None, Dead, Live };

struct BoxContent {
    struct Button {
        const char* text;  // Qt's English text; the box shows it in the user's language
        std::int16_t answer;
    };

    TextView title, prompt;
    BoxSign sign = BoxSign::None;
    std::vector<Button> buttons;
    std::size_t defaultButton = 0;  // counted over the buttons, then the help button
    std::int16_t escapeAnswer = 0;  // what Escape and closing answer; 0 where they do nothing
    HelpButton help = HelpButton::None;
    std::function<void(QWidget& beside)> showHelp;  // for a live help button
    bool onTop = false;
    bool alignRight = false;
    bool rightToLeft = false;
};

// Stands over the program's active window without being its child: a form that goes away while a box is
// open leaves the box to its caller. The answer is the dialog's result.
class BoxDialog : public QDialog {
  public:
    explicit BoxDialog(const BoxContent& content);

    // Shows the box in front of the program's windows.
    void Present();

    void reject() override;

  private:
    QLayout* MakePrompt(const BoxContent& content);
    QLayout* MakeButtons(const BoxContent& content);
    void PlaceOver(QWidget& window);

    std::int16_t escapeAnswer_;
};

}  // namespace platform
