#include "platform/runtime/ProgramFile.h"

#include <sys/auxv.h>

#include <system_error>

namespace platform {

namespace fs = std::filesystem;

namespace {

// Taking ".." away by text is wrong behind a link to a directory.
fs::path WithoutDots(const fs::path& directory) {
    std::error_code error;
    fs::path plain = directory.lexically_normal();
    return fs::equivalent(plain, directory, error) ? plain : fs::canonical(directory);
}

}  // namespace

fs::path ProgramFile() {
    const auto* started = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
    std::error_code error;
    // A program that was started by an open file has no path of its own there.
    if (!started || !fs::exists(started, error)) return fs::read_symlink("/proc/self/exe");
    const fs::path file = fs::absolute(started);
    return WithoutDots(file.parent_path()) / file.filename();
}

}  // namespace platform
