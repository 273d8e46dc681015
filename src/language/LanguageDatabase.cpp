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

}  // namespace horalink
