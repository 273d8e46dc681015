#include "language/LanguageMsgBox.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "common/FatalNotice.h"
#include "language/TextTokens.h"
#include "platform/desktop/Desktop.h"
#include "platform/runtime/RuntimeError.h"

namespace horalink {

namespace {

using namespace platform;

constexpr std::int16_t refused = 6;
constexpr TextView defaultHelpFile = u"..\\Mora32\\Help\\error.hlp";

Text Query(std::int16_t boxMode, std::int16_t msgNo) {
    const Text fields = boxMode == mode::helpFromArguments
                            ? u"select Prompt,Buttons,Title"
                            : u"select Prompt, Buttons, Title, HelpFile, Context";
    return fields + u" from tMsgBox where MsgNo = " + DecimalText(msgNo);
}

Database& DatabaseOf(const ModuleData& data, std::int16_t boxMode) {
    const DatabaseRef& database =
        boxMode == mode::commonDatabase ? data.CommonLanguageDb : data.AddInLanguageDb;
    if (!database) throw RuntimeError(ErrorNumber::ObjectNotSet);
    return *database;
}

void SetHelp(MessageBox& box, Text file, std::int32_t context) {
    box.helpFile = std::move(file);
    box.helpContext = context;
}

void TakeHelpFromArguments(MessageBox& box, const BoxArguments& given) {
    SetHelp(box, given.helpFile.IsMissing() ? Text(defaultHelpFile) : given.helpFile.ToText(),
            given.context.IsMissing() ? 0 : given.context.ToInteger());
}

// Prompt, title and help file use up the same arguments, so the file is expanded even if the row turns out to
// have no help reference.
void TakeHelpFromRow(MessageBox& box, const Services& services, const Recordset& row, Text& args) {
    const Text path = services.app.path + u"\\" + row.Field(u"HelpFile").ToTextOrEmpty();
    Text file = ExpandTextTokens(services.boxes, path, args);
    const Value context = row.Field(u"Context");
    if (context.IsNull() || context.ToText() == noValue) return;
    SetHelp(box, std::move(file), context.ToLong());
}

MessageBox Compose(const Services& services, const Recordset& row, std::int16_t boxMode,
                   BoxArguments& given) {
    MessageBox box;
    box.prompt = ExpandTextTokens(services.boxes, row.Field(u"Prompt").ToText(), given.args);
    box.buttons = ParseMsgBoxButtons(row.Field(u"Buttons").ToText());
    const Text title = boxMode == mode::commonDatabase ? given.title : row.Field(u"Title").ToText();
    box.title = ExpandTextTokens(services.boxes, title, given.args);
    if (boxMode == mode::helpFromArguments)
        TakeHelpFromArguments(box, given);
    else
        TakeHelpFromRow(box, services, row, given.args);
    return box;
}

std::int16_t AskAndShow(const Services& services, MessageBox& box, std::int16_t boxMode,
                        std::int32_t hookData) {
    if (!MsgBoxAllowed(box.prompt, box.buttons, *box.title, hookData)) return refused;
    if (boxMode != mode::helpFromArguments && *box.title == noValue) box.title.reset();
    return services.boxes.Show(box);
}

}  // namespace

bool MsgBoxAllowed(Text&, std::int32_t&, Text&, std::int32_t&) {
    return true;
}

std::int16_t ShowLanguageMsgBox(const Services& services, const ModuleData& data, std::int16_t boxMode,
                                std::int16_t msgNo, BoxArguments arguments) {
    std::int16_t result = 0;
    try {
        const auto row =
            DatabaseOf(data, boxMode).OpenRecordset(Query(boxMode, msgNo), RecordsetType::ForwardOnly);
        MessageBox box = Compose(services, *row, boxMode, arguments);
        result = AskAndShow(services, box, boxMode, arguments.hookData);
        row->Close();
    } catch (const RuntimeError& error) {
        ShowLongNotice(services.boxes, error);
    }
    return result;
}

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
