// The register of a family's add-ins, looked at from outside.
#pragma once

#include <filesystem>

#include "platform/data/Database.h"

namespace setup {

inline constexpr platform::TextView addInEntry = u"Horalink.mra";

enum class RegisterUse {
    AddInAlone,
    Shared,      // there are entries of other add-ins
    Unreadable,  // so that nobody knows
};

RegisterUse UseOfRegister(platform::DatabaseEngine& engine, const std::filesystem::path& file);

}  // namespace setup
