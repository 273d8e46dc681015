#include "platform/forms/Controls.h"

namespace platform::forms {

namespace {

template <auto Getter, auto Setter>
void AddNumber(std::vector<Member>& members, std::string_view name) {
    members.push_back(
        {name, InvokeKind::PropertyGet, {}, ValueType::Long, Bind<UpDown>([](UpDown& control, Arguments&) {
             return (control.*Getter)();
         })});
    members.push_back(
        {name,
         InvokeKind::PropertyPut,
         {{"Value", ValueType::Long}},
         ValueType::None,
         Bind<UpDown>([](UpDown& control, Arguments& a) { (control.*Setter)(a[0].ToLong()); })});
}

}  // namespace

const ClassDescription& UpDown::Class() const {
    static const ClassDescription description = [] {
        std::vector<Member> members = CommonMembers();
        AddNumber<&UpDown::Min, &UpDown::SetMin>(members, "Min");
        AddNumber<&UpDown::Max, &UpDown::SetMax>(members, "Max");
        AddNumber<&UpDown::Value, &UpDown::SetValue>(members, "Value");
        return ClassDescription{"UpDown", std::move(members)};
    }();
    return description;
}

void UpDown::SetMin(std::int32_t min) {
    min_ = min;
    if (value_ < min) Take(min);
}

void UpDown::SetMax(std::int32_t max) {
    max_ = max;
    if (value_ > max) Take(max);
}

void UpDown::SetValue(std::int32_t value) {
    if (value < min_ || value > max_) throw RuntimeError(ErrorNumber::InvalidPropertyValue, "Value");
    Take(value);
}

void UpDown::Take(std::int32_t value) {
    if (value == value_) return;
    value_ = value;
    if (Change) Change();
}

void UpDown::StepUp() {
    Take(value_ >= max_ ? min_() : value_ + 1);
    if (UpClick) UpClick();
}

void UpDown::StepDown() {
    Take(value_ <= min_ ? max_() : value_ - 1);
    if (DownClick) DownClick();
}

}  // namespace platform::forms
