#include "language/LanguageDatabase.h"

#include "common/FatalNotice.h"

namespace horalink {

using namespace platform;

bool OpenLanguageDatabase(DatabaseEngine& engine, MessageBoxes& boxes, TextView fileName,
                          DatabaseRef& database, bool readOnly) {
    try {
        database = engine.OpenDatabase(fileName, readOnly);
        return true;
    } catch (const RuntimeError& error) {
        ShowShortNotice(boxes, error);
        database = nullptr;
        return false;
    }
}

bool LoadProjectText(MessageBoxes& boxes, Application& app, TextView exeName, Database& database) {
    try {
        const Text query = u"select * from tProject where EXEName = '" + Text(exeName) + u"'";
        const auto row = database.OpenRecordset(query, RecordsetType::ForwardOnly);
        const auto read = [&](TextView field, Text& text) { text = row->Field(field).ToTextOrEmpty(); };
        read(u"Title", app.title);
        read(u"OleServerBusyMsgTitle", app.waits.busyTitle);
        read(u"OleServerBusyMsgText", app.waits.busyText);
        read(u"OleRequestPendingMsgTitle", app.waits.pendingTitle);
        read(u"OleRequestPendingMsgText", app.waits.pendingText);
        row->Close();
        return true;
    } catch (const RuntimeError& error) {
        ShowShortNotice(boxes, error);
        return false;
    }
}

namespace {

// The row with the count has ID −1, so that it sorts first.
Text CountAndTexts(TextView tableName) {
    const Text name(tableName);
    return u"SELECT * FROM " + name + u" UNION SELECT -1, COUNT(*) FROM " + name + u" ORDER BY ID";
}

void Read(std::vector<Text>& texts, Recordset& rows) {
    const std::int16_t count = rows.Field(u"Caption").ToInteger();
    if (count < 1) throw RuntimeError(ErrorNumber::SubscriptOutOfRange, "the message table has no rows");
    texts.assign(static_cast<std::size_t>(count), Text());
    rows.MoveNext();
    for (Text& text : texts) {
        text = rows.Field(u"Caption").ToTextOrEmpty();
        rows.MoveNext();
    }
}

}  // namespace

void TakeButtonTexts(const MessageTexts& messages, ButtonTexts& buttons) {
    std::size_t index = message::firstButton;
    for (Text* word : {&buttons.ok, &buttons.cancel, &buttons.abort, &buttons.retry, &buttons.ignore,
                       &buttons.yes, &buttons.no, &buttons.help, &buttons.keepWaiting, &buttons.giveUp}) {
        if (index < messages.texts.size() && !messages[index].empty()) *word = messages[index];
        ++index;
    }
}

bool LoadMessageTable(MessageBoxes& boxes, MessageTexts& messages, TextView tableName, Database& database) {
    try {
        const auto rows = database.OpenRecordset(CountAndTexts(tableName), RecordsetType::ForwardOnly);
        Read(messages.texts, *rows);
        rows->Close();
        return true;
    } catch (const RuntimeError& error) {
        ShowLongNotice(boxes, error);
        return false;
    }
}

}  // namespace horalink
