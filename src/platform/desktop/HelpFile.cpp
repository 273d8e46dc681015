#include "platform/desktop/HelpFile.h"

namespace platform {

std::optional<HelpTopic> FindTopic(DatabaseEngine& engine, TextView file, std::int32_t id) {
    const DatabaseRef database = engine.OpenDatabase(file, true);
    const auto rows = database->OpenRecordset(
        u"SELECT Title, Body FROM tTopics WHERE ID = " + DecimalText(id), RecordsetType::ForwardOnly);
    if (rows->EndOfFile()) return {};
    return HelpTopic{rows->Field(u"Title").ToTextOrEmpty(), rows->Field(u"Body").ToTextOrEmpty()};
}

}  // namespace platform
