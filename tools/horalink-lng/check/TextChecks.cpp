#include "check/TextChecks.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <set>

#include "check/Lint.h"
#include "language/LanguageDatabase.h"
#include "language/LanguageMsgBox.h"

namespace lng {

namespace {

using platform::FromUtf8;

constexpr const char *projectTable = "tProject", *messageTable = "tMessages", *boxTable = "tMsgBox";
constexpr const char16_t* addInName = u"Horalink";
// The add-in needs the messages up to this one; without those behind it, buttons keep their English words.
constexpr std::size_t messageCount = horalink::message::answerError + 1;

void ReportAll(const CheckedDatabase& database, const std::string& table, const StoredRow& row,
               const std::string& field, const std::vector<std::string>& faults) {
    for (const std::string& fault : faults) database.Report(table, row.key, field, fault);
}

void CheckPlainText(const CheckedDatabase& database, const std::string& table, const StoredRow& row,
                    const std::string& field) {
    if (row.LacksText(field)) database.Report(table, row.key, field, "the text is missing");
    ReportAll(database, table, row, field, PlainTextFaults(row.Text(field)));
}

// --- messages -------------------------------------------------------------------------------------------

void ReportGaps(const CheckedDatabase& database, const std::set<std::int64_t>& numbers) {
    std::int64_t expected = 0;
    for (const std::int64_t number : numbers) {
        const std::string last = number - expected > 1 ? " to " + std::to_string(number - 1) : "";
        if (number > expected)
            database.Report(messageTable, {{"ID", std::to_string(expected) + last}}, "",
                            "the row is missing, and every later message takes the place ahead of its own");
        expected = number + 1;
    }
}

void CheckMessageFields(const CheckedDatabase& database) {
    std::set<std::int64_t> seen;
    for (const StoredRow& row : database.RowsOf(messageTable)) {
        const auto id = NumberIn(row["ID"]);
        if (!id || *id < 0)
            database.Report(messageTable, row.key, "ID", "it has to be a number, 0 or greater");
        else if (!seen.insert(*id).second)
            database.Report(messageTable, row.key, "ID", "another row has the same number");
    }
    ReportGaps(database, seen);
}

void CheckMessageTexts(const CheckedDatabase& database) {
    for (const StoredRow& row : database.RowsOf(messageTable)) {
        const auto id = NumberIn(row["ID"]);
        if (!id || *id < 0 || *id > static_cast<std::int64_t>(horalink::message::lastButton)) continue;
        CheckPlainText(database, messageTable, row, "Caption");
        // It becomes a value for %ST, and those end at a "%".
        const bool isValue = *id == static_cast<std::int64_t>(horalink::message::accessFailure);
        if (isValue && row.Text("Caption").find('%') != std::string::npos)
            database.Report(messageTable, row.key, "Caption", "the text is cut at its %");
    }
}

// --- message boxes --------------------------------------------------------------------------------------

struct BoxTable {
    CheckedDatabase& database;
    std::int16_t mode;
    const HasTopic& hasTopic;
};

std::string FileNameOf(const platform::Text& path) {
    return platform::ToUtf8(path.substr(path.find_last_of(u"\\/") + 1));
}

void CheckBox(const BoxTable& table, const platform::MessageBox& box, const RowKey& key) {
    if (box.prompt.empty()) table.database.Report(boxTable, key, "Prompt", "the box has no text");
    if (box.helpFile && !table.hasTopic(FileNameOf(*box.helpFile), box.helpContext))
        table.database.Report(boxTable, key, "Context", "the help file has no topic of this number");
}

// Shows a box as the add-in does, and looks at what it would have shown.
void ShowBox(const BoxTable& table, std::int16_t number, bool required) {
    OneDatabaseEngine engine(table.database.Shared());
    Desk desk(engine);
    horalink::ModuleData data;
    data.AddInLanguageDb = data.CommonLanguageDb = table.database.Shared();
    horalink::ShowLanguageMsgBox(desk.Services(), data, table.mode, number, {u"value%"});
    const auto boxes = desk.Boxes().Take();
    const auto notice = NoticeIn(boxes);
    const bool absent =
        notice && !table.database.Watched().Last().hadRow && table.database.Watched().Last().opened;
    if (notice && (required || !absent)) table.database.ReportFailure(*notice);
    if (!notice && !boxes.empty()) CheckBox(table, boxes.back(), table.database.CurrentKey());
}

void CheckBoxTexts(const CheckedDatabase& database) {
    for (const StoredRow& row : database.RowsOf(boxTable)) {
        ReportAll(database, boxTable, row, "Prompt", TokenFaults(row.Text("Prompt")));
        ReportAll(database, boxTable, row, "Title", TokenFaults(row.Text("Title")));
        ReportAll(database, boxTable, row, "Buttons", ButtonFaults(row.Text("Buttons")));
        if (row.Text("Prompt") == "-1")
            database.Report(boxTable, row.key, "Prompt", "\"-1\" has no meaning here and is shown as it is");
    }
}

// The numbers of the rows; what the add-in can't ask for is reported.
std::set<std::int16_t> BoxNumbers(const CheckedDatabase& database) {
    std::set<std::int16_t> numbers;
    for (const StoredRow& row : database.RowsOf(boxTable)) {
        const auto number = NumberIn(row["MsgNo"]);
        const bool fits = number && *number >= std::numeric_limits<std::int16_t>::min() &&
                          *number <= std::numeric_limits<std::int16_t>::max();
        if (!fits)
            database.Report(boxTable, row.key, "MsgNo", "it has to be a number of 16 bits");
        else if (!numbers.insert(static_cast<std::int16_t>(*number)).second)
            database.Report(boxTable, row.key, "MsgNo", "another row has the same number and hides this one");
    }
    return numbers;
}

// The texts that the dialog gives to its boxes have to find their place.
void CheckArguments(const CheckedDatabase& database) {
    using namespace horalink;
    for (const StoredRow& row : database.RowsOf(boxTable)) {
        const auto number = NumberIn(row["MsgNo"]);
        if (!number || *number < 0 || *number > box::yearOutOfRange) continue;
        const int wanted = *number == box::clockRead || *number == box::updateFailed ? 1 : 0;
        const int found = CountArguments(row.Text("Prompt"));
        if (found < wanted)
            database.Report(boxTable, row.key, "Prompt",
                            "%ST is missing, so what the box tells is not shown");
        if (found > wanted)
            database.Report(boxTable, row.key, "Prompt",
                            wanted ? "%ST stands here more than once, and there is one text for it"
                                   : "there is no text for %ST in this box");
        if (CountArguments(row.Text("Title")) > 0)
            database.Report(boxTable, row.key, "Title", "there is no text for %ST in the title");
    }
}

}  // namespace

std::optional<std::int64_t> NumberIn(const Cell& cell) {
    if (const auto* number = std::get_if<std::int64_t>(&cell)) return *number;
    return std::nullopt;
}

void CheckProject(CheckedDatabase& database) {
    OneDatabaseEngine engine(database.Shared());
    Desk desk(engine);
    database.Run(desk.Boxes(),
                 [&] { horalink::LoadProjectText(desk.Boxes(), desk.App(), addInName, database.Watched()); });
    int rows = 0;
    for (const StoredRow& row : database.RowsOf(projectTable)) {
        if (!SameName(row.Text("EXEName"), platform::ToUtf8(addInName))) continue;
        if (++rows > 1)
            database.Report(projectTable, row.key, "", "another row has the same name and hides this one");
        for (const char* field : {"Title", "OleServerBusyMsgTitle", "OleServerBusyMsgText",
                                  "OleRequestPendingMsgTitle", "OleRequestPendingMsgText"})
            CheckPlainText(database, projectTable, row, field);
    }
}

void CheckMessages(CheckedDatabase& database) {
    OneDatabaseEngine engine(database.Shared());
    Desk desk(engine);
    horalink::MessageTexts messages;
    bool loaded = false;
    database.Run(desk.Boxes(), [&] {
        loaded =
            horalink::LoadMessageTable(desk.Boxes(), messages, FromUtf8(messageTable), database.Watched());
    });
    if (loaded && messages.texts.size() < messageCount)
        database.Report(messageTable, {}, "",
                        "there are " + std::to_string(messages.texts.size()) +
                            " messages, and the add-in needs " + std::to_string(messageCount));
    CheckMessageFields(database);
    CheckMessageTexts(database);
}

void CheckOwnBoxes(CheckedDatabase& database, const HasTopic& hasTopic) {
    using namespace horalink;
    const BoxTable table{database, mode::general, hasTopic};
    std::set<std::int16_t> numbers = BoxNumbers(database);
    for (std::int16_t number = 0; number <= box::yearOutOfRange; ++number) numbers.insert(number);
    for (const std::int16_t number : numbers) ShowBox(table, number, true);
    CheckBoxTexts(database);
    CheckArguments(database);
}

void CheckCommonBoxes(CheckedDatabase& database, const HasTopic& hasTopic) {
    const BoxTable table{database, horalink::mode::commonDatabase, hasTopic};
    // Without any row, a number shows whether the table can be read at all.
    std::set<std::int16_t> numbers = BoxNumbers(database);
    numbers.insert(0);
    for (const std::int16_t number : numbers) ShowBox(table, number, false);
    CheckBoxTexts(database);
}

}  // namespace lng
