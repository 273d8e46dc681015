#include "platform/runtime/WholeFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <system_error>

namespace platform {

namespace fs = std::filesystem;

namespace {

void Require(bool succeeded) {
    if (!succeeded) throw std::system_error(errno, std::generic_category());
}

// An open file, closed on destruction.
struct Descriptor {
    explicit Descriptor(int opened) : number(opened) {}
    ~Descriptor() { close(number); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    const int number;
};

// A file without a name, which vanishes with the process unless it is published. Where the file system
// doesn't support that, e.g. over a network, the draft gets a hidden name.
class Draft {
  public:
    explicit Draft(const fs::path& target)
        : target_(target), file_(open(target.parent_path().c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666)) {
        if (file_.number >= 0) return;
        Require(errno == EOPNOTSUPP || errno == EISDIR);
        hidden_ = target.parent_path() / ("." + target.filename().native() + "." + std::to_string(getpid()));
        unlink(hidden_.c_str());  // left by a killed process with the same number
        named_ = open(hidden_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
        Require(named_ >= 0);
    }
    ~Draft() {
        if (named_ < 0) return;
        close(named_);
        unlink(hidden_.c_str());
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    void Write(std::string_view content) const {
        while (!content.empty()) {
            const ssize_t written = write(Number(), content.data(), content.size());
            Require(written >= 0 || errno == EINTR);
            if (written > 0) content.remove_prefix(static_cast<std::size_t>(written));
        }
    }

    // Never replaces a file.
    void Publish() const {
        Require(fsync(Number()) == 0);
        const std::string name = named_ < 0 ? "/proc/self/fd/" + std::to_string(Number()) : hidden_.native();
        Require(linkat(AT_FDCWD, name.c_str(), AT_FDCWD, target_.c_str(), AT_SYMLINK_FOLLOW) == 0 ||
                errno == EEXIST);
    }

  private:
    int Number() const { return named_ < 0 ? file_.number : named_; }

    const fs::path& target_;
    const Descriptor file_;
    int named_ = -1;
    fs::path hidden_;
};

void CopyContent(const fs::path& from, const Draft& draft) {
    const Descriptor source(open(from.c_str(), O_RDONLY | O_CLOEXEC));
    Require(source.number >= 0);
    char buffer[65536];
    for (;;) {
        const ssize_t read = ::read(source.number, buffer, sizeof buffer);
        Require(read >= 0 || errno == EINTR);
        if (read == 0) return;
        if (read > 0) draft.Write({buffer, static_cast<std::size_t>(read)});
    }
}

}  // namespace

void CopyWhole(const fs::path& from, const fs::path& to) {
    fs::create_directories(to.parent_path());
    const Draft draft(to);
    CopyContent(from, draft);
    draft.Publish();
    const Descriptor directory(open(to.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    Require(directory.number >= 0 && (fsync(directory.number) == 0 || errno == EINVAL));
}

}  // namespace platform
