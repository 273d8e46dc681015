#include "horalink-setup/Register.h"

#include "platform/desktop/Paths.h"

namespace setup {

bool BelongsToAddInAlone(platform::DatabaseEngine& engine, const std::filesystem::path& file) {
    try {
        const auto database = engine.OpenDatabase(platform::PathText(file), true);
        const auto entries =
            database->OpenRecordset(u"SELECT AppName FROM Registry", platform::RecordsetType::ForwardOnly);
        for (; !entries->EndOfFile(); entries->MoveNext())
            if (!platform::EqualsIgnoringCase(entries->Field(u"AppName").ToTextOrEmpty(), addInEntry))
                return false;
        return true;
    } catch (const platform::RuntimeError&) {
        return false;
    }
}

}  // namespace setup
