#include "language/MsgBoxButtons.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "language/TextTokens.h"
#include "platform/desktop/MessageBoxButtons.h"
#include "platform/runtime/RuntimeError.h"

namespace horalink {

namespace {

namespace buttons = platform::buttons;
using platform::TextView;

struct Constant {
    TextView name;
    std::int32_t value;
};

constexpr Constant constants[] = {
    {u"vbOKOnly", buttons::okOnly},
    {u"vbOKCancel", buttons::okCancel},
    {u"vbAbortRetryIgnore", buttons::abortRetryIgnore},
    {u"vbYesNoCancel", buttons::yesNoCancel},
    {u"vbYesNo", buttons::yesNo},
    {u"vbRetryCancel", buttons::retryCancel},
    {u"vbCritical", buttons::critical},
    {u"vbQuestion", buttons::question},
    {u"vbExclamation", buttons::exclamation},
    {u"vbInformation", buttons::information},
    {u"vbDefaultButton1", buttons::defaultButton1},
    {u"vbDefaultButton2", buttons::defaultButton2},
    {u"vbDefaultButton3", buttons::defaultButton3},
    {u"vbDefaultButton4", buttons::defaultButton4},
    {u"vbApplicationModal", buttons::applicationModal},
    {u"vbSystemModal", buttons::systemModal},
    {u"vbMsgBoxHelpButton", buttons::helpButton},
    {u"vbMsgBoxSetForeground", buttons::setForeground},
    {u"vbMsgBoxRight", buttons::right},
    {u"vbMsgBoxRtlReading", buttons::rightToLeft},
};

const Constant* Find(TextView name) {
    return std::find_if(std::begin(constants), std::end(constants),
                        [&](const Constant& constant) { return constant.name == name; });
}

}  // namespace

bool IsMsgBoxConstant(TextView name) {
    return Find(name) != std::end(constants);
}

std::int32_t MsgBoxConstantValue(TextView name) {
    const Constant* constant = Find(name);
    return constant == std::end(constants) ? 0 : constant->value;
}

std::int32_t ParseMsgBoxButtons(TextView text) {
    std::int32_t total = 0;
    while (!text.empty()) {
        const auto end = text.find(u'+');
        const std::int32_t value = MsgBoxConstantValue(text.substr(0, end));
        if (value > std::numeric_limits<std::int32_t>::max() - total)
            throw platform::RuntimeError(platform::ErrorNumber::Overflow, "Buttons");
        total += value;
        text.remove_prefix(end == TextView::npos ? text.size() : static_cast<std::size_t>(TextPosition(end)));
    }
    return total;
}

}  // namespace horalink
