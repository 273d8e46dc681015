#include "platform/desktop/qt/HeldInput.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

namespace platform {

namespace {

enum class Treatment { Pass, Keep, Drop };

Treatment TreatmentOf(QEvent::Type type) {
    switch (type) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::Close:
            return Treatment::Keep;
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::ContextMenu:
        case QEvent::ShortcutOverride:
        case QEvent::NativeGesture:
        case QEvent::TabletPress:
        case QEvent::TabletMove:
        case QEvent::TabletRelease:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TouchCancel:
            return Treatment::Drop;
        default:
            return Treatment::Pass;
    }
}

QWindow* ActiveModalWindow() {
    const QWidget* modal = QApplication::activeModalWidget();
    return modal ? modal->windowHandle() : nullptr;
}

bool BlockedByBox(const QWindow& window) {
    const QWindow* modal = ActiveModalWindow();
    return modal && modal != &window;
}

// Makes the event anew when it is delivered. A copy of a mouse event would not do: copies share their point
// with the device, which moves it along with all that comes after.
std::function<std::unique_ptr<QEvent>()> MakerOf(const QEvent& event) {
    if (const auto* mouse = dynamic_cast<const QMouseEvent*>(&event))
        return [type = mouse->type(), position = mouse->position(), scene = mouse->scenePosition(),
                global = mouse->globalPosition(), button = mouse->button(), buttons = mouse->buttons(),
                modifiers = mouse->modifiers()]() -> std::unique_ptr<QEvent> {
            return std::make_unique<QMouseEvent>(type, position, scene, global, button, buttons, modifiers);
        };
    return [copy = std::shared_ptr<const QEvent>(event.clone())] {
        return std::unique_ptr<QEvent>(copy->clone());
    };
}

}  // namespace

class HeldInput::Hold : public Handle {
  public:
    explicit Hold(HeldInput& input) : input_(&input) {}
    ~Hold() override {
        if (input_) input_->Close();
    }

  private:
    QPointer<HeldInput> input_;
};

HeldInput::~HeldInput() = default;

HandleRef HeldInput::Open() {
    // Installed while there is something to hold only: a filter on the application sees every event.
    if (holds_++ == 0 && kept_.empty()) qApp->installEventFilter(this);
    return std::make_unique<Hold>(*this);
}

void HeldInput::Close() {
    if (--holds_ > 0) return;
    if (kept_.empty())
        qApp->removeEventFilter(this);
    else
        DeliverLater();
}

bool HeldInput::eventFilter(QObject* watched, QEvent* event) {
    const Treatment treatment = TreatmentOf(event->type());
    if (treatment == Treatment::Pass || event == delivering_ || !watched->isWindowType()) return false;
    auto& window = static_cast<QWindow&>(*watched);
    if (&window == ActiveModalWindow()) return false;
    if (treatment == Treatment::Keep) Keep(window, *event);
    // A close that counts as accepted would take the window down; an accepted touch would give no click.
    event->ignore();
    return true;
}

void HeldInput::Keep(QWindow& window, const QEvent& event) {
    kept_.push_back({&window, MakerOf(event)});
}

void HeldInput::DeliverLater() {
    if (std::exchange(deliveryAhead_, true)) return;
    QMetaObject::invokeMethod(this, &HeldInput::DeliverNext, Qt::QueuedConnection);
}

void HeldInput::DeliverNext() {
    deliveryAhead_ = false;
    if (holds_ > 0 || kept_.empty()) return;
    const Kept next = std::move(kept_.front());
    kept_.pop_front();
    if (kept_.empty())
        qApp->removeEventFilter(this);
    else
        DeliverLater();
    // Input for a window that a box has covered since is lost, as it is when it comes while the box is open.
    if (!next.window || BlockedByBox(*next.window)) return;
    const std::unique_ptr<QEvent> event = next.makeEvent();
    delivering_ = event.get();
    QCoreApplication::sendEvent(next.window, event.get());
    delivering_ = nullptr;
}

}  // namespace platform
