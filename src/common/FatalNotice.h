// The notice of a failure, in fixed words: it must work without a language database.
#pragma once

#include "platform/desktop/Desktop.h"
#include "platform/runtime/RuntimeError.h"

namespace horalink {

inline constexpr platform::TextView noticeTitle = u"System Fatal Notice";

// "description [number]".
void ShowShortNotice(platform::MessageBoxes& boxes, const platform::RuntimeError& error);

// "Error No: [number]", then the description on a second line.
void ShowLongNotice(platform::MessageBoxes& boxes, const platform::RuntimeError& error);

}  // namespace horalink
