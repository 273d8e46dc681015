// The fixed notice of a failure that no language database can word.
#pragma once

#include "platform/desktop/Desktop.h"
#include "platform/runtime/RuntimeError.h"

namespace horalink {

inline constexpr platform::TextView noticeTitle = u"System Fatal Notice";

// "description [number]".
void ShowShortNotice(platform::MessageBoxes& boxes, const platform::RuntimeError& error);

// "Error No: [number]", and the description in a second line.
void ShowLongNotice(platform::MessageBoxes& boxes, const platform::RuntimeError& error);

}  // namespace horalink
