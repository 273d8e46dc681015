#include "clock/TimeField.h"

#include "platform/runtime/Format.h"
#include "platform/runtime/Value.h"

namespace horalink {

using platform::Text;

namespace {

constexpr std::int16_t hours = 0, lastOfNumbers = 2, halfOfDay = 3;
constexpr std::int32_t sectionLength = 2;

void SetRange(platform::forms::UpDown& spin, std::int16_t section) {
    spin.SetMin(section == hours ? 1 : 0);
    spin.SetMax(section == hours ? 12 : 59);
}

}  // namespace

void TimeField::txtTime_GotFocus(std::int16_t index) {
    if (controls_.chkTrack->Value() != 0) return;
    CurrentSection = index;
    // The new range can move the spin control's value, and with it the text of this very box.
    const Text saved = controls_.txtTime[static_cast<std::size_t>(index)]->Text;
    if (index <= lastOfNumbers) {
        SetRange(*controls_.updTime, index);
        controls_.updTime->SetValue(platform::Value(saved).ToLong());
    }
    SelectSection();
}

void TimeField::updTime_Change() {
    if (CurrentSection < 0 || CurrentSection > lastOfNumbers) return;
    controls_.txtTime[static_cast<std::size_t>(CurrentSection)]->Text =
        platform::TwoDigits(controls_.updTime->Value());
}

void TimeField::updTime_Click() {
    if (CurrentSection == halfOfDay) {
        auto& half = controls_.txtTime[halfOfDay]->Text;
        half = half() == u"PM" ? u"AM" : u"PM";
    }
    if (CurrentSection > -1) SelectSection();
}

void TimeField::SelectSection() {
    platform::forms::TextBox& box = *controls_.txtTime[static_cast<std::size_t>(CurrentSection)];
    box.SetSelStart(0);
    box.SetSelLength(sectionLength);
}

}  // namespace horalink
