// The command line of the host.
#pragma once

#include <QStringList>
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

// `arguments` begin with the program, which belongs to `market` unless that is empty. Raises 5, saying what
// is wrong, for those that can't be understood.
Options ParseOptions(const QStringList& arguments, const std::string& market = {});

std::string HelpText();

}  // namespace switchdesk
