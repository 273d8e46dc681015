#include "language/LanguageMsgBox.h"

#include "common/FatalNotice.h"
#include "language/MsgBoxButtons.h"
#include "language/TextTokens.h"

namespace horalink {

namespace {

using namespace platform;

constexpr TextView noValue = u"-1";
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

// The arguments are shared by prompt, title and help file, so the file is expanded even where the row
// turns out to have no help reference.
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

}  // namespace horalink
