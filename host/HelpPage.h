// The window that shows help for an add-in.
#pragma once

#include <QCoreApplication>
#include <QWidget>

#include "platform/desktop/HelpFile.h"

class QLabel;
class QTextBrowser;

namespace switchdesk {

// Stays open until the operator closes it, by its frame or with Escape.
class HelpPage : public QWidget {
    Q_DECLARE_TR_FUNCTIONS(HelpPage)

  public:
    // Closes with the window `host`.
    explicit HelpPage(QWidget& host);

    // Shows a topic, and brings the page to the front.
    void Show(const platform::HelpTopic& topic);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QLabel* title_;
    QTextBrowser* body_;
};

}  // namespace switchdesk
