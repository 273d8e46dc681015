#include "check/Check.h"

#include <stdlib.h>

#include <algorithm>
#include <array>
#include <system_error>

#include "check/CheckedDatabase.h"
#include "check/FormChecks.h"
#include "check/HelpCheck.h"
#include "check/TextChecks.h"
#include "common/Fault.h"
#include "source/SourceReader.h"
#include "store/Build.h"
#include "store/Dump.h"
#include "store/Schema.h"

namespace lng {

namespace {

namespace fs = std::filesystem;

enum class Role { AddIn, Common, Help, Register };

struct RoleMark {
    Role role;
    std::string_view fileName;
    std::vector<std::string> tables;  // any of them tells a file of another name
};

const RoleMark marks[] = {
    {Role::AddIn, "Horalink.lng", {"tProject", "tForms", "tControls", "tMessages", "tPicture"}},
    {Role::Common, "Common.LNG", {"PictureFileName"}},
    {Role::Help, "Horalink.hlp", {"tTopics"}},
    {Role::Register, "Register.mdb", {"Registry"}},
};

bool HasAnyTable(const fs::path& file, const std::vector<std::string>& tables) {
    const Connection connection(file, true);
    return std::any_of(tables.begin(), tables.end(),
                       [&](const std::string& table) { return HasObject(connection, "table", table); });
}

Role RoleOf(const fs::path& file) {
    for (const RoleMark& mark : marks)
        if (SameName(file.filename().string(), mark.fileName)) return mark.role;
    try {
        for (const RoleMark& mark : marks)
            if (HasAnyTable(file, mark.tables)) return mark.role;
    } catch (const SqlFailure& failure) {
        throw tools::Fault(file.string() + ": " + failure.what());
    }
    throw tools::Fault(file.string() + ": this is none of the databases of the add-in");
}

class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = fs::temp_directory_path() / "horalink-lng-XXXXXX";
        if (!mkdtemp(name.data())) throw tools::Fault("no temporary folder can be made");
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code error;
        fs::remove_all(path_, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const fs::path& Path() const { return path_; }

  private:
    fs::path path_;
};

bool IsSource(const fs::path& file) {
    std::error_code error;
    return fs::is_regular_file(file, error) && fs::file_size(file, error) > 0 && !IsDatabaseFile(file) &&
           std::none_of(std::begin(marks), std::end(marks), [&](const RoleMark& mark) {
               return SameName(file.filename().string(), mark.fileName);
           });
}

// One run over one set.
class Checker {
  public:
    explicit Checker(const CheckedFiles& files) : files_(files) {}

    Findings Check() {
        std::optional<Source> source;
        for (const fs::path& file : files_.files) {
            if (!IsSource(file)) {
                Open(RoleOf(file), file);
                continue;
            }
            source = ReadSource(file);
            for (const fs::path& made : BuildInto(*source, scratch_.Path(), false)) Open(RoleOf(made), made);
        }
        if (files_.common) Open(Role::Common, *files_.common);
        if (files_.help) Open(Role::Help, *files_.help);
        RunAll();
        if (source) findings_.FindLines(*source);
        return std::move(findings_);
    }

  private:
    void Open(Role role, const fs::path& file) {
        auto& place = opened_[static_cast<std::size_t>(role)];
        if (given_.at(static_cast<std::size_t>(role)))
            throw tools::WrongCall(file.string() + ": another file of this kind was given before");
        given_.at(static_cast<std::size_t>(role)) = true;
        const std::string name = file.filename().string();
        try {
            place = std::make_unique<CheckedDatabase>(name, file, findings_);
        } catch (const platform::RuntimeError& error) {
            findings_.Add({name}, platform::ToUtf8(error.Description()));
        }
    }

    CheckedDatabase* At(Role role) const { return opened_.at(static_cast<std::size_t>(role)).get(); }

    // A file that is damaged inside ends the checks of this file.
    template <class Checks>
    void With(Role role, Checks checks) {
        CheckedDatabase* database = At(role);
        if (!database) return;
        try {
            checks(*database);
        } catch (const SqlFailure& failure) {
            findings_.Add({database->Name()}, std::string("it can't be read to its end: ") + failure.what());
        }
    }

    bool HasTopic(const std::string& file, std::int32_t topic) const {
        CheckedDatabase* help = At(Role::Help);
        return !help || !SameName(help->Name(), file) || HasHelpTopic(*help, topic);
    }

    void RunAll() {
        const auto hasTopic = [this](const std::string& file, std::int32_t topic) {
            return HasTopic(file, topic);
        };
        With(Role::AddIn, [&](CheckedDatabase& database) {
            CheckProject(database);
            CheckMessages(database);
            CheckOwnBoxes(database, hasTopic);
            CheckForms(database);
            CheckControls(database);
            CheckPictures(database, files_.backgrounds);
        });
        With(Role::Common, [&](CheckedDatabase& database) {
            CheckCommonBoxes(database, hasTopic);
            CheckPictureNames(database, files_.backgrounds);
        });
        With(Role::Help, CheckHelp);
        With(Role::Register, CheckRegister);
        NoteWhatIsLeftOut();
    }

    void NoteWhatIsLeftOut() {
        if (At(Role::Register) && !At(Role::AddIn)) return;
        for (const RoleMark& mark : marks)
            if (mark.role != Role::Register && !given_.at(static_cast<std::size_t>(mark.role)))
                findings_.Note(std::string(mark.fileName) + " is not among the files and was not looked at");
        if (!files_.backgrounds)
            findings_.Note("nobody looked for the picture files; --backgrounds tells where they lie");
    }

    const CheckedFiles& files_;
    TemporaryFolder scratch_;
    Findings findings_;
    std::array<std::unique_ptr<CheckedDatabase>, 4> opened_;
    std::array<bool, 4> given_{};
};

}  // namespace

std::string CheckedFiles::SourcePath() const {
    const auto source = std::find_if(files.begin(), files.end(), IsSource);
    return source == files.end() ? "" : source->string();
}

Findings CheckSet(const CheckedFiles& files) {
    if (files.backgrounds && !fs::is_directory(*files.backgrounds))
        throw tools::Fault(files.backgrounds->string() + ": there is no such folder");
    for (const auto& list : {files.files, std::vector<fs::path>{files.common.value_or(fs::path()),
                                                                files.help.value_or(fs::path())}})
        for (const fs::path& file : list)
            if (!file.empty() && !fs::exists(file))
                throw tools::Fault(file.string() + ": there is no such file");
    if (std::count_if(files.files.begin(), files.files.end(), IsSource) > 1)
        throw tools::WrongCall("there is more than one text source");
    return Checker(files).Check();
}

}  // namespace lng
