// The list of exchanges, from the command line or the user's file.
#pragma once

#include <QStringList>
#include <filesystem>
#include <vector>

#include "platform/runtime/Text.h"

namespace switchdesk {

struct ExchangeEntry {
    platform::Text name{};
    bool isSimulated = true;
    QString address{};    // [user@]host of a real exchange, or empty for this PC
    bool maySet = false;  // whether the clock of a real exchange may be set
};

// Reads NAME, NAME=local or NAME=ssh:[user@]host, the last two with or without ",set". Raises 5 for anything
// else.
ExchangeEntry ParseExchange(const QString& line);

// Reads a file of such lines; a missing file has none. Raises 75 if it can't be read, and 5 as above.
std::vector<ExchangeEntry> ReadExchanges(const std::filesystem::path& file);

// switchdesk/exchanges.ini in the user's configuration directory.
std::filesystem::path ExchangesFile();

}  // namespace switchdesk
