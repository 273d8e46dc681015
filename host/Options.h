// The command line of the host.
#pragma once

#include <QStringList>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/ExchangeList.h"
#include "host/Misbehaviour.h"

namespace switchdesk {

struct Options {
    std::vector<ExchangeEntry> exchanges;
    std::optional<platform::Text> open;  // exchange for which to open the add-in at once
    std::string market = "10001";
    std::optional<double> minutesAhead;  // of every exchange; if unset, each differs
    std::filesystem::path store;
    std::optional<std::filesystem::path> log;
    bool verbose = false, trace = false, service = false, help = false;
    Misbehaviour misbehaviour;

    // The class of the exchange object.
    std::string ExchangeClass() const { return "SwitchDeskProj" + market + ".cPBXOle"; }
};

// `arguments` start with the program, which belongs to `market` unless that is empty. Raises 5 with the
// reason if they are wrong.
Options ParseOptions(const QStringList& arguments, const std::string& market = {});

std::string HelpText();

}  // namespace switchdesk
