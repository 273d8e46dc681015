// A form: properties, controls, loading and unloading. Its view puts it on the screen.
#pragma once

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/forms/Controls.h"
#include "platform/runtime/EventLoop.h"

namespace platform::forms {

// The widgets of one form. Reads the model when notified, and turns input into the model's events, any of
// which may destroy the view.
class View {
  public:
    virtual ~View() = default;
    virtual void FormChanged() = 0;
    virtual void ControlChanged(Control& control) = 0;
    // Gives the window the focus, if it is shown.
    virtual void SetFocus() = 0;
    // Opens a menu beside the pointer. The chosen item raises its Click.
    virtual void PopupMenu(Menu& menu) = 0;
    // Shows the help topic of a control beside it.
    virtual void ShowWhatsThis(Control& control) = 0;
};

// Creates views. Without a screen they do nothing.
class Toolkit {
  public:
    virtual ~Toolkit() = default;
    virtual std::unique_ptr<View> MakeView(Form& form) = 0;
};

inline constexpr std::int16_t keyF1 = 112;

class Form : public Object, public Watched {
  public:
    Form(Text name, Scheduler& scheduler, Toolkit& toolkit);
    ~Form() override;
    const ClassDescription& Class() const override;

    const Text& Name() const { return name_; }
    Scheduler& Timers() const { return scheduler_; }
    void Changed() override;
    void ControlChanged(Control& control);

    Property<Text> Caption{*this};
    // Client area in twips.
    Property<float> Left{*this}, Top{*this}, Width{*this}, Height{*this};
    Property<bool> Enabled{*this, true};
    Property<Color> BackColor{*this, 0xC0C0C0};
    Property<PictureRef> Icon{*this};
    const std::shared_ptr<forms::Font> Font;

    // Adds a control; for a control array, with its index. Controls added later lie in front.
    template <class Type>
    Type& Add(Text name, std::int16_t index = -1) {
        auto control = std::make_shared<Type>(*this, std::move(name), index);
        Adopt(control);
        return *control;
    }
    // Adds a control that was made for this form.
    void Adopt(std::shared_ptr<Control> control);
    const std::vector<std::shared_ptr<Control>>& Controls() const { return controls_; }
    // The control with this name, in any case. Raises 730 for an unknown name, 340 for an unknown index.
    std::shared_ptr<Control> Item(TextView name, std::int16_t index = -1) const;

    // Events. Loading runs while the form loads, Unloading before it unloads; `cancel` keeps it loaded.
    std::function<void()> Loading;
    std::function<void(bool& cancel)> Unloading;
    std::function<void(std::int16_t keyCode)> KeyDown;  // for F1 alone, before the controls see it
    // Called after unloading, so that the process can end.
    std::function<void()> Unloaded;

    bool IsLoaded() const { return loaded_; }
    bool Visible() const { return visible_; }
    // False if the form refuses the operator's input.
    bool TakesInput() const { return visible_ && Enabled; }
    // True while an accepted close waits for a call to end.
    bool IsCloseWaiting() const { return !waitingClose_.expired(); }

    // Loads without showing. Does nothing if the form is loaded already.
    void Load();
    // Shows, loading first if needed. Raises 364 if the form unloaded itself while loading.
    void Show();
    void Hide();
    void SetVisible(bool visible) { visible ? Show() : Hide(); }
    // Unloads and closes the form, unless Unloading cancels that. Does nothing if it isn't loaded.
    void Unload();
    // In twips.
    void Move(float left, float top);
    void SetFocus();
    void Refresh();
    // Does nothing while the form isn't shown.
    void PopupMenu(Menu& menu);
    // Shows the topic of the control's WhatsThisHelpID in the application's help file.
    void ShowWhatsThis(Control& control);

    // Called by the view.
    void MovedByOperator(float left, float top);
    // Called by the view: a close waits as long as `mark` exists.
    void CloseWaits(std::weak_ptr<const void> mark) { waitingClose_ = std::move(mark); }

  private:
    Text name_;
    Scheduler& scheduler_;
    Toolkit& toolkit_;
    std::vector<std::shared_ptr<Control>> controls_;
    // By name in upper case, then by index.
    std::unordered_map<Text, std::unordered_map<std::int16_t, std::shared_ptr<Control>>> named_;
    std::unique_ptr<View> view_;
    std::weak_ptr<const void> waitingClose_;
    bool loaded_ = false;
    bool visible_ = false;
};

}  // namespace platform::forms
