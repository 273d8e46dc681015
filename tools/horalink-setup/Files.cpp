#include "horalink-setup/Files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include "common/Fault.h"
#include "common/NewFile.h"

namespace setup {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(const fs::path& path, const std::string& what, const std::error_code& error) {
    throw tools::Fault(path.string() + ": " + what + ": " + error.message());
}

std::error_code LastError() {
    return {errno, std::generic_category()};
}

// The file behind a link, so that writing doesn't put a file in place of the link.
fs::path BehindLinks(const fs::path& file) {
    std::error_code error;
    return fs::is_symlink(file, error) ? fs::weakly_canonical(file) : file;
}

// The directory that is locked may have been taken away, and made anew, while the lock was waited for.
bool IsStillThere(int descriptor, const fs::path& directory) {
    struct stat held{}, there{};
    return fstat(descriptor, &held) == 0 && stat(directory.c_str(), &there) == 0 &&
           held.st_dev == there.st_dev && held.st_ino == there.st_ino;
}

int LockedDirectory(const fs::path& directory) {
    MakeDirectories(directory);
    const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0 && errno == ENOENT) return -1;
    if (descriptor < 0) Fail(directory, "can't be opened", LastError());
    while (flock(descriptor, LOCK_EX) != 0)
        if (errno != EINTR) Fail(directory, "can't be locked", LastError());
    if (IsStillThere(descriptor, directory)) return descriptor;
    close(descriptor);
    return -1;
}

}  // namespace

std::optional<std::string> ReadFile(const fs::path& file) {
    std::error_code error;
    if (!fs::exists(file, error)) return std::nullopt;
    std::ifstream in(file, std::ios::binary);
    if (!in.is_open() || !fs::is_regular_file(file, error))
        throw tools::Fault(file.string() + ": the file can't be read");
    return std::string{std::istreambuf_iterator<char>(in), {}};
}

void ReplaceFile(const fs::path& file, const std::string& content) {
    const fs::path real = BehindLinks(file);
    tools::NewFile written(real, true);
    written.Write(content);
    std::error_code error;
    if (const auto old = fs::status(real, error); fs::exists(old))
        fs::permissions(written.Path(), old.permissions(), error);
    written.Commit();
}

void CopyFile(const fs::path& from, const fs::path& to) {
    const auto content = ReadFile(from);
    if (!content) throw tools::Fault(from.string() + ": there is no such file");
    tools::NewFile written(to, true);
    written.Write(*content);
    written.Commit();
}

void ReplaceLink(const fs::path& place, const fs::path& target) {
    std::error_code error;
    if (fs::is_symlink(place, error) && fs::read_symlink(place, error) == target) return;
    const fs::path beside = place.parent_path() / ("." + place.filename().string() + ".new");
    fs::remove(beside, error);
    fs::create_symlink(target, beside, error);
    if (!error) fs::rename(beside, place, error);
    if (!error) return;
    std::error_code ignored;
    fs::remove(beside, ignored);
    Fail(place, "the link can't be made", error);
}

void MakeDirectories(const fs::path& directory) {
    std::error_code error;
    fs::create_directories(directory, error);
    if (error) Fail(directory, "the directory can't be made", error);
}

void RemoveIfEmpty(const fs::path& directory) {
    rmdir(directory.c_str());
}

DirectoryLock::DirectoryLock(const fs::path& directory) : directory_(directory), descriptor_(-1) {
    while (descriptor_ < 0) descriptor_ = LockedDirectory(directory);
}

DirectoryLock::~DirectoryLock() {
    RemoveIfEmpty(directory_);
    close(descriptor_);
}

}  // namespace setup
