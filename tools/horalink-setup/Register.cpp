#include "horalink-setup/Register.h"

#include "platform/runtime/Paths.h"

namespace setup {

RegisterUse UseOfRegister(platform::DatabaseEngine& engine, const std::filesystem::path& file) {
    try {
        const auto database = engine.OpenDatabase(platform::PathText(file), true);
        const auto entries =
            database->OpenRecordset(u"SELECT AppName FROM Registry", platform::RecordsetType::ForwardOnly);
        for (; !entries->EndOfFile(); entries->MoveNext())
            if (!platform::EqualsIgnoringCase(entries->Field(u"AppName").ToTextOrEmpty(), addInEntry))
                return RegisterUse::Shared;
        return RegisterUse::AddInAlone;
    } catch (const platform::RuntimeError&) {
        return RegisterUse::Unreadable;
    }
}

}  // namespace setup
