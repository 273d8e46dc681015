// The directories of the family's installation.
#pragma once

#include "platform/desktop/Desktop.h"
#include "platform/runtime/Text.h"

namespace horalink {

// The path for a base keyword ("ADDINS", "MORA32", another application) and a directory keyword, both in any
// case: in upper case, with a trailing backslash. "30000" for an unknown combination.
platform::Text ResolveDirectory(platform::TextView appPath, const platform::Settings& settings,
                                platform::TextView base, platform::TextView directory);

}  // namespace horalink
