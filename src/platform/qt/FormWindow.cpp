#include "platform/qt/FormWindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QKeyEvent>
#include <QMenu>
#include <QScopedValueRollback>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <vector>

#include "platform/qt/Accessibility.h"
#include "platform/qt/ControlView.h"
#include "platform/qt/Drawing.h"
#include "platform/qt/InputEvents.h"
#include "platform/qt/Look.h"
#include "platform/qt/QtText.h"

namespace platform::forms {

namespace {

ControlView* ViewOf(QObject* widget) {
    return dynamic_cast<ControlView*>(widget);
}

bool IsMenuKey(const QKeyEvent& event) {
    if (event.key() == Qt::Key_Menu) return event.modifiers() == Qt::NoModifier;
    return event.key() == Qt::Key_F10 && event.modifiers() == Qt::ShiftModifier;
}

// In the text of an item, Qt takes "&" as the mark of an access key, and text after a tab as a shortcut.
QString AsItem(QString caption) {
    return caption.replace(u'&', QStringLiteral("&&")).replace(u'\t', u' ');
}

QRect PrimaryScreen() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->geometry() : QRect();
}

// The widget of the control that a widget is or belongs to.
QWidget* ControlWidgetOf(QWidget* widget) {
    while (widget && !ViewOf(widget)) widget = widget->parentWidget();
    return widget;
}

}  // namespace

FormWindow::FormWindow(Form& form, const QtHelp& help, InputGate& gate)
    : form_(&form),
      help_(help),
      input_(std::make_unique<FormInput>(form, gate, [this] { return IsCovered(); })) {
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowCloseButtonHint | Qt::MSWindowsFixedSizeDialogHint);
    setObjectName(platform::ToQt(form.Name()));
    MakeControls(false);
    MakeControls(true);
    SetTabOrder();
    winId();  // the filter below needs the native window
    windowHandle()->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { FocusMoved(now); });
}

// Qt stacks siblings in the order in which they are made.
void FormWindow::MakeControls(bool withWindow) {
    for (const auto& control : form_->Controls()) {
        if (HasWindow(*control) != withWindow) continue;
        ControlView* view = MakeControlView(*control, *this);
        if (!view) continue;
        views_[control.get()] = view;
        view->Widget().setObjectName(platform::ToQt(control->Name()));
        view->Widget().installEventFilter(this);
        view->TakeInputBy(*input_);
        view->Sync();
    }
}

void FormWindow::SetTabOrder() {
    std::vector<ControlView*> order;
    for (const auto& [control, view] : views_)
        if (control->TabIndex >= 0 && view->Widget().focusPolicy() != Qt::NoFocus) order.push_back(view);
    std::sort(order.begin(), order.end(), [](const ControlView* left, const ControlView* right) {
        return left->Model()->TabIndex < right->Model()->TabIndex;
    });
    QWidget* before = nullptr;
    for (ControlView* view : order) {
        if (before) QWidget::setTabOrder(before, &view->Widget());
        before = &view->Widget();
    }
}

void FormWindow::ShareLife() {
    for (const auto& [control, view] : views_) view->ShareLife(weak_from_this());
}

void FormWindow::Sync() {
    if (caption_ != form_->Caption()) {
        caption_ = form_->Caption;
        // Qt removes "[*]" from a title, unless it is doubled.
        setWindowTitle(platform::ToShow(caption_).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")));
    }
    if (icon_ != form_->Icon()) {
        icon_ = form_->Icon;
        setWindowIcon(WindowIcon(icon_));
    }
    setFont(ToQt(*form_->Font));
    if (QPalette colors = palette(); colors.color(QPalette::Window) != ToQt(form_->BackColor())) {
        colors.setColor(QPalette::Window, ToQt(form_->BackColor()));
        setPalette(colors);
    }
    if (std::exchange(takesInput_, form_->Enabled()) && !takesInput_) LetGo();
    SyncPlace();
    SyncVisible();  // last: it moves the focus, whose events may destroy the form
}

// A form that refuses input must not keep a button pressed: a later release would click it.
void FormWindow::LetGo() {
    QEvent blocked(QEvent::WindowBlocked);
    for (QWidget* widget : findChildren<QWidget*>()) {
        if (auto* button = qobject_cast<QAbstractButton*>(widget)) button->setDown(false);
        if (!widget->isWindow()) QCoreApplication::sendEvent(widget, &blocked);
    }
}

// Places the client area: before a window is first shown, the size of its frame is unknown, so placing the
// frame would reopen the window beside its old place. Sets the first place even if the window is there by
// chance, or the window manager would choose another.
void FormWindow::SyncPlace() {
    setFixedSize(ToPixels(form_->Width), ToPixels(form_->Height));
    const QPoint wanted = ToDesktop(form_->Left, form_->Top, PrimaryScreen());
    if (std::exchange(place_, wanted) == wanted) return;
    setGeometry({wanted, size()});
}

void FormWindow::SyncVisible() {
    if (isVisible() == form_->Visible()) return;
    setVisible(form_->Visible());
    if (!isVisible()) ClosePopUps();
    if (isVisible()) TakeFocus();
}

void FormWindow::SyncControl(Control& control) {
    if (const auto found = views_.find(&control); found != views_.end()) found->second->Sync();
}

void FormWindow::TakeFocus() {
    raise();
    activateWindow();
}

// Not QMenu::exec, which would wait here: the host's calls and the clock must go on while the menu is open.
void FormWindow::PopUp(const Menu& menu) {
    ClosePopUps();
    auto* shown = new QMenu(this);
    shown->setAttribute(Qt::WA_DeleteOnClose);
    for (const Menu* item : menu.Items) {
        if (item->Caption().empty() || !item->Visible) continue;
        QAction* action = shown->addAction(AsItem(platform::ToShow(item->Caption())));
        action->setEnabled(item->Enabled);
        connect(action, &QAction::triggered, this, [this, item] {
            const auto alive = weak_from_this().lock();
            if (input_) input_->Act(*item, [item] { Raise(item->Click); });
        });
    }
    shown->popup(menuIsKeyed_ ? focused_->mapToGlobal(QPoint(0, focused_->height())) : QCursor::pos());
    SayThatItPopsUp(*shown);
    if (menuIsKeyed_ && !shown->isEmpty()) shown->setActiveAction(shown->actions().front());
}

void FormWindow::ShowTopic(const Control& control) {
    const auto found = views_.find(&control);
    if (found != views_.end()) help_.Show(found->second->Widget(), control.WhatsThisHelpID);
}

void FormWindow::ClosePopUps() {
    for (QWidget* child : findChildren<QWidget*>())
        if (child->windowType() == Qt::Popup) child->close();
}

void FormWindow::Detach() {
    form_ = nullptr;
    input_.reset();
    ClosePopUps();
    for (const auto& [control, view] : views_) view->Detach();
    views_.clear();
    hide();
}

// An event of the model may close the form; the rest of the input that raised it is then dropped.
bool FormWindow::eventFilter(QObject* watched, QEvent* event) {
    if (!form_) return false;
    const auto alive = weak_from_this().lock();
    if (watched == windowHandle()) {
        if (Withholds(*event)) return true;
        if (event->type() == QEvent::KeyPress && !QApplication::activePopupWidget())
            KeyPressed(static_cast<const QKeyEvent&>(*event));
    } else if (event->type() == QEvent::MouseButtonRelease) {
        if (ControlView* view = ViewOf(watched)) view->MouseReleased(static_cast<const QMouseEvent&>(*event));
    }
    return !form_;
}

bool FormWindow::IsCovered() const {
    const QWidget* modal = QApplication::activeModalWidget();
    return modal && modal != this;
}

bool FormWindow::Withholds(QEvent& event) {
    if (&event == delivering_ || VerdictOn(event) == Verdict::Accepted) return false;
    event.ignore();  // an accepted touch would never become a click
    return true;
}

// Keys for a pop-up also pass through this window, and aren't its input.
Verdict FormWindow::VerdictOn(const QEvent& event) {
    const InputKind kind = KindOf(event);
    if (kind == InputKind::None || QApplication::activePopupWidget()) return Verdict::Accepted;
    if (kind == InputKind::Fleeting) return input_->TakesNow() ? Verdict::Accepted : Verdict::Refused;
    const auto later = [this, make = MakerOf(event)] { Deliver(*make()); };
    switch (kind) {
        case InputKind::Press:
            return input_->Press(StrokeOf(event), later, TargetOf(event));
        case InputKind::Repeat:
            return input_->Repeat(StrokeOf(event), later);
        case InputKind::Release:
            return input_->Release(StrokeOf(event), later);
        default:
            return input_->Admit(later);
    }
}

// The control under the mouse.
const Control* FormWindow::TargetOf(const QEvent& press) const {
    const auto* mouse = dynamic_cast<const QMouseEvent*>(&press);
    ControlView* view = mouse ? ViewOf(ControlWidgetOf(childAt(mouse->position().toPoint()))) : nullptr;
    return view ? view->Model() : nullptr;
}

// Delivers an event that waited at the gate. It can't wait in Qt's queue
// (QEventLoop::ExcludeUserInputEvents): while excluded events are queued, a loop that waits for more returns
// at once, again and again.
void FormWindow::Deliver(QEvent& event) {
    const auto alive = weak_from_this().lock();
    const QScopedValueRollback<const QEvent*> mark(delivering_, &event);
    QCoreApplication::sendEvent(windowHandle(), &event);
}

void FormWindow::KeyPressed(const QKeyEvent& event) {
    if (event.key() == Qt::Key_F1) Raise(form_->KeyDown, keyF1);
    if (form_ && IsMenuKey(event)) AskForMenu();
}

// The desktop's menu keys act as a right click on the control with the focus.
void FormWindow::AskForMenu() {
    ControlView* view = ViewOf(focused_);
    if (!view) return;
    const QScopedValueRollback keyed(menuIsKeyed_, true);
    const QPointF middle = view->Widget().rect().center();
    view->MouseReleased({QEvent::MouseButtonRelease, middle, view->Widget().mapToGlobal(middle),
                         Qt::RightButton, Qt::NoButton, Qt::NoModifier});
}

// When another window or box comes in front, Qt's focus changes but the form's doesn't: its control keeps the
// focus until the operator returns, and gets no events.
void FormWindow::FocusMoved(QWidget* now) {
    if (!form_ || (now && now->window() != this) || (!now && !isActiveWindow())) return;
    QWidget* next = ControlWidgetOf(now);
    if (next == focused_) return;
    ControlView* left = ViewOf(focused_);
    ControlView* entered = ViewOf(next);
    focused_ = next;
    const auto alive = weak_from_this().lock();
    if (left && left->Model()) Raise(left->Model()->LostFocus);
    if (focused_ == next && entered && entered->Model()) Raise(entered->Model()->GotFocus);
}

void FormWindow::closeEvent(QCloseEvent* event) {
    const auto alive = weak_from_this().lock();
    event->ignore();  // the form decides, and closes the window itself
    if (input_) input_->Close();
}

// Compares whole pixels, since the model's place may include parts of one.
void FormWindow::moveEvent(QMoveEvent*) {
    if (!form_ || !isVisible()) return;
    const QPoint moved = geometry().topLeft();
    if (std::exchange(place_, moved) == moved) return;
    const QPoint seen = moved - PrimaryScreen().topLeft();
    Guard([&] { form_->MovedByOperator(ToTwips(seen.x()), ToTwips(seen.y())); });
}

namespace {

class QtView : public View {
  public:
    QtView(Form& form, const QtHelp& help, InputGate& gate)
        : window_(new FormWindow(form, help, gate), [](FormWindow* window) { window->deleteLater(); }) {
        window_->ShareLife();
    }
    ~QtView() override { window_->Detach(); }
    void FormChanged() override { window_->Sync(); }
    void ControlChanged(Control& control) override { window_->SyncControl(control); }
    void SetFocus() override { window_->TakeFocus(); }
    void PopupMenu(Menu& menu) override { window_->PopUp(menu); }
    void ShowWhatsThis(Control& control) override { window_->ShowTopic(control); }

  private:
    // Events share the window, so one that destroys the view keeps it until the event ends, even across a
    // nested loop. deleteLater keeps it until control is back in Qt's loop, since Qt is delivering the event.
    std::shared_ptr<FormWindow> window_;
};

}  // namespace

QtToolkit::QtToolkit(const QtHelp& help, InputGate& gate) : help_(help), gate_(gate) {
    InstallAccessibility();
}

std::unique_ptr<View> QtToolkit::MakeView(Form& form) {
    return std::make_unique<QtView>(form, help_, gate_);
}

}  // namespace platform::forms
