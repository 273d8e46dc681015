#include "platform/forms/Controls.h"

#include <algorithm>

#include "platform/forms/Form.h"
#include "platform/runtime/MemberTable.h"

namespace platform::forms {

const ClassDescription& CommandButton::Class() const {
    static const ClassDescription description{
        "CommandButton", Slots{FontMembers(), ReadWrite<&CommandButton::Caption>("Caption"),
                               ReadWrite<&CommandButton::Picture>("Picture")}};
    return description;
}

const ClassDescription& TextBox::Class() const {
    static const ClassDescription description{"TextBox", FontMembers()};
    return description;
}

void TextBox::SetSelStart(std::int32_t start) {
    if (start < 0) throw RuntimeError(ErrorNumber::InvalidPropertyValue, "SelStart");
    selStart_ = std::min(start, static_cast<std::int32_t>(Text().size()));
    selLength_ = 0;
}

void TextBox::SetSelLength(std::int32_t length) {
    if (length < 0) throw RuntimeError(ErrorNumber::InvalidPropertyValue, "SelLength");
    selLength_ = std::min(length, static_cast<std::int32_t>(Text().size()) - selStart_);
}

const ClassDescription& Label::Class() const {
    static const ClassDescription description{"Label",
                                              Slots{FontMembers(), ReadWrite<&Label::Caption>("Caption")}};
    return description;
}

const ClassDescription& CheckBox::Class() const {
    static const ClassDescription description{"CheckBox",
                                              Slots{FontMembers(), ReadWrite<&CheckBox::Caption>("Caption")}};
    return description;
}

void CheckBox::SetValue(std::int16_t value) {
    if (value != 0 && value != 1) throw RuntimeError(ErrorNumber::InvalidPropertyValue, "Value");
    if (value == value_()) return;
    value_ = value;
    if (Click) Click();
}

const ClassDescription& Timer::Class() const {
    static const ClassDescription description{"Timer", {}};
    return description;
}

void Timer::Arm() {
    running_.reset();
    if (!Enabled || Interval <= 0 || !Owner().IsLoaded()) return;
    running_ = Owner().Timers().Every(Milliseconds(Interval()), [this] {
        if (Tick) Tick();
    });
}

const ClassDescription& Image::Class() const {
    static const ClassDescription description{"Image",
                                              Slots{CommonMembers(), ReadWrite<&Image::Picture>("Picture")}};
    return description;
}

const ClassDescription& Menu::Class() const {
    static const ClassDescription description{
        "Menu", Slots{ReadWrite<&Menu::Caption>("Caption"), ReadWrite<&Menu::Visible>("Visible")}};
    return description;
}

}  // namespace platform::forms
