// The command line of the host.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/Misbehaviour.h"

namespace switchdesk {

struct Options {
    std::vector<platform::Text> exchanges;
    std::optional<platform::Text> open;  // the exchange to open the add-in for at the start
    std::string market = "10001";
    std::optional<double> minutesAhead;  // of each exchange; without it, of their own
    std::filesystem::path store;
    std::optional<std::filesystem::path> log;
    bool verbose = false, trace = false, service = false, help = false;
    Misbehaviour misbehaviour;

    // The class of the exchange object.
    std::string ExchangeClass() const { return "SwitchDeskProj" + market + ".cPBXOle"; }
};

// Raises error 5, telling what is wrong, for arguments that can't be understood.
Options ParseOptions(const std::vector<std::string>& arguments);

std::string HelpText();

}  // namespace switchdesk
