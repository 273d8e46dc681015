#include "horalink-setup/Market.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <system_error>

#include "horalink-setup/Services.h"
#include "platform/automation/dbus/SessionBusNames.h"
#include "platform/desktop/BaseDirectories.h"
#include "platform/runtime/Paths.h"
#include "platform/runtime/RuntimeError.h"

namespace setup {

namespace fs = std::filesystem;

namespace {

constexpr const char *addIn = "ADDINS/horalink", *host = "MORA32/switchdesk";

fs::path InstalledTree() {
    return FamilyDirectory() / "10001";
}

void MakeLink(const fs::path& link, const fs::path& target) {
    std::error_code error;
    fs::create_directories(link.parent_path(), error);
    if (fs::is_symlink(link, error)) fs::remove(link, error);  // a dangling one
    fs::create_symlink(target, link, error);
    if (error) throw Fault(link.native() + " can't be created: " + error.message());
}

// For all users, the market is a link to the installed tree.
fs::path SharedTree(const std::string& market) {
    const fs::path tree = FamilyDirectory() / market;
    if (!platform::Exists(tree)) MakeLink(tree, InstalledTree().filename());
    return tree;
}

// For one user, only the programs are links, since the directory also holds the user's own files.
fs::path OwnTree(const std::string& market) {
    if (const fs::path shared = FamilyDirectory() / market; platform::Exists(shared / addIn)) return shared;
    const fs::path tree = platform::UserDirectory("XDG_DATA_HOME", ".local/share") / "VELMORA32" / market;
    for (const char* program : {addIn, host})
        if (platform::Exists(InstalledTree() / program) && !platform::Exists(tree / program))
            MakeLink(tree / program, InstalledTree() / program);
    return tree;
}

// A directory that the session bus searches, if possible one that takes precedence over the package's own
// file.
fs::path SharedServices() {
    const auto directories = ServiceDirectories();
    const fs::path prefix = FamilyDirectory().parent_path().parent_path();
    for (const char* data : {"local/share", "share"})
        if (const fs::path directory = prefix / data / "dbus-1/services";
            std::find(directories.begin(), directories.end(), directory) != directories.end())
            return directory;
    throw Fault("the session bus looks neither in " + (prefix / "local/share").native() + " nor in " +
                (prefix / "share").native() + "; XDG_DATA_DIRS sets where it looks");
}

void RequireFirst(const std::string& command) {
    const auto first = FindService(addInClass, ServiceDirectories());
    if (first && first->command != command)
        throw Fault(first->file.native() + " counts first and starts another program; delete it");
}

}  // namespace

fs::path FamilyDirectory() {
    return fs::read_symlink("/proc/self/exe").parent_path().parent_path() / "lib/VELMORA32";
}

std::string CheckedMarket(std::string code) {
    const auto isPart = [](unsigned char c) { return std::isalnum(c) || c == '_' || c == '-'; };
    if (code.size() != 5 || !std::all_of(code.begin(), code.end(), isPart))
        throw std::invalid_argument("a market code has five letters, digits, '_' or '-'");
    for (char& c : code) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return code;
}

std::string ChooseMarket(const std::string& market) {
    const bool isRoot = geteuid() == 0;
    if (!platform::Exists(InstalledTree() / addIn))
        throw Fault((InstalledTree() / addIn).native() + " is missing: install the package 'horalink'");
    if (!isRoot && OwnServices().empty()) throw Fault("there is no home directory, since HOME isn't set");
    const fs::path services = isRoot ? SharedServices() : OwnServices();
    const fs::path tree = isRoot ? SharedTree(market) : OwnTree(market);
    const std::string command = Quoted((tree / addIn).native()) + " -Embedding";
    SetService(addInClass, command, services);
    if (platform::Exists(tree / host))
        SetService("SwitchDeskProj" + market + ".cPBXOle", Quoted((tree / host).native()) + " --service",
                   services);
    if (!isRoot) RequireFirst(command);
    try {
        platform::MakeSessionBusNames()->Reload();
    } catch (const platform::RuntimeError&) {
        // Without a session bus, nothing needs to be reread.
    }
    return (isRoot ? "From their next login on, the hosts of all users get" : "Your hosts get") +
           std::string(" the add-in of market ") + market + ", " + (tree / addIn).native() + ".";
}

}  // namespace setup
