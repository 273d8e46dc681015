#include "Texts.h"

#include <algorithm>
#include <limits>

#include "Lint.h"
#include "language/LanguageDatabase.h"
#include "language/LanguageMsgBox.h"
#include "language/TextTokens.h"
#include "platform/desktop/HelpFile.h"

namespace lng {

namespace {

using namespace platform;

constexpr const char *projectTable = "tProject", *messageTable = "tMessages", *boxTable = "tMsgBox",
                     *topicTable = "tTopics";
constexpr TextView mark = u"\uE000";  // the argument of a box; without a "%", it fills every %ST

int Marks(const Text& text) {
    return static_cast<int>(std::count(text.begin(), text.end(), mark.front()));
}

struct BoxNumbers {
    static bool TakesText(std::int16_t number) {
        return number == horalink::box::clockRead || number == horalink::box::updateFailed;
    }
    static bool IsOfDialog(std::int16_t number) {
        return number >= 0 && number <= horalink::box::yearOutOfRange;
    }
};

void JudgeArguments(const Judged& judged, const Row& row, std::int16_t number, const MessageBox& box) {
    const int wanted = BoxNumbers::TakesText(number) ? 1 : 0, found = Marks(box.prompt);
    const bool isWellFormed =
        TokenFaults(row.fields.at("Prompt")).empty();  // other faults are already reported
    if (found < wanted && isWellFormed)
        judged.Report(boxTable, row, "Prompt", {"%ST is missing, so what the program puts in is not shown"});
    if (found > wanted && isWellFormed)
        judged.Report(boxTable, row, "Prompt",
                      {wanted ? "%ST is here more than once, and there is one text for it"
                              : "there is no text for %ST in this box"});
    if (box.title && Marks(*box.title) > 0)
        judged.Report(boxTable, row, "Title", {"there is no text for %ST in the title"});
}

void JudgeHelpReference(const Judged& judged, Shelf& shelf, const Row& row, const MessageBox& box) {
    if (!box.helpFile) return;
    try {
        if (!FindTopic(shelf, *box.helpFile, box.helpContext))
            judged.Report(boxTable, row, "Context", {"the help file has no topic of this number"});
    } catch (const RuntimeError&) {
        return;  // the help file is not among those judged
    }
}

// Shows a box as the add-in does, and judges what the operator would have seen.
void ShowBox(const Judged& judged, Shelf& shelf, std::int16_t mode, const Row& row, std::int16_t number) {
    Desk desk(shelf);
    horalink::ModuleData data;
    data.AddInLanguageDb = data.CommonLanguageDb = judged.database;
    horalink::ShowLanguageMsgBox(desk.services, data, mode, number, {Text(mark)});
    const std::vector<MessageBox> boxes = desk.headless.boxes.shown;
    if (const auto notice = desk.Notice()) {
        judged.Report(boxTable, row, "", {*notice});
    } else if (!boxes.empty()) {
        JudgeHelpReference(judged, shelf, row, boxes.back());
        if (mode == horalink::mode::general && BoxNumbers::IsOfDialog(number))
            JudgeArguments(judged, row, number, boxes.back());
    }
}

std::optional<std::int16_t> BoxNumber(const Row& row) {
    try {
        return Value(row.fields.at("MsgNo")).ToInteger();
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}

}  // namespace

void JudgeProject(const Judged& addIn, Desk& desk) {
    horalink::LoadProjectText(desk.headless.boxes, desk.headless.app, u"Horalink", *addIn.database);
    if (const auto notice = desk.Notice()) Report({addIn.name, projectTable}, *notice);
    const std::vector<std::string> fields{"Title", "OleServerBusyMsgTitle", "OleServerBusyMsgText",
                                          "OleRequestPendingMsgTitle", "OleRequestPendingMsgText"};
    for (const Row& row : addIn.Rows(projectTable, fields))
        for (const std::string& field : fields)
            addIn.Report(projectTable, row, field, PlainTextFaults(row.fields.at(field)));
}

void JudgeMessages(const Judged& addIn, Desk& desk) {
    using namespace horalink;
    MessageTexts messages;
    LoadMessageTable(desk.headless.boxes, messages, FromUtf8(messageTable), *addIn.database);
    if (const auto notice = desk.Notice()) return Report({addIn.name, messageTable}, *notice);
    // The rows after these are optional: without them, buttons keep their English texts.
    if (messages.texts.size() <= message::answerError)
        Report({addIn.name, messageTable}, "there are " + std::to_string(messages.texts.size()) +
                                               " rows, and the add-in needs " +
                                               std::to_string(message::answerError + 1));
    for (const Row& row : addIn.Rows(messageTable, {"ID", "Caption"})) {
        const Text& text = row.fields.at("Caption");
        addIn.Report(messageTable, row, "Caption", PlainTextFaults(text));
        // This text becomes part of a value for %ST, which ends at the first "%".
        Text args = text + u"%";
        if (row.fields.at("ID") == DecimalText(message::accessFailure) &&
            ExpandTextTokens(desk.headless.boxes, u"%ST", args) != text)
            addIn.Report(messageTable, row, "Caption", {"the text is cut at its %"});
    }
}

void JudgeBoxes(const Judged& judged, Shelf& shelf, std::int16_t mode) {
    std::vector<std::int16_t> seen;
    for (const Row& row : judged.Rows(boxTable, {"MsgNo", "Prompt", "Buttons", "Title"})) {
        judged.Report(boxTable, row, "Prompt", TokenFaults(row.fields.at("Prompt")));
        judged.Report(boxTable, row, "Title", TokenFaults(row.fields.at("Title")));
        judged.Report(boxTable, row, "Buttons", ButtonFaults(row.fields.at("Buttons")));
        const auto number = BoxNumber(row);
        if (!number) continue;
        seen.push_back(*number);
        ShowBox(judged, shelf, mode, row, *number);
    }
    for (std::int16_t number = 0; BoxNumbers::IsOfDialog(number); ++number)
        if (mode == horalink::mode::general && std::find(seen.begin(), seen.end(), number) == seen.end())
            Report({judged.name, boxTable}, "the row " + std::to_string(number) + " is missing");
}

void JudgeHelp(const Judged& help, Shelf& shelf, const std::map<std::int32_t, std::string>& topics) {
    for (const auto& [topic, who] : topics)
        if (!FindTopic(shelf, FromUtf8(help.name), topic))
            Report({help.name, topicTable},
                   "the row " + std::to_string(topic) + " is missing; " + who + " refers to it");
}

}  // namespace lng
