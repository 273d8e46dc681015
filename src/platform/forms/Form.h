// A form: its properties, its controls and its life. The screen is a view's matter.
#pragma once

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/forms/Controls.h"
#include "platform/runtime/EventLoop.h"

namespace platform::forms {

// The widgets of one form. It reads the model when told to, and turns input into the model's events. It
// may be dropped from inside an event that it raised.
class View {
  public:
    virtual ~View() = default;
    virtual void FormChanged() = 0;
    virtual void ControlChanged(Control& control) = 0;
    // Gives the window the focus, where it is shown; without effect where it isn't.
    virtual void SetFocus() = 0;
    // Offers the items of a menu beside the pointer; the one that is chosen raises its Click.
    virtual void PopupMenu(Menu& menu) = 0;
    // Shows the help topic of a control beside it.
    virtual void ShowWhatsThis(Control& control) = 0;
};

// Makes views. A toolkit without a screen gives views that do nothing.
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
    // The control of a name, compared without regard to case. Raises 340 or 730 as the forms runtime does.
    std::shared_ptr<Control> Item(TextView name, std::int16_t index = -1) const;

    // Events. Load runs when the form is loaded, Unloading before it goes; True in `cancel` keeps it.
    std::function<void()> Loading;
    std::function<void(bool& cancel)> Unloading;
    std::function<void(std::int16_t keyCode)> KeyDown;  // for F1 alone, before the controls see it
    // For the owner of the process: the form has gone.
    std::function<void()> Unloaded;

    bool IsLoaded() const { return loaded_; }
    bool Visible() const { return visible_; }
    // False where the operator's input is refused.
    bool TakesInput() const { return visible_ && Enabled; }
    // True while a close that the form has accepted waits for a call to be over.
    bool IsCloseWaiting() const { return !waitingClose_.expired(); }

    // Loads without showing. A form that is loaded already is not loaded again.
    void Load();
    // Shows, loading first where needed. Raises 364 where the form unloaded itself while loading.
    void Show();
    void Hide();
    void SetVisible(bool visible) { visible ? Show() : Hide(); }
    // Takes the form away unless Unloading refuses. One that isn't loaded stays as it is.
    void Unload();
    // Positions in twips.
    void Move(float left, float top);
    void SetFocus();
    void Refresh();
    // Without effect while the form isn't shown.
    void PopupMenu(Menu& menu);
    // Shows the topic of the control's WhatsThisHelpID in the application's help file.
    void ShowWhatsThis(Control& control);

    // What the view tells of the window.
    void MovedByOperator(float left, float top);
    // A close waits for as long as `mark` is there.
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
