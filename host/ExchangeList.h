// Which exchanges there are, from the command line or the user's file.
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
    bool maySet = false;  // of a real one
};

// Reads NAME, NAME=local or NAME=ssh:[user@]host, the last two with or without ",set". Raises 5 for anything
// else.
ExchangeEntry ParseExchange(const QString& line);

// Those of a file with such lines; none if there is no file. Raises 75 if it can't be read, and 5 as above.
std::vector<ExchangeEntry> ReadExchanges(const std::filesystem::path& file);

// switchdesk/exchanges.ini in the user's directory of settings.
std::filesystem::path ExchangesFile();

}  // namespace switchdesk
