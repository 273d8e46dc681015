// The window in which the host shows the help that an add-in asks for.
#pragma once

#include <QWidget>

#include "platform/desktop/HelpFile.h"

class QLabel;
class QTextBrowser;

namespace switchdesk {

// Stays beside the other windows until it is closed, by its frame or with Escape.
class HelpPage : public QWidget {
  public:
    // `host` is the window that it goes with.
    explicit HelpPage(QWidget& host);

    // Puts a topic on the page and brings it to the front.
    void Show(const platform::HelpTopic& topic);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QLabel* title_;
    QTextBrowser* body_;
};

}  // namespace switchdesk
