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

// A dialog of fixed size. Input is judged at the window, before any widget sees it, so that the controls of a
// form that refuses it keep their look and the focus its place. What waits is made anew when its turn comes.
class FormWindow : public QWidget, public std::enable_shared_from_this<FormWindow> {
  public:
    FormWindow(Form& form, const QtHelp& help, InputGate& gate);
    // Lets the widgets keep the window for the length of an event. For after the construction.
    void ShareLife();

    void Sync();
    void SyncControl(Control& control);
    void TakeFocus();
    // Offers the items of a menu beside the pointer, or beside the control whose keys asked for it, and
    // returns at once.
    void PopUp(const Menu& menu);
    void ShowTopic(const Control& control);
    // The form is gone: hides, and reaches for it no more.
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
    std::optional<QPoint> place_;  // on the desktop, as asked for last or moved to by the operator
    std::map<const Control*, ControlView*> views_;
    QPointer<QWidget> focused_;  // the control that the model knows as the one with the focus
    bool menuIsKeyed_ = false;   // a key asks for a menu just now
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
