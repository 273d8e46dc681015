#include "platform/qt/CheckWidget.h"

#include <QPainter>
#include <QStyle>
#include <utility>

#include "platform/qt/Look.h"
#include "platform/qt/QtText.h"

namespace platform::forms {

namespace {

constexpr int indicatorSide = 13, captionGap = 5;

void DrawTick(QPainter& painter, const QRect& box, const QColor& color) {
    const QPointF corner = QRectF(box).topLeft();
    const QPointF points[] = {corner + QPointF(3.2, 6.8), corner + QPointF(5.6, 9.2),
                              corner + QPointF(9.9, 3.9)};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(points, 3);
}

}  // namespace

CheckWidget::CheckWidget(CheckBox& control, QWidget& parent) : QCheckBox(&parent), TypedView(control) {
    setAttribute(Qt::WA_Hover);
    connect(this, &QCheckBox::toggled, this, [this](bool on) {
        if (!Model() || on == (Typed().Value() != 0)) return;
        const auto alive = KeepWindow();
        Act([this, on] { Typed().SetValue(on ? 1 : 0); });
        Sync();  // the model has the last word
    });
}

void CheckWidget::SyncOwn() {
    const CheckBox& control = Typed();
    if (const QString caption = Caption(); std::exchange(caption_, caption) != caption) update();
    setFont(ToQt(*control.Font));
    setChecked(control.Value() != 0);
    SyncRing();
    if (backColor_ == control.BackColor()) return;
    backColor_ = control.BackColor;
    update();
}

QString CheckWidget::Caption() const {
    return platform::ToShow(Typed().Caption());
}

QRect CheckWidget::CaptionRect() const {
    return rect().adjusted(indicatorSide + captionGap, 0, 0, 0);
}

void CheckWidget::focusInEvent(QFocusEvent* event) {
    QCheckBox::focusInEvent(event);
    SyncRing();
}

void CheckWidget::focusOutEvent(QFocusEvent* event) {
    QCheckBox::focusOutEvent(event);
    SyncRing();
}

void CheckWidget::SyncRing() {
    const Label* label = Model() ? Typed().TextLabel : nullptr;
    if (label && !ring_) ring_ = new FocusRing(parentWidget());
    if (!ring_) return;
    ring_->setVisible(label && hasFocus());
    if (label) ring_->Surround(geometry() | RectOf(*label));
}

// The back colour shows only as the indicator's frame: a box is hardly larger than its indicator, and filling
// the rest would leave two stray strips.
void CheckWidget::PaintIndicator(QPainter& painter, const QRect& box) const {
    const QColor frame = ToQt(backColor_).darker(115);
    const QColor fill = !isEnabled() ? look::faceDisabled : isDown() ? look::facePressed : look::paper;
    DrawBox(painter, box, fill, frame, 2);
    if (hasFocus() && !ring_) DrawFocus(painter, box, 2);
    if (isChecked()) DrawTick(painter, box, isEnabled() ? look::accent : look::inkDisabled);
}

void CheckWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect box(0, (height() - indicatorSide) / 2, indicatorSide, indicatorSide);
    PaintIndicator(painter, box);
    if (ShowsCaption())
        style()->drawItemText(&painter, CaptionRect(), Qt::AlignVCenter, palette(), isEnabled(), caption_,
                              QPalette::WindowText);
}

}  // namespace platform::forms
