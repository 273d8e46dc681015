// What all controls of a form have in common.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/forms/Font.h"
#include "platform/forms/Picture.h"
#include "platform/forms/Property.h"
#include "platform/runtime/Object.h"

namespace platform::forms {

class Form;

// Colours are 0xRRGGBB.
using Color = std::int32_t;
inline constexpr Color windowText = 0x000000;

enum class MouseButton : std::int16_t { Left = 1, Right = 2, Middle = 4 };

// `Index` is the place in a control array, −1 for a control that isn't in one.
class Control : public Object, public Watched {
  public:
    Control(Form& form, Text name, std::int16_t index) : form_(form), name_(std::move(name)), index_(index) {}

    Form& Owner() const { return form_; }
    const Text& Name() const { return name_; }
    std::int16_t Index() const { return index_; }
    void Changed() override;

    void Place(float left, float top, float width, float height);

    Property<float> Left{*this}, Top{*this}, Width{*this}, Height{*this};  // twips
    Property<bool> Visible{*this, true};
    Property<bool> Enabled{*this, true};
    Property<Text> ToolTipText{*this};
    std::int16_t TabIndex = -1;  // −1 for none
    std::int32_t WhatsThisHelpID = 0;

    // Events. X and y are twips from the control's corner.
    std::function<void(MouseButton button)> MouseUp;
    std::function<void()> GotFocus, LostFocus;

  protected:
    static Slots CommonMembers();

  private:
    Form& form_;
    Text name_;
    std::int16_t index_;
};

// A control with a font.
class FontControl : public Control {
  public:
    FontControl(Form& form, Text name, std::int16_t index)
        : Control(form, std::move(name), index), Font(std::make_shared<forms::Font>(*this)) {}

    const std::shared_ptr<forms::Font> Font;
    void SetFontName(const Text& name) { Font->Name = name; }
    void SetFontSize(float points) { Font->SetSize(points); }

  protected:
    static Slots FontMembers();
};

}  // namespace platform::forms
