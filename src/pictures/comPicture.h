// The pictures of a form, from the language database, and the background sets that replace them.
#pragma once

#include "common/ModuleData.h"
#include "platform/runtime/Collection.h"

namespace horalink {

// Puts the pictures of tPicture on the form's controls, each as large as the control or form that its row
// names. `index` is the background set, 0 for the default names; `directory` ends in a backslash. On failure
// shows the notice, then the panel that was hidden for the change, and returns false.
bool LoadFormPictures(const Services& services, platform::forms::Form& form, platform::Database* addInDb,
                      platform::Database* commonDb, std::int16_t index, platform::TextView directory);

// Reads the file names of a background set, by default name. Reports nothing: if a name can't be read, the
// default name is used.
void LoadPictureFileNames(platform::Database* commonDb, std::int16_t index, platform::Collection& names);

// The replacement of `defaultName`, or that name itself.
platform::Text GetPictureFileName(const platform::Collection& names, const platform::Text& defaultName);

}  // namespace horalink
