#include "shell/AddInMain.h"

#include "exchange/dlgAddin.h"
#include "language/LanguageDatabase.h"
#include "locator/VersionRecord.h"
#include "locator/comRegMarket.h"
#include "locator/comRegMora32.h"

namespace horalink {

using namespace platform;

namespace {

constexpr std::int32_t busyLimit = 10000, pendingLimit = 20000;  // milliseconds

}  // namespace

AddInMain::AddInMain(const Services& services) : services_(services) {}

AddInMain::~AddInMain() = default;

dlgAddin& AddInMain::Dialog() {
    if (!dialog_) dialog_ = std::make_shared<dlgAddin>(services_, data_);
    return *dialog_;
}

Text AddInMain::Directory(TextView keyword) const {
    return ResolveDirectory(services_.app.path, services_.settings, u"Addins", keyword);
}

void AddInMain::Main() {
    try {
        Prepare();
    } catch (const RuntimeError&) {
        End();
    }
}

void AddInMain::Prepare() {
    data_.MarketCode = GetMarketCode(services_.app.path, u"Addins");
    if (data_.MarketCode == u"NONE") data_.MarketCode = u"10001";
    data_.BackgroundDirectory = Directory(u"BackGrnd");
    if (!OpenDatabases()) return End();
    if (!LoadProjectText(services_.boxes, services_.app, u"Horalink", *data_.AddInLanguageDb)) return End();
    if (!LoadMessageTable(services_.boxes, data_.MessageTable, u"tMessages", *data_.AddInLanguageDb))
        return End();
    TakeButtonTexts(data_.MessageTable, services_.app.buttons);
    services_.app.helpFile = Directory(u"Help") + u"Horalink.hlp";
    data_.IsStandalone = services_.app.startMode != startedByAutomation;
    if (data_.IsStandalone && !StartStandalone()) End();
}

bool AddInMain::OpenDatabases() {
    const auto open = [&](const Text& file, DatabaseRef& database, bool readOnly) {
        return OpenLanguageDatabase(services_.engine, services_.boxes, file, database, readOnly);
    };
    return open(Directory(u"REGDBOFMORA32") + u"Common.LNG", data_.CommonLanguageDb, true) &&
           open(Directory(u"Database") + u"Horalink.lng", data_.AddInLanguageDb, false);
}

bool AddInMain::StartStandalone() {
    try {
        if (!services_.app.command.empty()) Dialog().Window().Show();
        return true;
    } catch (const RuntimeError&) {
        return false;
    }
}

void AddInMain::LoadAddIn() {
    const Application& app = services_.app;
    const Text version =
        DecimalText(app.major) + u"." + DecimalText(app.minor) + u"." + DecimalText(app.revision);
    if (!UpdateAddInVersion(services_, u"Addins", u"Horalink.mra", version)) return End();
    services_.app.waits.busyTimeout = busyLimit;
    services_.app.waits.pendingTimeout = pendingLimit;
    Dialog().Window().Load();
    // A dialog that unloads itself while loading is loaded again for the next object.
    if (Dialog().Window().IsLoaded()) Dialog().Closing = [this] { Retire(); };
}

}  // namespace horalink
