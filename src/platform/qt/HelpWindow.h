// The small window that a help topic is shown in.
#pragma once

#include <QWidget>

#include "platform/desktop/HelpFile.h"

namespace platform {

// Goes with a click anywhere, with Escape, when another program comes in front, and with its parent.
class HelpWindow : public QWidget {
  public:
    HelpWindow(const HelpTopic& topic, QWidget& parent);

    // Shows the window below the parent, or above it where the screen ends there.
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
