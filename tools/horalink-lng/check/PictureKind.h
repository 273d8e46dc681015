// What a picture file is, by its beginning.
#pragma once

#include <filesystem>

namespace lng {

// True for a file of a kind that the dialog can show.
bool IsPicture(const std::filesystem::path& file);

}  // namespace lng
