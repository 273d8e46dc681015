#include "platform/forms/Controls.h"
#include "platform/runtime/MemberTable.h"

namespace platform::forms {

const ClassDescription& UpDown::Class() const {
    static const ClassDescription description{"UpDown", CommonMembers()};
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
