#include "common/NewFile.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "common/Fault.h"

namespace tools {

namespace {

namespace fs = std::filesystem;

std::string Reason() {
    return std::generic_category().message(errno);
}

[[noreturn]] void FailWriting(const fs::path& file) {
    throw Fault(file.string() + ": the file can't be written: " + Reason());
}

[[noreturn]] void FailAsTaken(const fs::path& file) {
    throw Fault(file.string() + ": the file is there already; --force replaces it");
}

mode_t OrdinaryMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

class Descriptor {
  public:
    Descriptor(const fs::path& file, int flags) : number_(open(file.c_str(), flags | O_CLOEXEC)) {
        if (number_ < 0) FailWriting(file);
    }
    ~Descriptor() { close(number_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int operator*() const { return number_; }

  private:
    int number_;
};

void Synchronize(const fs::path& file, int flags) {
    const Descriptor descriptor(file, flags);
    if (fsync(*descriptor) != 0 && errno != EINVAL) FailWriting(file);
}

fs::path FolderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

}  // namespace

NewFile::NewFile(fs::path target, bool replace) : target_(std::move(target)), replace_(replace) {
    std::error_code error;
    if (fs::is_directory(target_, error)) throw Fault(target_.string() + ": there is a folder of this name");
    if (!replace_ && fs::exists(fs::symlink_status(target_, error))) FailAsTaken(target_);
    std::string name = FolderOf(target_) / ("." + target_.filename().string() + ".XXXXXX");
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0) FailWriting(target_);
    fchmod(descriptor, OrdinaryMode());
    close(descriptor);
    path_ = name;
}

NewFile::~NewFile() {
    if (!path_.empty()) unlink(path_.c_str());
}

void NewFile::Write(std::string_view content) const {
    const Descriptor descriptor(path_, O_WRONLY | O_TRUNC);
    while (!content.empty()) {
        const ssize_t written = write(*descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) FailWriting(target_);
        content.remove_prefix(static_cast<std::size_t>(written));
    }
}

void NewFile::Commit() {
    Synchronize(path_, O_RDONLY);
    const unsigned flags = replace_ ? 0 : RENAME_NOREPLACE;
    if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target_.c_str(), flags) != 0) {
        if (errno == EEXIST) FailAsTaken(target_);
        FailWriting(target_);
    }
    path_.clear();
    Synchronize(FolderOf(target_), O_RDONLY | O_DIRECTORY);
}

}  // namespace tools
