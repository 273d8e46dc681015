#include "horalink-setup/Register.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <system_error>

#include "horalink-setup/Services.h"
#include "platform/runtime/Paths.h"

namespace setup {

namespace fs = std::filesystem;

namespace {

bool IsMine(const fs::path& file) {
    struct stat status{};
    return stat(file.c_str(), &status) == 0 && status.st_uid == geteuid();
}

// A process that has locked a file, or 0. Reads lines such as "1: POSIX  ADVISORY  WRITE 4711 fd:00:1234 0
// EOF".
int LockHolder(const fs::path& file) {
    struct stat status{};
    if (stat(file.c_str(), &status) != 0) return 0;
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        int process = 0;
        unsigned major = 0, minor = 0;
        unsigned long inode = 0;
        if (std::sscanf(line.c_str(), "%*s %*s %*s %*s %d %x:%x:%lu", &process, &major, &minor, &inode) ==
                4 &&
            inode == status.st_ino && makedev(major, minor) == status.st_dev)
            return process;
    }
    return 0;
}

std::string NameOf(int process) {
    std::string name;
    std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), name);
    return name;
}

// The file itself or, if it doesn't exist, the nearest existing directory above it.
fs::path Nearest(fs::path place) {
    while (!platform::Exists(place) && place.has_relative_path()) place = place.parent_path();
    return place;
}

// The first dangling link in a path, from the end, or an empty path.
fs::path DeadLink(fs::path place) {
    std::error_code error;
    for (; place.has_relative_path(); place = place.parent_path())
        if (fs::is_symlink(place, error) && fs::status(place, error).type() == fs::file_type::not_found)
            return place;
    return {};
}

// True if there is too little space for a register and its journal.
bool IsFull(const fs::path& place) {
    constexpr std::uintmax_t needed = 1 << 15;
    std::error_code error;
    const fs::space_info space = fs::space(place, error);
    return !error && space.capacity > 0 && space.available < needed;
}

Problem ProblemOfPermission(const fs::path& place) {
    if (access(place.c_str(), fs::is_directory(place) ? W_OK | X_OK : R_OK | W_OK) == 0) return {};
    Problem problem{"the register can't be written, since " + place.native() + " can't be", {}, true};
    const std::string name = Quoted(place.native());
    if (IsMine(place) && errno != EROFS)
        problem.remedy = "chmod u+rwX " + name;
    else if (!fs::is_directory(place) && !platform::Exists(place.native() + "-journal") &&
             access(place.parent_path().c_str(), W_OK) == 0)
        problem.remedy =
            MoveAway(place) + " && cp --no-preserve=mode " + Quoted(place.native() + ".old") + " " + name;
    else
        return {problem.what, "Ask the administrator of this computer for permission to write there.", false};
    return problem;
}

}  // namespace

std::string MoveAway(const fs::path& file) {
    std::string commands;
    // A journal must stay with its database.
    for (const char* companion : {"-journal", "-wal", ""})
        if (platform::Exists(file.native() + companion) || !*companion)
            commands += (commands.empty() ? "" : " && ") + std::string("mv --backup=numbered ") +
                        Quoted(file.native() + companion) + " " + Quoted(file.native() + ".old" + companion);
    return commands;
}

Problem ProblemOfWriting(const fs::path& ownPlace) {
    if (const fs::path link = DeadLink(ownPlace); !link.empty())
        return {"the register can't be written, since the link " + link.native() + " leads nowhere",
                "rm " + Quoted(link.native()), true};
    if (!platform::Exists(ownPlace))
        for (const char* companion : {"-journal", "-wal"})
            if (const std::string remains = ownPlace.native() + companion; platform::Exists(remains))
                return {remains + " belongs to a register that is missing", "rm " + Quoted(remains), true};
    if (const int process = LockHolder(ownPlace))
        return {"the register is locked by " + NameOf(process) + ", process " + std::to_string(process),
                "kill " + std::to_string(process), true};
    const fs::path place = Nearest(ownPlace);
    if (place != ownPlace && !fs::is_directory(place))
        return {"the register can't be written, since " + place.native() + " is no folder", MoveAway(place),
                true};
    Problem problem = ProblemOfPermission(place);
    // SQLite also creates a journal beside the register.
    if (problem.what.empty() && place == ownPlace) problem = ProblemOfPermission(place.parent_path());
    if (problem.what.empty() && IsFull(place))
        return {"the register can't be written, since no space is left in " + ownPlace.parent_path().native(),
                "Free some space on that disk.", false};
    return problem;
}

}  // namespace setup
