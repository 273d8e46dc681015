// The market that the running copy belongs to.
#pragma once

#include "platform/runtime/Text.h"

namespace horalink {

// The five characters of the market code in the directory of the executable, upper-cased, or "NONE".
// `directory` is the keyword of that directory, in any case: "ADDINS", "MORA32" or another application's.
platform::Text GetMarketCode(platform::TextView appPath, platform::TextView directory);

}  // namespace horalink
