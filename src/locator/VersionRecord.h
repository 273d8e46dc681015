// The add-in's entry in the family's register.
#pragma once

#include "common/ModuleData.h"

namespace horalink {

// Writes the version into the first row of the register with this name, if there is one. On failure shows the
// notice and returns false.
bool UpdateAddInVersion(const Services& services, platform::TextView base, platform::TextView appName,
                        platform::TextView version);

}  // namespace horalink
