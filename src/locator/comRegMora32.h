// The directories of the family's installation.
#pragma once

#include "platform/desktop/Desktop.h"
#include "platform/runtime/Text.h"

namespace horalink {

// A base keyword ("ADDINS", "MORA32", another application) and a directory keyword, both in any case, to a
// path in upper case with its trailing backslash; "30000" for a combination that has no path.
platform::Text ResolveDirectory(platform::TextView appPath, const platform::Settings& settings,
                                platform::TextView base, platform::TextView directory);

}  // namespace horalink
