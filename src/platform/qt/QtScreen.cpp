#include "platform/qt/QtScreen.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include "platform/qt/Look.h"

namespace platform {

namespace {

QSize ScreenSize() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->size() : QSize(0, 0);
}

}  // namespace

void QtScreen::SetPointer(MousePointer pointer) {
    if (pointer == pointer_) return;
    pointer_ = pointer;
    // Qt keeps a stack of cursors; here it never holds more than one.
    if (pointer == MousePointer::Hourglass)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

float QtScreen::Width() const {
    return forms::ToTwips(ScreenSize().width());
}

float QtScreen::Height() const {
    return forms::ToTwips(ScreenSize().height());
}

}  // namespace platform
