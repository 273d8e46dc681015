// The window of a message box and of a wait box.
#pragma once

#include <QDialog>
#include <cstdint>
#include <functional>
#include <vector>

#include "platform/runtime/Text.h"

class QLayout;

namespace platform {

enum class BoxSign { None, Critical, Question, Exclamation, Information };

struct BoxContent {
    struct Button {
        TextView text;
        std::int16_t answer;
    };

    TextView title, prompt;
    BoxSign sign = BoxSign::None;
    std::vector<Button> buttons;
    std::size_t defaultButton = 0;                  // counted over the buttons, then the help button
    std::int16_t escapeButton = 0;                  // of Escape and closing; 0 to ignore both
    TextView helpButton;                            // empty for none
    std::function<void(QWidget& beside)> showHelp;  // for F1 and the help button; disabled if null
    bool onTop = false;
    bool alignRight = false;
    bool rightToLeft = false;
};

// Stays above the program's active window without being its child: the box outlives a form that closes. The
// answer is the dialog's result.
class BoxDialog : public QDialog {
  public:
    explicit BoxDialog(const BoxContent& content);

    // Shows the box in front of the program's windows.
    void Present();

    void reject() override;

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QLayout* MakePrompt(const BoxContent& content);
    QLayout* MakeButtons(const BoxContent& content);
    void PlaceOver(QWidget& window);

    std::int16_t escapeButton_;
    std::function<void(QWidget& beside)> showHelp_;
};

}  // namespace platform
