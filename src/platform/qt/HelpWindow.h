// The small window that shows a help topic.
#pragma once

#include <QWidget>

#include "platform/desktop/HelpFile.h"

namespace platform {

// Closes with a click anywhere, with Escape, when another program becomes active, and with its parent.
class HelpWindow : public QWidget {
  public:
    HelpWindow(const HelpTopic& topic, QWidget& parent);

    // Shows the window below its parent, or above if there is no room.
    void Present();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    QPoint PlaceBeside(const QWidget& widget) const;
};

}  // namespace platform
