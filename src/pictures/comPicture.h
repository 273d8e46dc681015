// Pictures of a form as data, and the numbered background sets that replace them.
#pragma once

#include "common/ModuleData.h"
#include "platform/runtime/Collection.h"

namespace horalink {

// Puts the pictures that tPicture names for this form on its controls, each as large as the control or
// form that its row tells. `index` is the background set, 0 for the default names; `directory` ends in a
// backslash. On failure shows the notice, then the panel that was hidden for the change, and returns false.
bool LoadFormPictures(const Services& services, platform::forms::Form& form, platform::Database* addInDb,
                      platform::Database* commonDb, std::int16_t index, platform::TextView directory);

// Reads the file names of a background set, by their default names. Reports nothing: what can't be read
// is missing, and the default names serve in its place.
void LoadPictureFileNames(platform::Database* commonDb, std::int16_t index, platform::Collection& names);

// The name that takes the place of `defaultName`, or that name itself.
platform::Text GetPictureFileName(const platform::Collection& names, const platform::Text& defaultName);

}  // namespace horalink
