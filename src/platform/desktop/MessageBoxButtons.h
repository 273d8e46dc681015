// The constants whose sum is the buttons value of a message box.
#pragma once

#include <cstdint>

namespace platform::buttons {

inline constexpr std::int32_t okOnly = 0, okCancel = 1, abortRetryIgnore = 2, yesNoCancel = 3, yesNo = 4,
                              retryCancel = 5;
inline constexpr std::int32_t critical = 16, question = 32, exclamation = 48, information = 64;
inline constexpr std::int32_t defaultButton1 = 0, defaultButton2 = 256, defaultButton3 = 512,
                              defaultButton4 = 768;
inline constexpr std::int32_t applicationModal = 0, systemModal = 4096, helpButton = 16384,
                              setForeground = 65536, right = 524288, rightToLeft = 1048576;

}  // namespace platform::buttons
