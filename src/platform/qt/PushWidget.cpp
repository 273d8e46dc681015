#include "platform/qt/PushWidget.h"

#include <QPainter>
#include <QStyle>
#include <algorithm>
#include <utility>

#include "platform/qt/Look.h"
#include "platform/qt/QtText.h"

namespace platform::forms {

namespace {

constexpr int iconMargin = 2, largestIcon = 32;
constexpr qreal fadedOpacity = 0.35;

QColor FaceOf(const QPushButton& button) {
    if (!button.isEnabled()) return look::faceDisabled;
    if (button.isDown()) return look::facePressed;
    return button.underMouse() ? look::faceHover : look::face;
}

}  // namespace

PushWidget::PushWidget(CommandButton& control, QWidget& parent) : QPushButton(&parent), TypedView(control) {
    setAutoDefault(true);  // Enter presses it, as Space does
    setAttribute(Qt::WA_Hover);
    connect(this, &QPushButton::clicked, this, [this] {
        const auto alive = KeepWindow();
        if (IsOperable()) Raise(Typed().Click);
    });
}

void PushWidget::SyncOwn() {
    const CommandButton& control = Typed();
    if (const QString caption = Caption(); std::exchange(caption_, caption) != caption) update();
    setFont(ToQt(*control.Font));
    if (shown_ == control.Picture() && shownDisabled_ == control.DisabledPicture()) return;
    shown_ = control.Picture;
    shownDisabled_ = control.DisabledPicture;
    picture_.Take(shown_);
    disabledPicture_.Take(shownDisabled_);
    update();
}

QString PushWidget::Caption() const {
    return platform::ToShow(Typed().Caption());
}

bool PushWidget::ShowsCaption() const {
    return !Typed().Picture();
}

Drawing& PushWidget::Shown() {
    return isEnabled() || disabledPicture_.IsEmpty() ? picture_ : disabledPicture_;
}

void PushWidget::PaintFace(QPainter& painter) {
    DrawBox(painter, rect(), FaceOf(*this), isEnabled() ? look::line : look::lineSoft);
    if (hasFocus()) DrawFocus(painter, rect());
}

void PushWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    PaintFace(painter);
    Drawing& drawing = Shown();
    const QRect inside = rect().adjusted(iconMargin, iconMargin, -iconMargin, -iconMargin);
    if (drawing.IsEmpty()) {
        style()->drawItemText(&painter, inside, Qt::AlignCenter, palette(), isEnabled(), caption_,
                              QPalette::ButtonText);
        return;
    }
    if (!isEnabled() && &drawing == &picture_) painter.setOpacity(fadedOpacity);
    const int side = std::min({inside.width(), inside.height(), largestIcon});
    QRect place(0, 0, side, side);
    place.moveCenter(inside.center());
    painter.drawPixmap(place.topLeft(), drawing.At(place.size(), devicePixelRatio()));
}

}  // namespace platform::forms
