// Measures of forms: 15 twips to a logical pixel.
#pragma once

#include <QRect>
#include <cmath>

namespace platform::forms {

inline constexpr float twipsPerPixel = 15.0F;

inline int ToPixels(float twips) {
    return static_cast<int>(std::lround(twips / twipsPerPixel));
}

inline float ToTwips(double pixels) {
    return static_cast<float>(pixels * static_cast<double>(twipsPerPixel));
}

// The model's places are seen from the corner of the primary screen, which on a desktop of several may lie
// anywhere.
inline QPoint ToDesktop(float left, float top, const QRect& primaryScreen) {
    return primaryScreen.topLeft() + QPoint(ToPixels(left), ToPixels(top));
}

}  // namespace platform::forms
