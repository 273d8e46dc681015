#include "platform/qt/Look.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>

#include "platform/qt/QtText.h"

namespace platform::forms {

namespace {

constexpr int dialogFontPixels = 13;

QStringList WithFallback(const QString& family) {
    QStringList families{QStringLiteral("Liberation Sans"), QStringLiteral("DejaVu Sans")};
    // Debian lacks the default font of forms, and the font system might replace it by any other.
    if (family.compare(QStringLiteral("MS Sans Serif"), Qt::CaseInsensitive) != 0) families.prepend(family);
    return families;
}

}  // namespace

QPalette LightPalette() {
    QPalette palette{QColor(look::face), QColor(look::window)};
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, QColor(look::ink));
    palette.setColor(QPalette::Base, QColor(look::paper));
    palette.setColor(QPalette::Highlight, QColor(look::accent));
    palette.setColor(QPalette::HighlightedText, QColor(look::paper));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(look::inkDisabled));
    return palette;
}

QFont DialogFont() {
    QFont font;
    font.setFamilies(WithFallback(QStringLiteral("Liberation Sans")));
    font.setPixelSize(dialogFontPixels);
    return font;
}

QFont ToQt(const Font& font) {
    constexpr double pixelsPerPoint = 96.0 / 72.0;
    QFont result;
    result.setFamilies(WithFallback(platform::ToQt(font.Name())));
    result.setPixelSize(
        std::max(1, static_cast<int>(std::lround(static_cast<double>(font.Size()) * pixelsPerPoint))));
    result.setBold(font.Bold);
    return result;
}

QColor ToQt(Color color) {
    return QColor::fromRgb(static_cast<QRgb>(color));
}

Qt::Alignment ToQt(Alignment alignment) {
    switch (alignment) {
        case Alignment::Right:
            return Qt::AlignRight;
        case Alignment::Center:
            return Qt::AlignHCenter;
        case Alignment::Left:
            break;
    }
    return Qt::AlignLeft;
}

void DrawBox(QPainter& painter, const QRect& rect, const QColor& fill, const QColor& outline, double radius) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(outline, 1));
    painter.setBrush(fill);
    // Half a pixel inwards, so that the line covers whole pixels.
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.restore();
}

void DrawFocus(QPainter& painter, const QRect& rect, double radius) {
    DrawBox(painter, rect, Qt::transparent, QColor(look::accent), radius);
    DrawBox(painter, rect.adjusted(1, 1, -1, -1), Qt::transparent, QColor::fromRgba(look::glow), radius - 1);
}

void DrawArrow(QPainter& painter, const QRect& rect, Arrow arrow, const QColor& color) {
    constexpr double halfWidth = 3.5, halfHeight = 2;
    const QPointF middle = QRectF(rect).center();
    const bool upright = arrow == Arrow::Up || arrow == Arrow::Down;
    const double towards = arrow == Arrow::Up || arrow == Arrow::Left ? -halfHeight : halfHeight;
    const auto point = [&](double along, double across) {
        return middle + (upright ? QPointF(across, along) : QPointF(along, across));
    };
    QPainterPath triangle;
    triangle.moveTo(point(-towards, -halfWidth));
    triangle.lineTo(point(-towards, halfWidth));
    triangle.lineTo(point(towards, 0));
    triangle.closeSubpath();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(triangle, color);
    painter.restore();
}

}  // namespace platform::forms
