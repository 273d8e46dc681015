// What the tool does to an installation.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "horalink-setup/Places.h"
#include "platform/automation/BusNames.h"
#include "platform/data/Database.h"

namespace setup {

// What the commands work with.
struct Context {
    const Places& places;
    platform::DatabaseEngine& engine;
    platform::BusNames& bus;
};

struct AddRequest {
    std::string market;
    std::optional<std::filesystem::path> root, from;  // by default the user's data directory, and the package
    std::optional<std::string> language;              // by default as it is, or that of the environment
    bool force = false;
};

// What a command did, as sentences for the one who called.
using Told = std::vector<std::string>;

// Each of them raises WrongCall for what the call asks in vain and Fault for what stands in its way. They may
// run at the same time as others and themselves.

// Enters an installation; one that is there is mended and keeps what isn't told anew.
Told Add(const Context& context, const AddRequest& request);
// Without a market, the only one that there is.
Told Remove(const Context& context, const std::optional<std::string>& market);
Told Use(const Context& context, const std::string& market);
// Without a market, the one in use.
Told ChangeLanguage(const Context& context, const std::string& language,
                    const std::optional<std::string>& market, bool force);

// The command line that runs a program, "horalink" or "switchdesk", of the user's tree, with the market in
// use where none is told. Enters an installation first where there is none.
std::vector<std::string> CommandToStart(const Context& context, const std::optional<std::string>& market,
                                        const std::string& program,
                                        const std::vector<std::string>& arguments);

}  // namespace setup
