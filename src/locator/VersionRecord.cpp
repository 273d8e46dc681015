#include "locator/VersionRecord.h"

#include "common/FatalNotice.h"
#include "locator/comRegMora32.h"

namespace horalink {

using namespace platform;

namespace {

void WriteVersion(Database& registry, TextView appName, TextView version) {
    const Text query = u"SELECT * FROM Registry WHERE AppName = \"" + Text(appName) + u"\"";
    const auto rows = registry.OpenRecordset(query, RecordsetType::Dynaset);
    if (rows->RecordCount() > 0) {
        rows->Edit();
        rows->SetField(u"Version", version);
        rows->Update();
    }
    rows->Close();
}

}  // namespace

bool UpdateAddInVersion(const Services& services, TextView base, TextView appName, TextView version) {
    DatabaseRef registry;
    try {
        const Text directory = ResolveDirectory(services.app.path, services.settings, base, u"RegDBofMora32");
        registry = services.engine.OpenDatabase(directory + u"Register.mdb");
        WriteVersion(*registry, appName, version);
        registry->Close();
        return true;
    } catch (const RuntimeError& error) {
        ShowShortNotice(services.boxes, error);
        ErrorState ignored;
        if (registry) Skip(ignored, "closing the register", [&] { registry->Close(); });
        return false;
    }
}

}  // namespace horalink
