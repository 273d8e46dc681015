// Measures of forms: 15 twips to a logical pixel.
#pragma once

#include <cmath>

namespace platform::forms {

inline constexpr float twipsPerPixel = 15.0F;

inline int ToPixels(float twips) {
    return static_cast<int>(std::lround(twips / twipsPerPixel));
}

inline float ToTwips(double pixels) {
    return static_cast<float>(pixels * static_cast<double>(twipsPerPixel));
}

}  // namespace platform::forms
