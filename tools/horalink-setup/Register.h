// The register of a family's add-ins, looked at from outside.
#pragma once

#include <filesystem>

#include "platform/data/Database.h"

namespace setup {

inline constexpr platform::TextView addInEntry = u"Horalink.mra";

// False where the register has entries of other add-ins, or can't be read, so that nobody knows.
bool BelongsToAddInAlone(platform::DatabaseEngine& engine, const std::filesystem::path& file);

}  // namespace setup
