// Checks of what dresses the dialog: its texts, fonts and pictures.
#pragma once

#include "check/CheckedDatabase.h"

namespace lng {

// Caption and font of the window.
void CheckForms(CheckedDatabase& database);

// Captions, fonts and tool tips of the controls. What keeps the text of its design is reported too.
void CheckControls(CheckedDatabase& database);

// The pictures of the window, which lie in `folder`; without one nobody looks for the files.
void CheckPictures(CheckedDatabase& database, const std::optional<std::filesystem::path>& folder);

// The pictures of the background sets.
void CheckPictureNames(CheckedDatabase& database, const std::optional<std::filesystem::path>& folder);

}  // namespace lng
