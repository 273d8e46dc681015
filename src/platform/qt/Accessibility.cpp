#include "platform/qt/Accessibility.h"

#include <QAbstractButton>
#include <QAccessibleObject>
#include <QAccessibleWidget>
#include <QApplication>

#include "platform/qt/CalendarWidget.h"
#include "platform/qt/FormWindow.h"
#include "platform/qt/HelpWindow.h"
#include "platform/qt/LabelWidget.h"
#include "platform/qt/SpinWidget.h"

namespace platform::forms {

namespace {

// Adds pop-ups to the list of windows that assistive programs read; Qt leaves them out.
class SpokenProgram : public QAccessibleApplication {
  public:
    int childCount() const override {
        return QAccessibleApplication::childCount() + static_cast<int>(PopUps().size());
    }
    QAccessibleInterface* child(int index) const override {
        const int others = QAccessibleApplication::childCount();
        if (index < others) return QAccessibleApplication::child(index);
        return QAccessible::queryAccessibleInterface(PopUps().value(index - others));
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto place = static_cast<int>(PopUps().indexOf(child->object()));
        return place < 0 ? QAccessibleApplication::indexOfChild(child)
                         : QAccessibleApplication::childCount() + place;
    }

  private:
    static QList<QObject*> PopUps() {
        QList<QObject*> shown;
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->isVisible() && window->windowType() == Qt::Popup) shown.append(window);
        return shown;
    }
};

// A button, check box or arrow. Qt's own would bypass the input gate, and act only after a moment.
class SpokenButton : public QAccessibleWidget {
  public:
    SpokenButton(QAbstractButton& button, ControlView& view)
        : QAccessibleWidget(&button, button.isCheckable() ? QAccessible::CheckBox : QAccessible::Button),
          button_(button),
          view_(view) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = button_.isCheckable();
        state.checked = button_.isChecked();
        state.pressed = button_.isDown();
        return state;
    }
    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (button_.isEnabled()) names.prepend(button_.isCheckable() ? toggleAction() : pressAction());
        return names;
    }
    void doAction(const QString& name) override {
        if (name != pressAction() && name != toggleAction()) return QAccessibleWidget::doAction(name);
        view_.Act([this] { button_.click(); });
    }

  private:
    QAbstractButton& button_;
    ControlView& view_;
};

// The value of a spin control, with its range.
class SpokenSpin : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    explicit SpokenSpin(SpinWidget& spin) : QAccessibleWidget(&spin, QAccessible::SpinBox), spin_(spin) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return Of(&UpDown::Value); }
    QVariant minimumValue() const override { return Of(&UpDown::Min); }
    QVariant maximumValue() const override { return Of(&UpDown::Max); }
    QVariant minimumStepSize() const override { return 1; }
    // Ignored: only a step also raises the click that the program acts on.
    void setCurrentValue(const QVariant&) override {}

  private:
    QVariant Of(std::int32_t (UpDown::*part)() const) const {
        return spin_.Model() ? QVariant((spin_.Typed().*part)()) : QVariant();
    }

    SpinWidget& spin_;
};

// A label without a caption is a frame around other controls. Decided late: Qt creates this object before the
// label has its caption.
class SpokenLabel : public QAccessibleWidget {
  public:
    explicit SpokenLabel(LabelWidget& label) : QAccessibleWidget(&label), label_(label) {}

    QAccessible::Role role() const override {
        return label_.IsFrame() ? QAccessible::Grouping : QAccessible::StaticText;
    }

  private:
    const LabelWidget& label_;
};

// The role of a widget, if its Qt type has none.
QAccessible::Role RoleOf(const QObject& object) {
    if (dynamic_cast<const FormWindow*>(&object)) return QAccessible::Dialog;
    if (dynamic_cast<const HelpWindow*>(&object)) return QAccessible::Dialog;
    if (dynamic_cast<const ImageWidget*>(&object)) return QAccessible::Graphic;
    // Days aren't widgets: the calendar's name says which one is chosen.
    if (dynamic_cast<const CalendarWidget*>(&object)) return QAccessible::Grouping;
    return QAccessible::NoRole;
}

// The control that a widget shows or belongs to; null for widgets of boxes.
ControlView* ViewAround(QWidget* widget) {
    while (widget && !dynamic_cast<ControlView*>(widget)) widget = widget->parentWidget();
    return dynamic_cast<ControlView*>(widget);
}

QAccessibleInterface* Make(const QString&, QObject* object) {
    if (object == qApp) return new SpokenProgram;
    if (auto* spin = dynamic_cast<SpinWidget*>(object)) return new SpokenSpin(*spin);
    if (auto* button = qobject_cast<QAbstractButton*>(object))
        if (ControlView* view = ViewAround(button)) return new SpokenButton(*button, *view);
    if (auto* label = dynamic_cast<LabelWidget*>(object)) return new SpokenLabel(*label);
    const QAccessible::Role role = RoleOf(*object);
    if (role == QAccessible::NoRole) return nullptr;
    return new QAccessibleWidget(static_cast<QWidget*>(object), role);
}

void AnnounceFocus(QWidget& widget) {
    QAccessibleEvent event(&widget, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

}  // namespace

void InstallAccessibility() {
    QAccessible::installFactory(Make);
}

void SayThatItPopsUp(QWidget& window) {
    AnnounceFocus(window);
    QObject::connect(&window, &QObject::destroyed, qApp, [] {
        if (QApplication::activePopupWidget()) return;  // opened by an item of the menu
        if (QWidget* focused = QApplication::focusWidget()) AnnounceFocus(*focused);
    });
}

}  // namespace platform::forms
