#include "platform/runtime/ProgramFile.h"

#include <sys/auxv.h>

#include <system_error>

#include "platform/runtime/Text.h"

namespace platform {

namespace fs = std::filesystem;

namespace {

// Resolving ".." textually is wrong after a link to a directory.
fs::path WithoutDots(const fs::path& file) {
    std::error_code error;
    const fs::path directory = file.parent_path();
    const fs::path plain = directory.lexically_normal();
    return (fs::equivalent(plain, directory, error) ? plain : fs::canonical(directory)) / file.filename();
}

}  // namespace

fs::path ProgramFile() {
    const auto* started = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
    std::error_code error;
    // If the program was started by a file descriptor, AT_EXECFN holds no lasting path.
    if (!started || !fs::exists(started, error)) return fs::read_symlink("/proc/self/exe");
    return ProgramFile(fs::path(started));
}

fs::path ProgramFile(const fs::path& started) {
    fs::path file = WithoutDots(fs::absolute(started));
    while (FamilyTree(file).empty() && fs::is_symlink(file))
        file = WithoutDots(file.parent_path() / fs::read_symlink(file));
    return file;
}

fs::path FamilyTree(const fs::path& program) {
    const fs::path tree = program.parent_path().parent_path();
    const std::string family = tree.parent_path().filename();
    return EqualsIgnoringCase(FromUtf8(family), u"VELMORA32") ? tree : fs::path();
}

}  // namespace platform
