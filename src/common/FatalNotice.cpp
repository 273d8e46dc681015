#include "common/FatalNotice.h"

#include "platform/desktop/Desktop.h"

namespace horalink {

namespace {

using platform::DecimalText;
using platform::Text;

void Show(platform::MessageBoxes& boxes, Text prompt) {
    boxes.Show({std::move(prompt), platform::buttons::critical, Text(noticeTitle), {}, 0});
}

}  // namespace

void ShowShortNotice(platform::MessageBoxes& boxes, const platform::RuntimeError& error) {
    Show(boxes, error.Description() + u" [" + DecimalText(error.Number()) + u"]");
}

void ShowLongNotice(platform::MessageBoxes& boxes, const platform::RuntimeError& error) {
    Show(boxes, u"Error No: [" + DecimalText(error.Number()) + u"]\r    " + error.Description());
}

}  // namespace horalink
