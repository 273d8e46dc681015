#include "platform/forms/Form.h"
#include "platform/runtime/MemberTable.h"

namespace platform::forms {

namespace {

constexpr std::int32_t noSuchArrayElement = 340, noSuchControl = 730;

void ArmTimers(const std::vector<std::shared_ptr<Control>>& controls) {
    for (const auto& control : controls)
        if (auto* timer = dynamic_cast<Timer*>(control.get())) timer->Arm();
}

}  // namespace

Form::Form(Text name, Scheduler& scheduler, Toolkit& toolkit)
    : Font(std::make_shared<forms::Font>(*this)),
      name_(std::move(name)),
      scheduler_(scheduler),
      toolkit_(toolkit) {}

Form::~Form() = default;

const ClassDescription& Form::Class() const {
    static const ClassDescription description{
        "Form", Slots{ReadWrite<&Form::Caption>("Caption"), Read<&Form::Width>("Width"),
                      Read<&Form::Height>("Height"), Read<&Form::Font>("Font")}};
    return description;
}

void Form::Changed() {
    if (view_) view_->FormChanged();
}

void Form::ControlChanged(Control& control) {
    if (view_) view_->ControlChanged(control);
}

void Form::Adopt(std::shared_ptr<Control> control) {
    named_[UpperCase(control->Name())].emplace(control->Index(), control);
    controls_.push_back(std::move(control));
}

std::shared_ptr<Control> Form::Item(TextView name, std::int16_t index) const {
    const auto array = named_.find(UpperCase(name));
    if (array == named_.end()) throw RuntimeError(noSuchControl, u"Control '" + Text(name) + u"' not found");
    const auto control = array->second.find(index);
    if (control == array->second.end())
        throw RuntimeError(noSuchArrayElement, u"Control array element '" + Text(name) + u"(" +
                                                   DecimalText(index) + u")' doesn't exist");
    return control->second;
}

void Form::Load() {
    if (loaded_) return;
    loaded_ = true;
    ArmTimers(controls_);
    if (Loading) Loading();
}

void Form::Show() {
    Load();
    if (!loaded_) throw RuntimeError(ErrorNumber::ObjectUnloaded, ToUtf8(name_));
    if (visible_) return;
    visible_ = true;
    if (!view_) view_ = toolkit_.MakeView(*this);
    view_->FormChanged();
}

void Form::Hide() {
    if (!visible_) return;
    visible_ = false;
    Changed();
}

void Form::Unload() {
    if (!loaded_) return;
    bool cancel = false;
    if (Unloading) Unloading(cancel);
    if (cancel || !loaded_) return;
    loaded_ = false;
    visible_ = false;
    waitingClose_.reset();
    ArmTimers(controls_);
    view_.reset();
    if (Unloaded) Unloaded();
}

void Form::Move(float left, float top) {
    Left = left;
    Top = top;
}

void Form::SetFocus() {
    if (view_ && visible_) view_->SetFocus();
}

void Form::PopupMenu(Menu& menu) {
    if (view_ && visible_) view_->PopupMenu(menu);
}

void Form::ShowWhatsThis(Control& control) {
    if (view_ && visible_) view_->ShowWhatsThis(control);
}

void Form::Refresh() {
    Changed();
}

void Form::MovedByOperator(float left, float top) {
    Left.Follow(left);
    Top.Follow(top);
}

}  // namespace platform::forms
