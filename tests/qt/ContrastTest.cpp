// Whether everything that is to be read stands out from its ground, as WCAG 2 measures it for level AA.
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>

#include "QtFixture.h"
#include "platform/forms/qt/Look.h"

namespace platform {
namespace {

using namespace forms;

constexpr double forText = 4.5, forShapes = 3;

double Linear(double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& color) {
    return 0.2126 * Linear(color.redF()) + 0.7152 * Linear(color.greenF()) + 0.0722 * Linear(color.blueF());
}

double Contrast(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({Luminance(one), Luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

TEST(ContrastTest, InkStandsOutFromEachGround) {
    const struct {
        const char* what;
        QRgb ink, ground;
        double least;
    } cases[] = {
        {"text of a box", look::ink, look::window, forText},
        {"day of the calendar", look::ink, look::paper, forText},
        {"name of a day", look::inkSoft, look::paper, forText},
        {"chosen day", look::paper, look::accent, forText},
        {"button", look::ink, look::face, forText},
        {"pressed button", look::ink, look::facePressed, forText},
        {"tick", look::accent, look::paper, forShapes},
        {"edge of a field", look::lineField, look::paper, forShapes},
        {"edge of a button", look::line, look::face, forShapes},
        {"ring of the focus", look::accent, look::face, forShapes},
    };
    for (const auto& [what, ink, ground, least] : cases)
        EXPECT_GE(Contrast(QColor(ink), QColor(ground)), least) << what;
}

TEST(ContrastTest, LabelsStandOutFromEveryBackground) {
    const QColor label = ToQt(windowText);
    for (const auto& entry : std::filesystem::directory_iterator(BACKGROUNDS)) {
        QSvgRenderer renderer(QString::fromStdString(entry.path().string()));
        ASSERT_TRUE(renderer.isValid()) << entry.path();
        QImage image(474, 291, QImage::Format_RGB32);
        QPainter painter(&image);
        renderer.render(&painter);
        painter.end();
        double least = 21;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                least = std::min(least, Contrast(label, image.pixelColor(x, y)));
        EXPECT_GE(least, forText) << entry.path();
    }
}

using DarkDesktopTest = FormTest;

TEST_F(DarkDesktopTest, WindowsStayLightOnADarkDesktop) {
    QPalette dark;
    dark.setColor(QPalette::Window, Qt::black);
    dark.setColor(QPalette::WindowText, Qt::white);
    QApplication::setPalette(dark);
    Show();
    const QImage shown = Window()->grab().toImage();
    QApplication::setPalette(LightPalette());
    EXPECT_GE(Contrast(shown.pixelColor(395, 295), QColor(look::ink)), forText);
}

}  // namespace
}  // namespace platform
