#include "horalink-setup/Status.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <set>
#include <sstream>
#include <string_view>
#include <system_error>

#include "horalink-setup/Market.h"
#include "horalink-setup/Register.h"
#include "horalink-setup/Services.h"
#include "locator/comRegMora32.h"
#include "platform/automation/dbus/SessionBusNames.h"
#include "platform/data/sqlite/SqliteEngine.h"
#include "platform/desktop/IniSettings.h"
#include "platform/desktop/Installation.h"
#include "platform/runtime/Paths.h"
#include "platform/runtime/ProgramFile.h"

namespace setup {

namespace fs = std::filesystem;
using platform::EqualsIgnoringCase, platform::PathText, platform::RecordsetType, platform::Text,
    platform::TextView, platform::ToUtf8;

namespace {

constexpr const char* reinstall = "Install the package 'horalink' again.";

// A database as the add-in opens it, with the tables that it reads.
struct Wanted {
    const char* what;
    TextView directory, file;
    bool readOnly;
    std::initializer_list<TextView> tables;
};
const Wanted databases[] = {
    {"common texts", u"RegDBofMora32", u"Common.LNG", true, {u"PictureFileName"}},
    {"texts",
     u"Database",
     u"Horalink.lng",
     false,
     {u"tProject", u"tForms", u"tControls", u"tMsgBox", u"tMessages"}},
    {"help", u"Help", u"Horalink.hlp", true, {u"tTopics"}},
    {"register", u"RegDBofMora32", u"Register.mdb", false, {u"Registry"}},
};
constexpr const Wanted &commonTexts = databases[0], &registerFile = databases[3];

std::string Padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

fs::path DefaultProgram() {
    return FamilyDirectory() / "10001/ADDINS/horalink";
}

// The path by which the process was started, since it names the market. Its executable is where the market's
// links lead.
fs::path ProgramOf(int process) {
    const std::string folder = "/proc/" + std::to_string(process);
    std::string called;
    std::getline(std::ifstream(folder + "/cmdline"), called, '\0');
    std::error_code error;
    return called.starts_with('/') ? fs::path(called) : fs::read_symlink(folder + "/exe", error);
}

// Judges by the start of the file, as `horalink-lng check` does.
bool IsPicture(const fs::path& file) {
    using namespace std::string_view_literals;
    const std::string start = platform::FileContent(file).value_or("").substr(0, 1024);
    const auto begins = [&](std::string_view signature) { return start.starts_with(signature); };
    const auto signatures = {"\x89PNG"sv, "\xff\xd8\xff"sv, "GIF8"sv, "BM"sv, "\0\0\1\0"sv};
    return start.find("<svg") != std::string::npos ||
           std::any_of(signatures.begin(), signatures.end(), begins);
}

class Look {
  public:
    std::string Run(bool& isWell) {
        text_ << "Horalink " HORALINK_VERSION "\n";
        LookAtProgram();
        text_ << "\nFiles\n";
        for (const Wanted& wanted : databases) LookAtDatabase(wanted);
        LookAtPictures();
        LookAtBus();
        isWell = problems_.empty();
        return text_.str() + ProblemsInWords();
    }

  private:
    void Complain(const std::string& what, const std::string& remedy, bool isCommand = false) {
        problems_.push_back({what, remedy, isCommand});
    }
    void Line(const std::string& what, const std::string& value) {
        text_ << "  " << Padded(what, 19) << value << "\n";
    }

    // Looks at the program that the bus would start, or at the installed one if that can't be run.
    void LookAtProgram() {
        const auto service = FindService(addInClass, ServiceDirectories());
        program_ = service ? service->Program() : DefaultProgram();
        if (service && program_.filename() == "horalink-setup")
            Complain(service->file.native() + " is of an earlier version and no longer starts anything",
                     "rm " + Quoted(service->file.native()), true);
        else if (access(program_.c_str(), X_OK) != 0 && service && program_ != DefaultProgram())
            Complain("for the class " + std::string(addInClass) + " the bus would start " +
                         program_.native() + ", which doesn't exist",
                     Removal(*service), true);
        else if (access(program_.c_str(), X_OK) != 0)
            Complain("there is no program " + program_.native(), reinstall);
        if (access(program_.c_str(), X_OK) != 0 || program_.filename() == "horalink-setup")
            program_ = DefaultProgram();
        program_ = platform::ProgramFile(program_);
        installation_ = platform::FindInstallation(program_, settings_);
        engine_ = platform::MakeSqliteEngine(installation_.layers);
        Line("program", program_.native());
        if (service) Line("", "by " + service->file.native());
        Line("market", ToUtf8(installation_.market));
        Line("your files", OwnTree().native());
        languages_ =
            platform::WantedLanguages(settings_.Get(u"VELMORA32", installation_.market, u"Language", u""));
        std::string languages;
        for (const Text& language : languages_)
            languages += (languages.empty() ? "" : ", ") + ToUtf8(language);
        Line("languages", languages);
    }

    // The command that removes a service file. A file that this tool didn't write is kept, under a name that
    // the bus ignores.
    static std::string Removal(const Service& service) {
        const bool isAllowed = access(service.file.parent_path().c_str(), W_OK) == 0;
        return (isAllowed ? "" : "sudo ") +
               (service.IsMadeHere() ? "rm " + Quoted(service.file.native()) : MoveAway(service.file));
    }

    const fs::path& OwnTree() const { return installation_.layers.Trees().front(); }

    Text PathOf(TextView directory, TextView file) const {
        return horalink::ResolveDirectory(PathText(program_.parent_path()), settings_, u"Addins", directory) +
               Text(file);
    }

    // The language of the first file, if it lies in a language's folder: " (de)".
    std::string LanguageOf(const std::vector<fs::path>& files) const {
        const std::string folder = files.empty() ? "" : files.front().parent_path().filename();
        const auto isIt = [&](const Text& each) {
            return EqualsIgnoringCase(each, platform::FromUtf8(folder));
        };
        return std::any_of(languages_.begin(), languages_.end(), isIt) ? " (" + folder + ")" : "";
    }

    void ShowFile(const std::string& what, const Text& path) {
        const auto files = installation_.layers.FindAll(path);
        Line(what + LanguageOf(files), files.empty() ? "missing" : files.front().native());
        for (std::size_t i = 1; i < files.size(); ++i) Line("", "  hides " + files[i].native());
    }

    // A user's own file has to be moved away; for a file of the package, the package has to be reinstalled.
    void ComplainAbout(const char* kind, const fs::path& file, const std::string& why) {
        const bool isOwn = platform::Below(PathText(file), OwnTree()).has_value(),
                   isNamed = why.find(file.native()) != std::string::npos;
        const std::string what = std::string(kind) + ": " + why + (isNamed ? "" : " (" + file.native() + ")");
        if (isOwn && fs::exists(fs::symlink_status(file)))
            Complain(what, MoveAway(file), true);
        else
            Complain(what, RemedyOfPath().value_or(reinstall));
    }

    std::optional<std::string> RemedyOfPath() const {
        const Text path = settings_.Get(u"VELMORA32", installation_.market, u"InstallPath", u"\\");
        if (path.ends_with(u'\\')) return std::nullopt;
        return "Put a backslash at the end of the InstallPath " + ToUtf8(path) + " in velmora/settings.ini.";
    }

    void LookAtDatabase(const Wanted& wanted) {
        const Text path = PathOf(wanted.directory, wanted.file);
        ShowFile(wanted.what, path);
        const fs::path file = installation_.layers.Find(path), own = installation_.layers.OwnPlace(file);
        const bool isWritten = &wanted == &registerFile;
        Problem writing = isWritten && fs::exists(file) ? ProblemOfWriting(own) : Problem();
        if (!writing.what.empty()) problems_.push_back(writing);
        try {
            const auto database = engine_->OpenDatabase(path, wanted.readOnly);
            for (const TextView table : wanted.tables)
                database->OpenRecordset(u"SELECT * FROM " + Text(table), RecordsetType::ForwardOnly);
        } catch (const platform::RuntimeError& error) {
            if (writing.what.empty()) ComplainAbout(wanted.what, file, error.what());
            return;
        }
        if (isWritten && writing.what.empty())
            Line("",
                 file == own ? "  can be written" : "  copied to " + own.native() + " by the first start");
    }

    void LookAtPictures() {
        std::set<Text> names;
        try {
            const auto texts = engine_->OpenDatabase(PathOf(commonTexts.directory, commonTexts.file), true);
            const auto rows = texts->OpenRecordset(u"SELECT DefaultName, FileName FROM PictureFileName",
                                                   RecordsetType::ForwardOnly);
            for (; !rows->EndOfFile(); rows->MoveNext())
                for (const TextView field : {u"DefaultName", u"FileName"})
                    names.insert(rows->Field(field).ToTextOrEmpty());
        } catch (const platform::RuntimeError&) {
            return;  // already reported
        }
        for (const Text& name : names) {
            const Text path = PathOf(u"BackGrnd", name);
            ShowFile("picture", path);
            const auto files = installation_.layers.FindAll(path);
            if (files.empty())
                Complain("the picture " + ToUtf8(name) + " is missing", reinstall);
            else if (!IsPicture(files.front()))
                ComplainAbout("picture", files.front(), "this is no picture, or it can't be read");
        }
    }

    void LookAtBus() {
        const std::string exchange = "SwitchDeskProj" + ToUtf8(installation_.market) + ".cPBXOle";
        const auto bus = platform::MakeSessionBusNames();
        try {
            const auto startable = bus->Startable();
            text_ << "\nClasses on the session bus\n";
            for (const std::string& name : {std::string(addInClass), exchange})
                text_ << "  " << Padded(name, 30) << Server(*bus, startable, name) << "\n";
            if (startable.contains(addInClass)) return;
            if (FindService(addInClass, ServiceDirectories()))
                Complain("the session bus hasn't read the service file of the class yet",
                         "busctl --user call org.freedesktop.DBus / org.freedesktop.DBus ReloadConfig", true);
            else
                Complain("the session bus doesn't know the class " + std::string(addInClass),
                         "horalink-setup market 10001", true);
        } catch (const platform::RuntimeError&) {
            Complain("there is no session bus here", "dbus-run-session horalink-setup status", true);
        }
    }

    static std::string Server(platform::BusNames& bus, const std::set<std::string>& startable,
                              const std::string& name) {
        if (const int process = bus.ProcessOf(name))
            return "served by process " + std::to_string(process) + ", " + ProgramOf(process).native();
        if (!startable.contains(name)) return "unknown";
        const auto service = FindService(name, ServiceDirectories());
        return service ? "starts " + service->command : "starts a program";
    }

    std::string ProblemsInWords() const {
        if (problems_.empty()) return "\nNothing is wrong.\n";
        std::string words = "\nWrong, and how to fix it\n";
        for (const Problem& problem : problems_)
            words += "  " + problem.what + "\n    " + (problem.isCommand ? "$ " : "") + problem.remedy + "\n";
        return words;
    }

    const platform::IniSettings settings_{platform::SettingsFiles()};
    fs::path program_;
    platform::Installation installation_;
    std::vector<Text> languages_;
    std::unique_ptr<platform::DatabaseEngine> engine_;
    std::ostringstream text_;
    std::vector<Problem> problems_;
};

}  // namespace

std::string Status(bool& isWell) {
    return Look().Run(isWell);
}

}  // namespace setup
