#include "platform/qt/HelpWindow.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QTextDocumentFragment>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/qt/Accessibility.h"
#include "platform/qt/Look.h"
#include "platform/qt/QtText.h"

namespace platform {

namespace {

constexpr int textWidth = 320, margin = 12, gap = 4;

void AddText(QVBoxLayout& layout, const QString& text, Qt::TextFormat format, bool bold) {
    auto* label = new QLabel(text);
    label->setTextFormat(format);
    label->setWordWrap(true);
    label->setFixedWidth(textWidth);
    QFont font = label->font();
    font.setBold(bold);
    label->setFont(font);
    // The place of the window depends on its height, which must be known before it is shown.
    label->setFixedHeight(label->heightForWidth(textWidth));
    layout.addWidget(label);
}

}  // namespace

HelpWindow::HelpWindow(const HelpTopic& topic, QWidget& parent) : QWidget(&parent, Qt::Popup) {
    const QString title = ToShow(topic.title), body = ToQt(topic.body);
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("HelpWindow"));
    setWindowTitle(title);
    setAccessibleName(title);
    setAccessibleDescription(QTextDocumentFragment::fromHtml(body).toPlainText());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(margin / 2);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    if (!title.isEmpty()) AddText(*layout, title, Qt::PlainText, true);
    AddText(*layout, body, Qt::RichText, false);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationInactive) close();
    });
}

void HelpWindow::Present() {
    adjustSize();
    move(PlaceBeside(*parentWidget()));
    show();
    forms::SayThatItPopsUp(*this);
}

// The layout settles the size only when the window is shown.
void HelpWindow::resizeEvent(QResizeEvent*) {
    move(PlaceBeside(*parentWidget()));
}

QPoint HelpWindow::PlaceBeside(const QWidget& widget) const {
    const QRect beside(widget.mapToGlobal(QPoint()), widget.size());
    const QRect room = widget.screen()->availableGeometry();
    const int below = beside.bottom() + gap, above = beside.top() - gap - height();
    const int lowest = room.bottom() - height();
    return {std::max(room.left(), std::min(beside.left(), room.right() - width())),
            std::max(room.top(), below <= lowest ? below : std::min(above, lowest))};
}

void HelpWindow::mousePressEvent(QMouseEvent*) {
    close();
}

void HelpWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    forms::DrawBox(painter, rect(), forms::look::paper, forms::look::line, 0);
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) close();
}

}  // namespace platform
