#include "horalink-setup/Status.h"

#include <unistd.h>

#include <functional>
#include <initializer_list>
#include <system_error>

#include "common/Fault.h"
#include "horalink-setup/Market.h"
#include "horalink-setup/Package.h"
#include "horalink-setup/Register.h"
#include "horalink-setup/Services.h"
#include "horalink-setup/SettingsStore.h"
#include "horalink-setup/UserTree.h"
#include "platform/runtime/Paths.h"

namespace setup {

namespace fs = std::filesystem;
using platform::RecordsetType;

namespace {

constexpr const char* reinstall = "Install the package 'horalink' again.";

std::string AddCommand(const std::string& market, const char* more = "") {
    return "'horalink-setup add --market " + market + more + "'";
}

bool IsDangling(const fs::path& file) {
    std::error_code error;
    return fs::is_symlink(file, error) && !fs::exists(file, error);
}

bool Exists(const fs::path& file) {
    std::error_code error;
    return fs::exists(file, error);
}

// What keeps a file from being found, or nothing.
std::string FaultOfFile(const fs::path& file) {
    if (IsDangling(file))
        return "its link leads to " + fs::read_symlink(file).string() + ", which isn't there";
    return Exists(file) ? "" : "it is missing";
}

struct Wanted {
    const char* what;
    const char* place;
    std::initializer_list<platform::TextView> tables;
};

const Wanted databases[] = {
    {"texts of the add-in",
     place::addInTexts,
     {u"tProject", u"tForms", u"tControls", u"tMsgBox", u"tMessages"}},
    {"common texts", place::commonTexts, {u"PictureFileName"}},
    {"help", place::help, {u"tTopics"}},
    {"register", place::registry, {u"Registry"}},
};

std::string FaultOfTables(platform::Database& database, const Wanted& wanted) {
    for (const platform::TextView table : wanted.tables)
        database.OpenRecordset(u"SELECT * FROM " + platform::Text(table), RecordsetType::ForwardOnly);
    return {};
}

// The add-in ends where it can't write its version. Opens the row for a change and makes none.
std::string FaultOfRegister(platform::Database& database, const fs::path& file) {
    const auto rows = database.OpenRecordset(
        u"SELECT * FROM Registry WHERE AppName = \"" + platform::Text(addInEntry) + u"\"",
        RecordsetType::Dynaset);
    if (rows->RecordCount() > 0) rows->Edit();
    // Changes go through a second file beside it.
    return access(file.parent_path().c_str(), W_OK) == 0 ? "" : "its directory can't be written";
}

std::string FaultOfDatabase(platform::DatabaseEngine& engine, const fs::path& file, const Wanted& wanted) {
    if (std::string fault = FaultOfFile(file); !fault.empty()) return fault;
    try {
        const auto database = engine.OpenDatabase(platform::PathText(file));
        if (std::string fault = FaultOfTables(*database, wanted); !fault.empty()) return fault;
        return wanted.place == place::registry ? FaultOfRegister(*database, file) : "";
    } catch (const platform::RuntimeError& error) {
        return platform::ToUtf8(error.Description());
    }
}

// One installation, with what is wrong in it.
class Inspection {
  public:
    Inspection(const Context& context, const SettingsStore& store, std::string market,
               std::vector<Problem>& problems)
        : context_(context),
          store_(store),
          market_(std::move(market)),
          tree_(*store.Root(market_)),
          problems_(problems) {}

    InstallationReport Run() {
        InstallationReport report{
            market_, tree_.Root().string(), tree_.Language(), store_.MarketInUse() == market_, {}};
        if (!tree_.Exists()) {
            Complain("there is no directory " + tree_.Root().string(),
                     AddCommand(market_) + " makes it anew.");
            return report;
        }
        LookAtPath();
        LookAtProgram();
        for (const Wanted& wanted : databases) report.databases.push_back(LookAt(wanted));
        if (const auto fault = FaultOfFile(tree_.Root() / place::backgrounds); !fault.empty())
            Complain("the backgrounds can't be shown: " + fault, Remedy(place::backgrounds));
        return report;
    }

  private:
    void Complain(const std::string& what, const std::string& remedy) {
        problems_.push_back({"Market " + market_ + ": " + what + ".", remedy});
    }

    // A link that the package can satisfy is laid anew.
    std::string Remedy(const fs::path& piece) const {
        const bool installed = Exists(context_.places.package / place::addIn);
        if (piece == place::registry)
            return AddCommand(market_, " --force") + " puts a new one in its place.";
        return installed ? AddCommand(market_) +
                               " makes it anew; if that doesn't help, install the package 'horalink' again."
                         : reinstall;
    }

    void LookAtPath() {
        const platform::Text written = *store_.InstallPath(market_);
        if (written.empty() || written.back() != u'\\')
            Complain("InstallPath in " + context_.places.settings.string() + " doesn't end in a backslash",
                     "Put one at its end.");
        const platform::Text tail = u"VELMORA32\\" + platform::FromUtf8(market_);
        const platform::Text path = platform::PathText(tree_.Root());
        if (!platform::EqualsIgnoringCase(platform::Right(path, tail.size()), tail))
            Complain("its directory doesn't end in VELMORA32/" + market_ +
                         ", so programs take it for another market",
                     AddCommand(market_, " --root DIRECTORY --force") + " enters it in a place that does.");
    }

    void LookAtProgram() {
        const fs::path program = tree_.Root() / place::addIn;
        std::string fault = FaultOfFile(program);
        if (fault.empty() && access(program.c_str(), X_OK) != 0) fault = "it may not be run";
        if (!fault.empty()) Complain("the add-in's program can't start: " + fault, Remedy(place::addIn));
    }

    DatabaseReport LookAt(const Wanted& wanted) {
        const fs::path file = tree_.Root() / wanted.place;
        DatabaseReport report{wanted.what, file.string(), FaultOfDatabase(context_.engine, file, wanted)};
        if (!report.fault.empty())
            Complain(std::string(wanted.what) + " (" + file.filename().string() + "): " + report.fault,
                     Remedy(wanted.place));
        return report;
    }

    const Context& context_;
    const SettingsStore& store_;
    std::string market_;
    UserTree tree_;
    std::vector<Problem>& problems_;
};

std::string StateOf(const std::string& name, platform::BusNames& bus) {
    if (bus.Running().contains(name)) return "running";
    return bus.Startable().contains(name) ? "startable" : "unknown";
}

// The program at the start of a command.
std::string ProgramOf(const std::string& command) {
    if (command.starts_with('"')) return command.substr(1, command.find('"', 1) - 1);
    return command.substr(0, command.find(' '));
}

class ClassInspection {
  public:
    ClassInspection(const Context& context, Report& report)
        : context_(context), report_(report), services_(context.places) {}

    void LookAt(const std::string& name, bool needed) {
        ClassReport one{name, StateOf(name, context_.bus), services_.FileOf(name).value_or("").string()};
        if (!one.file.empty()) LookAtCommand(one);
        if (needed && one.state == "unknown")
            report_.problems.push_back(
                {"The session bus doesn't know the class " + name + ", so no host can create the add-in.",
                 one.file.empty() ? "'horalink-setup add' tells the bus of it."
                                  : "Log out and in again, so that the bus reads " + one.file + "."});
        report_.classes.push_back(std::move(one));
    }

  private:
    void LookAtCommand(const ClassReport& one) {
        const std::string program = ProgramOf(services_.CommandOf(one.file));
        if (!Exists(program))
            report_.problems.push_back(
                {"For the class " + one.name + " the bus would start '" + program + "', which isn't there.",
                 "Correct or delete " + one.file + "."});
    }

    const Context& context_;
    Report& report_;
    Services services_;
};

void LookAtPackage(const Context& context, Report& report) {
    try {
        report.languages = Package(context.places.package).Languages();
    } catch (const tools::Fault& fault) {
        report.problems.push_back({fault.what() + std::string("."),
                                   "Install the package 'horalink'; in a checkout, './run bus COMMAND' runs "
                                   "a command inside an installation."});
    }
}

void LookAtClasses(const Context& context, Report& report) {
    try {
        ClassInspection inspection(context, report);
        inspection.LookAt(addInClass, true);
        if (report.installations.empty()) inspection.LookAt(ExchangeClass(defaultMarket), false);
        for (const auto& installation : report.installations)
            inspection.LookAt(ExchangeClass(installation.market), false);
    } catch (const platform::RuntimeError& error) {
        report.problems.push_back({"The session bus can't be asked, since none answers here (" +
                                       platform::ToUtf8(error.Description()) + ").",
                                   "Run this inside a desktop session, or below 'dbus-run-session'."});
    }
}

}  // namespace

Report Inspect(const Context& context) {
    Report report;
    report.version = HORALINK_VERSION;
    report.package = context.places.package.string();
    LookAtPackage(context, report);
    try {
        const SettingsStore store(context.places.settings);
        for (const std::string& market : store.Markets()) {
            const UserTree tree(*store.Root(market));
            if (tree.Exists() && !tree.HoldsAddIn()) continue;
            report.installations.push_back(Inspection(context, store, market, report.problems).Run());
        }
    } catch (const tools::Fault& fault) {
        report.problems.push_back({fault.what() + std::string("."), "Correct the settings store."});
    }
    LookAtClasses(context, report);
    return report;
}

}  // namespace setup
