#include "horalink-setup/Services.h"

#include <system_error>

#include "common/Fault.h"
#include "horalink-setup/Files.h"
#include "platform/desktop/IniText.h"

namespace setup {

namespace fs = std::filesystem;

namespace {

constexpr const char* mark = "# Made by horalink-setup, which also takes it away.\n";

// A word of a command line, as the bus reads it.
std::string Quoted(const std::string& word) {
    if (word.find_first_of(" \t\"'\\$`#") == std::string::npos) return word;
    std::string quoted = "\"";
    for (const char c : word) {
        if (c == '"' || c == '\\' || c == '$' || c == '`') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

bool IsOurs(const fs::path& file) {
    return ReadFile(file).value_or("").starts_with(mark);
}

}  // namespace

fs::path Services::OwnFile(const std::string& name) const {
    return places_.ownServices / (name + ".service");
}

std::string Services::Command(const std::string& arguments) const {
    return Quoted(places_.program.string()) + " " + arguments;
}

std::optional<fs::path> Services::FileOf(const std::string& name) const {
    for (const fs::path& directory : places_.services) {
        std::error_code error;
        const fs::path file = directory / (name + ".service");
        if (fs::exists(file, error)) return file;
    }
    return std::nullopt;
}

std::string Services::CommandOf(const fs::path& file) const {
    const platform::IniText text(ReadFile(file).value_or(""));
    return platform::ToUtf8(text.Value(u"D-BUS Service", u"Exec").value_or(u""));
}

bool Services::IsEntered(const std::string& name, const std::string& arguments) const {
    const auto file = FileOf(name);
    return file && CommandOf(*file) == Command(arguments);
}

void Services::RequireFree(const std::string& name, const std::string& arguments) const {
    std::error_code error;
    const fs::path file = OwnFile(name);
    if (fs::exists(file, error) && !IsOurs(file) && !IsEntered(name, arguments))
        throw tools::Fault(file.string() +
                           ": this file starts another program for the class; --force replaces it");
}

bool Services::Enter(const std::string& name, const std::string& arguments) const {
    if (IsEntered(name, arguments)) return false;
    MakeDirectories(places_.ownServices);
    ReplaceFile(OwnFile(name),
                std::string(mark) + "[D-BUS Service]\nName=" + name + "\nExec=" + Command(arguments) + "\n");
    return true;
}

bool Services::Remove(const std::string& name) const {
    std::error_code error;
    const fs::path file = OwnFile(name);
    if (!fs::exists(file, error) || !IsOurs(file)) return false;
    fs::remove(file, error);
    RemoveIfEmpty(file.parent_path());
    RemoveIfEmpty(file.parent_path().parent_path());
    return true;
}

}  // namespace setup
