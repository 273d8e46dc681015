// Colours, fonts and strokes that the widgets share.
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QRect>
#include <QRectF>
#include <cmath>

#include "platform/forms/Controls.h"

class QPainter;

namespace platform::forms {

namespace look {
inline constexpr QRgb face = 0xFFF6F6F7, faceHover = 0xFFFFFFFF, facePressed = 0xFFDCE3EC,
                      faceDisabled = 0xFFD3D3D4;
inline constexpr QRgb line = 0xFF8A8D93, lineSoft = 0xFFABADB2, lineField = 0xFF7F838A;
inline constexpr QRgb ink = 0xFF1E2126, inkSoft = 0xFF6A6E76, inkDisabled = 0xFF9A9DA3;
inline constexpr QRgb accent = 0xFF1F63B5, paper = 0xFFFFFFFF, window = 0xFFEFEFF0;
inline constexpr QRgb veil = 0x50FFFFFF, glow = 0x601F63B5, tint = 0x281F63B5, grid = 0xFFE4E6EA;
inline constexpr double radius = 3;
}  // namespace look

// The palette of all windows, light on every desktop.
QPalette LightPalette();

// The font of boxes.
QFont DialogFont();

// A font of the model, at 96 pixels per inch. Missing fonts have a fallback.
QFont ToQt(const Font& font);

QColor ToQt(Color color);

Qt::Alignment ToQt(Alignment alignment);

// A box with a crisp outline of one logical pixel inside `rect`.
void DrawBox(QPainter& painter, const QRect& rect, const QColor& fill, const QColor& outline,
             double radius = look::radius);

// The ring around the control with the focus.
void DrawFocus(QPainter& painter, const QRect& rect, double radius = look::radius);

enum class Arrow { Up, Down, Left, Right };

// A small triangle in the middle of `rect`.
void DrawArrow(QPainter& painter, const QRect& rect, Arrow arrow, const QColor& color);

inline constexpr float twipsPerPixel = 15.0F;

inline int ToPixels(float twips) {
    return static_cast<int>(std::lround(twips / twipsPerPixel));
}

inline float ToTwips(double pixels) {
    return static_cast<float>(pixels * static_cast<double>(twipsPerPixel));
}

// The model's places count from the corner of the primary screen, which may lie anywhere on a desktop of
// several screens.
inline QPoint ToDesktop(float left, float top, const QRect& primaryScreen) {
    return primaryScreen.topLeft() + QPoint(ToPixels(left), ToPixels(top));
}

}  // namespace platform::forms
