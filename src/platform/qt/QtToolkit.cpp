#include "platform/qt/QtToolkit.h"

#include "platform/qt/Accessibility.h"
#include "platform/qt/FormWindow.h"

namespace platform::forms {

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
    // An event that takes the view away keeps the window until it is over, also where it waits in a loop of
    // its own meanwhile; and Qt, which delivers the event, until its own loop has the word again.
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
