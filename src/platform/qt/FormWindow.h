// The window of a form.
#pragma once

#include <QPointer>
#include <QWidget>
#include <map>
#include <memory>
#include <optional>

#include "platform/forms/Form.h"
#include "platform/forms/FormInput.h"
#include "platform/forms/InputGate.h"
#include "platform/qt/QtHelp.h"

class QKeyEvent;

namespace platform::forms {

class ControlView;

// A dialog of fixed size. It judges input before any widget sees it, so that refused input changes neither
// the look of a control nor the focus. Events that had to wait are recreated for delivery.
class FormWindow : public QWidget, public std::enable_shared_from_this<FormWindow> {
  public:
    FormWindow(Form& form, const QtHelp& help, InputGate& gate);
    // Lets the widgets keep the window alive during an event. Call it after construction.
    void ShareLife();

    void Sync();
    void SyncControl(Control& control);
    void TakeFocus();
    // Opens a menu beside the pointer, or below the focused control if a key asked for it. Returns at once.
    void PopUp(const Menu& menu);
    void ShowTopic(const Control& control);
    // Hides the window, and forgets the form, which has been unloaded.
    void Detach();

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;

  private:
    void MakeControls(bool withWindow);
    void SetTabOrder();
    void SyncPlace();
    void SyncVisible();
    void LetGo();
    bool IsCovered() const;
    bool Withholds(QEvent& event);
    Verdict VerdictOn(const QEvent& event);
    const Control* TargetOf(const QEvent& press) const;
    void Deliver(QEvent& event);
    void KeyPressed(const QKeyEvent& event);
    void AskForMenu();
    void FocusMoved(QWidget* now);
    void ClosePopUps();

    Form* form_;
    const QtHelp& help_;
    std::unique_ptr<FormInput> input_;
    const QEvent* delivering_ = nullptr;
    bool takesInput_ = true;
    std::optional<QPoint> place_;  // on the desktop, as last set or moved by the operator
    std::map<const Control*, ControlView*> views_;
    QPointer<QWidget> focused_;  // the control that has the focus for the model
    bool menuIsKeyed_ = false;   // a menu key is being handled
    PictureRef icon_;
    Text caption_;
};

class QtToolkit : public Toolkit {
  public:
    QtToolkit(const QtHelp& help, InputGate& gate);
    std::unique_ptr<View> MakeView(Form& form) override;

  private:
    const QtHelp& help_;
    InputGate& gate_;
};

}  // namespace platform::forms
