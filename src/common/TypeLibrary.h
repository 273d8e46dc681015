// The identity of the add-in's public classes.
#pragma once

#include "platform/runtime/Object.h"

namespace horalink {

inline constexpr platform::TypeLibrary typeLibrary{"Horalink10013", "{3213E8C5-0679-49E0-83FC-808506AA9FEB}",
                                                   "1.0"};

}  // namespace horalink
