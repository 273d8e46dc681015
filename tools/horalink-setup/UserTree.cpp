#include "horalink-setup/UserTree.h"

#include <system_error>

#include "common/Fault.h"
#include "horalink-setup/Files.h"
#include "horalink-setup/Register.h"

namespace setup {

namespace fs = std::filesystem;

namespace {

bool IsOwnFile(const fs::path& file) {
    std::error_code error;
    const auto status = fs::symlink_status(file, error);
    return fs::exists(status) && !fs::is_symlink(status);
}

void RemoveLink(const fs::path& link) {
    std::error_code error;
    if (fs::is_symlink(link, error)) fs::remove(link, error);
}

void RemoveRegister(const fs::path& file) {
    std::error_code error;
    fs::remove(file, error);
    for (const char* companion : {"-journal", "-wal", "-shm"}) fs::remove(file.string() + companion, error);
}

// The files that are left below a directory.
std::vector<fs::path> Remains(const fs::path& directory) {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::recursive_directory_iterator entry(directory, error);
         !error && entry != fs::recursive_directory_iterator(); entry.increment(error))
        if (!entry->is_directory(error) || fs::is_empty(entry->path(), error)) files.push_back(entry->path());
    return files;
}

}  // namespace

bool UserTree::Exists() const {
    std::error_code error;
    return fs::is_directory(root_, error);
}

bool UserTree::HoldsAddIn() const {
    std::error_code error;
    for (const char* piece : {place::addIn, place::addInTexts, place::help})
        if (fs::exists(fs::symlink_status(root_ / piece, error))) return true;
    return false;
}

std::vector<fs::path> UserTree::LayOut(platform::DatabaseEngine& engine, const Package& package,
                                       const std::string& language, bool force) const {
    std::vector<fs::path> kept;
    for (const Link& link : package.Links(language)) {
        const fs::path file = root_ / link.place;
        std::error_code error;
        if (IsOwnFile(file) && (!force || fs::is_directory(file, error))) {
            kept.push_back(file);
            continue;
        }
        MakeDirectories(file.parent_path());
        ReplaceLink(file, link.target);
    }
    const fs::path registry = root_ / place::registry;
    const bool isBroken = force && UseOfRegister(engine, registry) == RegisterUse::Unreadable;
    if (isBroken || !IsOwnFile(registry)) CopyFile(package.Register(), registry);
    return kept;
}

std::vector<fs::path> UserTree::TakeAway(platform::DatabaseEngine& engine) const {
    for (const char* piece : {place::addIn, place::host, place::backgrounds, place::addInTexts,
                              place::commonTexts, place::help, place::registry})
        RemoveLink(root_ / piece);
    if (UseOfRegister(engine, root_ / place::registry) == RegisterUse::AddInAlone)
        RemoveRegister(root_ / place::registry);
    for (const char* directory : {"ADDINS/DATABASE", "ADDINS/HELP", "ADDINS", "MORA32/DATABASE", "MORA32"})
        RemoveIfEmpty(root_ / directory);
    RemoveIfEmpty(root_);
    RemoveIfEmpty(root_.parent_path());
    return Remains(root_);
}

std::string UserTree::Language() const {
    std::error_code error;
    const fs::path folder = fs::read_symlink(root_ / place::addInTexts, error).parent_path();
    return folder.parent_path().filename() == "DATABASE" ? folder.filename().string() : "";
}

fs::path UserTree::Source() const {
    std::error_code error;
    return fs::read_symlink(root_ / place::addIn, error).parent_path().parent_path();
}

}  // namespace setup
