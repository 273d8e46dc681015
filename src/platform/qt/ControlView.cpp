#include "platform/qt/ControlView.h"

#include <QMouseEvent>

#include "platform/qt/CalendarWidget.h"
#include "platform/qt/CheckWidget.h"
#include "platform/qt/EditWidget.h"
#include "platform/qt/LabelWidget.h"
#include "platform/qt/Look.h"
#include "platform/qt/PushWidget.h"
#include "platform/qt/QtText.h"
#include "platform/qt/SpinWidget.h"

namespace platform::forms {

namespace {

template <class Type, class WidgetType>
ControlView* MakeIf(Control& control, QWidget& parent) {
    auto* typed = dynamic_cast<Type*>(&control);
    return typed ? new WidgetType(*typed, parent) : nullptr;
}

std::int16_t ButtonOf(Qt::MouseButton button) {
    switch (button) {
        case Qt::LeftButton:
            return static_cast<std::int16_t>(MouseButton::Left);
        case Qt::RightButton:
            return static_cast<std::int16_t>(MouseButton::Right);
        case Qt::MiddleButton:
            return static_cast<std::int16_t>(MouseButton::Middle);
        default:
            return 0;
    }
}

bool IsBlank(const QString& text) {
    return text.trimmed().isEmpty();
}

// Qt would treat a text that looks like markup as such.
QString AsPlainTip(const QString& text) {
    if (!Qt::mightBeRichText(text)) return text;
    return QStringLiteral("<div style=\"white-space:pre\">%1</div>").arg(text.toHtmlEscaped());
}

}  // namespace

QRect RectOf(const Control& control) {
    return {ToPixels(control.Left), ToPixels(control.Top), ToPixels(control.Width), ToPixels(control.Height)};
}

bool HasWindow(const Control& control) {
    return !dynamic_cast<const Label*>(&control) && !dynamic_cast<const Image*>(&control);
}

ControlView* MakeControlView(Control& control, QWidget& parent) {
    using Maker = ControlView* (*)(Control&, QWidget&);
    static constexpr Maker makers[] = {
        MakeIf<CommandButton, PushWidget>, MakeIf<TextBox, EditWidget>, MakeIf<Label, LabelWidget>,
        MakeIf<CheckBox, CheckWidget>,     MakeIf<UpDown, SpinWidget>,  MakeIf<Calendar, CalendarWidget>,
        MakeIf<Image, ImageWidget>,
    };
    for (const Maker make : makers)
        if (ControlView* view = make(control, parent)) return view;
    return nullptr;
}

void ControlView::Sync() {
    if (!control_) return;
    SyncCommon();
    SyncOwn();
}

void ControlView::SyncCommon() {
    QWidget& widget = Widget();
    widget.setGeometry(RectOf(*control_));
    widget.setEnabled(control_->Enabled);
    if (widget.isHidden() == control_->Visible()) widget.setVisible(control_->Visible);
    SyncTexts();
}

// A screen reader says the visible caption, or else the tool tip.
void ControlView::SyncTexts() {
    QWidget& widget = Widget();
    const QString caption = Caption(), tip = platform::ToShow(control_->ToolTipText());
    if (const QString plain = AsPlainTip(tip); widget.toolTip() != plain) {
        widget.setToolTip(plain);
        widget.setAccessibleDescription(tip);
    }
    const bool readable = ShowsCaption() && !IsBlank(caption);
    const QString spoken = readable ? caption : !IsBlank(tip) ? tip : SpokenName();
    if (widget.accessibleName() != spoken) widget.setAccessibleName(spoken);
}

QString ControlView::SpokenName() const {
    if (const QString caption = Caption(); !IsBlank(caption)) return caption;
    const QString name = platform::ToQt(control_->Name());
    return control_->Index() < 0 ? name : QStringLiteral("%1 %2").arg(name).arg(control_->Index());
}

void ControlView::Act(std::function<void()> act) {
    const auto alive = KeepWindow();
    if (control_ && input_) input_->Act(*control_, std::move(act));
}

void ControlView::MouseReleased(const QMouseEvent& event) {
    const std::int16_t button = ButtonOf(event.button());
    if (button == 0 || !IsOperable()) return;
    Raise(control_->MouseUp, static_cast<MouseButton>(button));
}

}  // namespace platform::forms
