#include "platform/forms/Controls.h"

#include <algorithm>

#include "platform/forms/Form.h"

namespace platform::forms {

namespace {

ClassDescription Described(std::string_view name, std::vector<Member> members,
                           void (*add)(std::vector<Member>&)) {
    add(members);
    return {name, std::move(members)};
}

}  // namespace

const ClassDescription& CommandButton::Class() const {
    static const ClassDescription description =
        Described("CommandButton", FontMembers(), [](std::vector<Member>& members) {
            AddProperty<&CommandButton::Caption>(members, "Caption");
            AddProperty<&CommandButton::Picture>(members, "Picture");
            AddProperty<&CommandButton::DisabledPicture>(members, "DisabledPicture");
        });
    return description;
}

const ClassDescription& TextBox::Class() const {
    static const ClassDescription description =
        Described("TextBox", FontMembers(), [](std::vector<Member>& members) {
            AddProperty<&TextBox::Text>(members, "Text");
            AddProperty<&TextBox::Locked>(members, "Locked");
        });
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
    static const ClassDescription description =
        Described("Label", FontMembers(), [](std::vector<Member>& members) {
            AddProperty<&Label::Caption>(members, "Caption");
            AddProperty<&Label::BackColor>(members, "BackColor");
            AddProperty<&Label::ForeColor>(members, "ForeColor");
        });
    return description;
}

const ClassDescription& CheckBox::Class() const {
    static const ClassDescription description =
        Described("CheckBox", FontMembers(), [](std::vector<Member>& members) {
            AddProperty<&CheckBox::Caption>(members, "Caption");
            AddProperty<&CheckBox::BackColor>(members, "BackColor");
            members.push_back({"Value",
                               InvokeKind::PropertyGet,
                               {},
                               ValueType::Integer,
                               Bind<CheckBox>([](CheckBox& box, Arguments&) { return box.Value(); })});
            members.push_back({"Value",
                               InvokeKind::PropertyPut,
                               {{"Value", ValueType::Integer}},
                               ValueType::None,
                               Bind<CheckBox>([](CheckBox& box, Arguments& arguments) {
                                   box.SetValue(arguments[0].ToInteger());
                               })});
        });
    return description;
}

void CheckBox::SetValue(std::int16_t value) {
    if (value != 0 && value != 1) throw RuntimeError(ErrorNumber::InvalidPropertyValue, "Value");
    if (value == value_()) return;
    value_ = value;
    if (Click) Click();
}

const ClassDescription& Timer::Class() const {
    static const ClassDescription description = Described("Timer", {}, [](std::vector<Member>& members) {
        AddProperty<&Timer::Interval>(members, "Interval");
        AddProperty<&Control::Enabled>(members, "Enabled");
    });
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
    static const ClassDescription description =
        Described("Image", CommonMembers(), [](std::vector<Member>& members) {
            AddProperty<&Image::Picture>(members, "Picture");
            AddProperty<&Image::Stretch>(members, "Stretch");
        });
    return description;
}

const ClassDescription& Menu::Class() const {
    static const ClassDescription description = Described("Menu", {}, [](std::vector<Member>& members) {
        AddProperty<&Menu::Caption>(members, "Caption");
        AddProperty<&Control::Visible>(members, "Visible");
        AddProperty<&Control::Enabled>(members, "Enabled");
    });
    return description;
}

}  // namespace platform::forms
