#include "platform/qt/LabelWidget.h"

#include <QPainter>
#include <QTextLayout>
#include <algorithm>

#include "platform/qt/Look.h"
#include "platform/qt/QtText.h"

namespace platform::forms {

namespace {

constexpr double usualAscent = 0.905;  // of Latin fonts, in parts of their size

// Fonts with Chinese and Japanese letters are taller: without a correction a line would be lower than its
// neighbours.
int ExtraAscent(const QString& text, const QFont& font) {
    QTextLayout layout(text, font);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    return line.isValid() ? std::max(0, qRound(line.ascent() - usualAscent * font.pixelSize())) : 0;
}

}  // namespace

void LabelWidget::SyncOwn() {
    const Label& control = Typed();
    Shown next{Caption(),     ToQt(*control.Font), control.Border,   control.Opaque,
               control.Align, control.BackColor,   control.ForeColor};
    if (next == shown_) return;
    shown_ = std::move(next);
    update();
}

QString LabelWidget::Caption() const {
    return platform::ToShow(Typed().Caption());
}

// The inside of a transparent frame is a shade lighter than the form.
QColor LabelWidget::Fill() const {
    if (shown_.opaque) return ToQt(shown_.backColor);
    return shown_.border ? QColor::fromRgba(look::veil) : QColor(Qt::transparent);
}

void LabelWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (shown_.border)
        DrawBox(painter, rect(), Fill(), shown_.opaque ? look::lineField : look::lineSoft);
    else
        painter.fillRect(rect(), Fill());
    painter.setFont(shown_.font);
    painter.setPen(isEnabled() ? ToQt(shown_.foreColor) : QColor(look::inkDisabled));
    // One pixel down, the line is level with a borderless text box in the same place.
    painter.drawText(rect().adjusted(0, 1 - ExtraAscent(shown_.caption, shown_.font), 0, 0),
                     static_cast<int>(ToQt(shown_.align)) | Qt::TextWordWrap, shown_.caption);
}

void ImageWidget::SyncOwn() {
    const Image& control = Typed();
    if (picture_ == control.Picture() && stretch_ == control.Stretch()) return;
    picture_ = control.Picture;
    stretch_ = control.Stretch;
    drawing_.Take(picture_);
    update();
}

void ImageWidget::paintEvent(QPaintEvent*) {
    const QSize shown = stretch_ ? size() : drawing_.NaturalSize();
    if (drawing_.IsEmpty() || shown.isEmpty()) return;
    QPainter(this).drawPixmap(QPoint(), drawing_.At(shown, devicePixelRatio()));
}

}  // namespace platform::forms
