#include "check/HelpCheck.h"

#include <map>
#include <set>

#include "check/DialogModel.h"
#include "check/TextChecks.h"
#include "platform/desktop/HelpFile.h"

namespace lng {

namespace {

constexpr const char *topicTable = "tTopics", *registerTable = "Registry";
// A help file opens with topic 1; topic 0 stands in for one that is missing and needs no title.
constexpr std::int32_t openingTopic = 1;

// The topics that the dialog needs, each with one that refers to it.
std::map<std::int32_t, std::string> NeededTopics(CheckedDatabase& database) {
    std::map<std::int32_t, std::string> topics{{openingTopic, "the help file opens with it"}};
    DialogModel dialog(database);
    for (const auto& control : dialog.Window().Controls())
        if (control->WhatsThisHelpID != 0)
            topics.try_emplace(control->WhatsThisHelpID,
                               "the control " + platform::ToUtf8(control->Name()) + " refers to it");
    return topics;
}

void CheckTopicTexts(const CheckedDatabase& database) {
    std::set<std::int64_t> seen;
    for (const StoredRow& row : database.RowsOf(topicTable)) {
        const auto id = NumberIn(row["ID"]);
        if (!id || !seen.insert(*id).second)
            database.Report(topicTable, row.key, "ID", "it has to be a number that no other row has");
        if (row.LacksText("Body")) database.Report(topicTable, row.key, "Body", "the text is missing");
        if (id && *id >= openingTopic && row.LacksText("Title"))
            database.Report(topicTable, row.key, "Title", "the text is missing");
    }
}

}  // namespace

void CheckHelp(CheckedDatabase& database) {
    OneDatabaseEngine engine(database.Shared());
    for (const auto& [topic, reason] : NeededTopics(database)) {
        try {
            if (!platform::FindTopic(engine, u"", topic))
                database.Report(topicTable, {{"ID", std::to_string(topic)}}, "",
                                "the row is missing: " + reason);
        } catch (const platform::RuntimeError& error) {
            database.ReportFailure({error.Number(), platform::ToUtf8(error.Description())});
        }
    }
    CheckTopicTexts(database);
}

bool HasHelpTopic(CheckedDatabase& database, std::int32_t topic) {
    try {
        OneDatabaseEngine engine(database.Shared());
        return platform::FindTopic(engine, u"", topic).has_value();
    } catch (const platform::RuntimeError&) {
        return false;
    }
}

void CheckRegister(CheckedDatabase& database) {
    if (!database.HasTable(registerTable))
        return database.Report(registerTable, {}, "", "the table is missing");
    for (const char* field : {"AppName", "Version"})
        if (!database.HasField(registerTable, field))
            database.Report(registerTable, {}, field, "the field is missing");
    int rows = 0;
    for (const StoredRow& row : database.RowsOf(registerTable))
        if (SameName(row.Text("AppName"), "Horalink.mra")) ++rows;
    if (rows != 1)
        database.Report(registerTable, {{"AppName", "Horalink.mra"}}, "",
                        rows == 0 ? "the row is missing, so the add-in's version is not recorded"
                                  : "there is more than one row, and only the first is kept up");
}

}  // namespace lng
