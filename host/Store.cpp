#include "host/Store.h"

#include <cstdlib>
#include <fstream>
#include <system_error>

#include "platform/runtime/RuntimeError.h"

namespace switchdesk {

using platform::Text;

namespace {

[[noreturn]] void RaiseFileError(const std::filesystem::path& file, const char16_t* what) {
    throw platform::RuntimeError(75, what + platform::FromUtf8(file.string()));
}

// Names and values may hold anything; in the file each stays on its line, and what divides a line or
// begins a section is marked.
std::string Escaped(platform::TextView text) {
    std::string escaped;
    for (const char c : platform::ToUtf8(text)) {
        if (c == '\n')
            escaped += "\\n";
        else if (c == '\r')
            escaped += "\\r";
        else if (c == '\\' || c == '=' || c == '[' || c == ']')
            escaped += {'\\', c};
        else
            escaped += c;
    }
    return escaped;
}

Text Unescaped(std::string_view escaped) {
    std::string text;
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        if (escaped[i] != '\\' || i + 1 == escaped.size()) {
            text += escaped[i];
            continue;
        }
        const char c = escaped[++i];
        text += c == 'n' ? '\n' : c == 'r' ? '\r' : c;
    }
    return platform::FromUtf8(text);
}

// The place of the first sign '=' that isn't marked.
std::size_t FindDivision(std::string_view line) {
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\\')
            ++i;
        else if (line[i] == '=')
            return i;
    }
    return line.npos;
}

}  // namespace

Store::Store(std::filesystem::path file) : file_(std::move(file)) {
    Load();
}

void Store::Load() {
    std::error_code ignored;
    if (!std::filesystem::exists(file_, ignored)) return;
    std::ifstream in(file_);
    Text application;
    for (std::string line; std::getline(in, line);) {
        const std::size_t division = FindDivision(line);
        if (line.size() > 1 && line.front() == '[' && line.back() == ']')
            application = Unescaped(std::string_view(line).substr(1, line.size() - 2));
        else if (division != line.npos)
            values_[{application, Unescaped(line.substr(0, division))}] =
                Unescaped(line.substr(division + 1));
    }
    if (!in.eof()) RaiseFileError(file_, u"The store can't be read: ");
}

std::optional<Text> Store::Get(const Text& application, const Text& key) const {
    const auto found = values_.find({application, key});
    if (found == values_.end()) return std::nullopt;
    return found->second;
}

void Store::Set(const Text& application, const Text& key, const Text& value) {
    Values changed = values_;
    changed[{application, key}] = value;
    Save(changed);
    values_ = std::move(changed);
}

void Store::Save(const Values& values) const {
    std::error_code failure;
    if (file_.has_parent_path()) std::filesystem::create_directories(file_.parent_path(), failure);
    // Written beside and renamed, so that whenever the host ends the file is whole.
    std::filesystem::path beside = file_;
    beside += ".new";
    std::ofstream out(beside, std::ios::trunc);
    const Text* application = nullptr;
    for (const auto& [name, value] : values) {
        if (!application || *application != name.first) out << '[' << Escaped(name.first) << "]\n";
        application = &name.first;
        out << Escaped(name.second) << '=' << Escaped(value) << '\n';
    }
    out.close();
    if (out) std::filesystem::rename(beside, file_, failure);
    if (!out || failure) RaiseFileError(file_, u"The store can't be written: ");
}

std::filesystem::path DefaultStoreFile() {
    const char* data = std::getenv("XDG_DATA_HOME");
    const char* home = std::getenv("HOME");
    std::filesystem::path directory;
    if (data && *data)
        directory = data;
    else
        directory = std::filesystem::path(home ? home : ".") / ".local" / "share";
    return directory / "switchdesk" / "store.ini";
}

}  // namespace switchdesk
