// The control types.
#pragma once

#include "platform/forms/Control.h"
#include "platform/runtime/EventLoop.h"

namespace platform::forms {

enum class Alignment : std::int16_t { Left = 0, Right = 1, Center = 2 };

class CommandButton : public FontControl {
  public:
    using FontControl::FontControl;
    const ClassDescription& Class() const override;

    Property<Text> Caption{*this};
    Property<PictureRef> Picture{*this}, DisabledPicture{*this};

    std::function<void()> Click;
};

class UpDown;

class TextBox : public FontControl {
  public:
    using FontControl::FontControl;
    const ClassDescription& Class() const override;

    Property<platform::Text> Text{*this};
    Property<bool> Locked{*this};
    Property<bool> Border{*this, true};
    Property<Alignment> Align{*this, Alignment::Left};
    // The spin control that the Up and Down keys and the mouse wheel step while this box has the focus.
    UpDown* Spin = nullptr;
    // The selection in characters from 0, limited to the text.
    std::int32_t SelStart() const { return selStart_; }
    std::int32_t SelLength() const { return selLength_; }
    void SetSelStart(std::int32_t start);  // empties the selection
    void SetSelLength(std::int32_t length);

  private:
    Property<std::int32_t> selStart_{*this}, selLength_{*this};
};

class Label : public FontControl {
  public:
    using FontControl::FontControl;
    const ClassDescription& Class() const override;

    Property<Text> Caption{*this};
    Property<bool> Border{*this};
    Property<bool> Opaque{*this, true};
    Property<Alignment> Align{*this, Alignment::Left};
    Property<Color> BackColor{*this, 0xC0C0C0};
    Property<Color> ForeColor{*this, windowText};
};

class CheckBox : public FontControl {
  public:
    using FontControl::FontControl;
    const ClassDescription& Class() const override;

    Property<Text> Caption{*this};
    Property<Color> BackColor{*this, 0xC0C0C0};
    // The label beside the box that shows its text, if the box has no room for a caption.
    const Label* TextLabel = nullptr;

    std::int16_t Value() const { return value_; }
    // 1 for on, 0 for off. A change raises Click, even if the program makes it.
    void SetValue(std::int16_t value);

    std::function<void()> Click;

  private:
    Property<std::int16_t> value_{*this};
};

// The spin control: a value in a range, stepped by two arrows. It wraps around at both ends of the range.
// Clicking an arrow doesn't move the focus.
class UpDown : public Control {
  public:
    using Control::Control;
    const ClassDescription& Class() const override;

    std::int32_t Min() const { return min_; }
    std::int32_t Max() const { return max_; }
    std::int32_t Value() const { return value_; }
    // A value outside the new range becomes the new bound.
    void SetMin(std::int32_t min);
    void SetMax(std::int32_t max);
    // Raises 380 outside the range.
    void SetValue(std::int32_t value);

    // The operator's steps. They raise the click even if the value can't change.
    void StepUp();
    void StepDown();

    std::function<void()> Change, UpClick, DownClick;

  private:
    void Take(std::int32_t value);

    Property<std::int32_t> min_{*this}, max_{*this, 100}, value_{*this};
};

// A month with one chosen day, or none.
class Calendar : public Control {
  public:
    Calendar(Form& form, Text name, std::int16_t index);
    const ClassDescription& Class() const override;

    // The program sets the parts one by one, if need be through a date that doesn't exist; the day is kept.
    // A change of month or year raises its event.
    std::int16_t Day() const { return day_; }  // 0 if no day is chosen
    std::int16_t Month() const { return month_; }
    std::int16_t Year() const { return year_; }
    void SetDay(std::int16_t day);
    void SetMonth(std::int16_t month);
    void SetYear(std::int16_t year);

    // Raises 13 if no day is chosen, or the month doesn't have it.
    Date CalendarValue() const;

    // Called for the operator: choose a date, or turn to another month, in which no day is chosen yet.
    // BeforeUpdate can refuse both.
    void ChooseDate(const DateParts& date);
    void TurnTo(std::int16_t year, std::int16_t month);

    // 1 shows the selectors of month and year and marks the day under the mouse, 2 does neither.
    Property<std::int16_t> showdateselectors{*this, 1};
    // 1 puts the month before the year, 2 the year before the month.
    Property<std::int16_t> MarketStyle{*this, 1};
    // 2 draws the days as cells of a grid.
    Property<std::int32_t> gridcelleffect{*this, 2};
    // Marks today.
    Property<bool> ShowOption{*this};
    // Fonts of the weekday names, the days and the title.
    const std::shared_ptr<Font> dayfont, gridfont, titlefont;

    std::function<void(bool& cancel)> BeforeUpdate;
    std::function<void()> AfterUpdate, NewYear, NewMonth;

  private:
    bool IsRefused();
    void Show(std::int16_t year, std::int16_t month, std::int16_t day);

    Property<std::int16_t> day_{*this, 8}, month_{*this, 10}, year_{*this, 2003};
};

// Raises Tick after each interval, while it is enabled and its form is loaded.
class Timer : public Control {
  public:
    using Control::Control;
    const ClassDescription& Class() const override;
    void Changed() override { Arm(); }

    Property<std::int32_t> Interval{*this};  // milliseconds

    std::function<void()> Tick;

    // Restarts, or stops if it is disabled, has no interval, or its form isn't loaded.
    void Arm();

  private:
    HandleRef running_;
};

class Image : public Control {
  public:
    using Control::Control;
    const ClassDescription& Class() const override;

    Property<PictureRef> Picture{*this};
    Property<bool> Stretch{*this};
};

// An item of a menu, or the invisible parent of a pop-up.
class Menu : public Control {
  public:
    using Control::Control;
    const ClassDescription& Class() const override;

    Property<Text> Caption{*this};
    std::vector<Menu*> Items;

    std::function<void()> Click;
};

}  // namespace platform::forms
