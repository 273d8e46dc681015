#include "platform/qt/EditWidget.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QWheelEvent>
#include <cstdlib>

#include "platform/qt/Look.h"
#include "platform/qt/QtText.h"

namespace platform::forms {

namespace {

// The space that QLineEdit adds to its margins at the left and right.
constexpr int ownMargin = 2;

}  // namespace

EditWidget::EditWidget(TextBox& control, QWidget& parent) : QLineEdit(&parent), TypedView(control) {
    setFrame(false);
    setContextMenuPolicy(Qt::NoContextMenu);
    // This class paints the background.
    setAutoFillBackground(false);
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    setPalette(colors);
    connect(this, &QLineEdit::textChanged, this, &EditWidget::FollowOperator);
    connect(this, &QLineEdit::selectionChanged, this, &EditWidget::FollowOperator);
    connect(this, &QLineEdit::cursorPositionChanged, this, &EditWidget::FollowOperator);
}

void EditWidget::SyncOwn() {
    if (syncing_) return;
    const QScopedValueRollback guard(syncing_, true);
    const TextBox& control = Typed();
    setFont(ToQt(*control.Font));
    setReadOnly(control.Locked);
    if (const int margin = control.Border ? ownMargin : -ownMargin; textMargins().left() != margin)
        setTextMargins(margin, 0, margin, 0);
    if (const auto alignment = ToQt(control.Align) | Qt::AlignVCenter; this->alignment() != alignment)
        setAlignment(alignment);
    if (const QString shown = platform::ToQt(control.Text()); shown != text()) setText(shown);
    SyncSelection();
}

void EditWidget::SyncSelection() {
    const int start = Typed().SelStart(), length = Typed().SelLength();
    if (length > 0 ? start == selectionStart() && length == selectionLength()
                   : !hasSelectedText() && start == cursorPosition())
        return;
    if (length > 0)
        setSelection(start, length);
    else
        setCursorPosition(start);
}

// Passes the operator's text or selection to the model, then shows what the model accepted.
void EditWidget::FollowOperator() {
    if (syncing_ || !Model()) return;
    if (const Text changed = FromQt(text()); changed == Typed().Text()) {
        FollowSelection();
    } else {
        if (!Typed().Locked) Act([this, changed] { FollowText(changed); });
        Sync();
    }
}

void EditWidget::FollowText(const Text& changed) {
    {
        const QScopedValueRollback guard(syncing_, true);
        Typed().Text = changed;
    }
    if (FromQt(text()) == changed)
        FollowSelection();
    else
        Sync();
}

// Each call below changes the model, which must not sync the half-set selection back to the screen.
void EditWidget::FollowSelection() {
    const QScopedValueRollback guard(syncing_, true);
    TextBox& control = Typed();
    control.SetSelStart(hasSelectedText() ? selectionStart() : cursorPosition());
    control.SetSelLength(static_cast<std::int32_t>(selectionLength()));
}

// Hides the reason, since the Tab key would select the whole text: the handler of GotFocus decides on that.
void EditWidget::focusInEvent(QFocusEvent* event) {
    focusedByPress_ = event->reason() == Qt::MouseFocusReason;
    QFocusEvent plain(event->type(), Qt::OtherFocusReason);
    QLineEdit::focusInEvent(&plain);
}

// A press that gives the focus leaves the selection alone: the handler of GotFocus may have set it.
void EditWidget::mousePressEvent(QMouseEvent* event) {
    if (!LeavesSelection()) QLineEdit::mousePressEvent(event);
}

void EditWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!LeavesSelection()) QLineEdit::mouseMoveEvent(event);
}

void EditWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (!LeavesSelection()) QLineEdit::mouseReleaseEvent(event);
    focusedByPress_ = false;
}

void EditWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!IsSection()) QLineEdit::mouseDoubleClickEvent(event);
}

void EditWidget::keyPressEvent(QKeyEvent* event) {
    if (!IsSection()) return QLineEdit::keyPressEvent(event);
    if (const auto direction = StepOf(*event))
        StepIfOperable(*direction);
    else if (event->matches(QKeySequence::Copy))
        QLineEdit::keyPressEvent(event);
    else
        event->ignore();
}

void EditWidget::wheelEvent(QWheelEvent* event) {
    if (!IsSection() || !hasFocus()) return QLineEdit::wheelEvent(event);
    const int steps = wheel_.Take(*event);
    const auto alive = KeepWindow();
    for (int i = 0; i < std::abs(steps); ++i) StepIfOperable(steps > 0 ? Direction::Up : Direction::Down);
}

void EditWidget::StepIfOperable(Direction direction) {
    if (!IsOperable() || !Typed().Spin->Enabled) return;
    const auto alive = KeepWindow();
    Step(*Typed().Spin, direction);
}

// A box without a border is too small for a ring, so its background shows the focus unless a selection does.
void EditWidget::PaintBackground() {
    QPainter painter(this);
    if (Typed().Border)
        return DrawBox(painter, rect(), look::paper, hasFocus() ? look::accent : look::lineField);
    painter.fillRect(rect(), QColor(look::paper));
    if (!hasFocus() || hasSelectedText()) return;
    painter.fillRect(rect(), QColor::fromRgba(look::tint));
    painter.fillRect(QRect(0, height() - 1, width(), 1), QColor(look::accent));
}

void EditWidget::paintEvent(QPaintEvent* event) {
    if (Model()) PaintBackground();
    QLineEdit::paintEvent(event);
}

}  // namespace platform::forms
