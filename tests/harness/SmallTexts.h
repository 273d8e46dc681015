// Texts for the dialog, each different from every other, so that a mix-up shows.
#pragma once

#include "harness/MemoryDatabases.h"

namespace harness {

// Adds Horalink.lng, Common.LNG and Register.mdb with every table that the add-in reads, in the schema of
// the databases in data/, and a few rows each.
void AddSmallTexts(MemoryDatabases& databases);

}  // namespace harness
