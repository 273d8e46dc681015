#include <QLineEdit>
#include <QPainter>

#include "QtFixture.h"
#include "platform/forms/qt/Drawing.h"
#include "platform/forms/qt/Look.h"

namespace platform {
namespace {

using forms::Drawing;

forms::PictureRef Square(const std::string& color) {
    return std::make_shared<forms::Picture>(
        R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 32 32" width="32" height="32">)"
        R"(<rect width="32" height="32" fill=")" +
        color + R"("/></svg>)");
}

// The columns between the first and the last that have ink, counted in pixels.
int InkWidth(const QImage& image) {
    int first = image.width(), last = -1;
    for (int x = 0; x < image.width(); ++x)
        for (int y = 0; y < image.height(); ++y)
            if (qGray(image.pixel(x, y)) < 160) {
                first = std::min(first, x);
                last = std::max(last, x);
            }
    return last - first + 1;
}

class WidgetsTest : public FormTest {
  protected:
    void SetUp() override {
        form.BackColor = 0xFFFFFF;
        Show();
    }
    QImage Grab(const char* name) const { return WidgetOf(name).grab().toImage(); }
};

TEST_F(WidgetsTest, SmallTextBoxesShowTheirTextUncut) {
    for (const char* name : {"txtMinute", "txtHalf"}) {
        const auto& box = static_cast<const QLineEdit&>(WidgetOf(name));
        const int wanted = QFontMetrics(box.font()).tightBoundingRect(box.text()).width();
        EXPECT_GE(InkWidth(Grab(name)), wanted - 2) << name;
    }
}

TEST_F(WidgetsTest, FocusIsSeenOnEveryWidget) {
    for (const char* name : {"cmdButton", "txtMinute", "txtHalf", "chkTrack", "updTime", "Calendar"}) {
        QWidget& widget = WidgetOf(name);
        QApplication::focusWidget()->clearFocus();
        const QImage without = Grab(name);
        widget.setFocus(Qt::TabFocusReason);
        EXPECT_TRUE(widget.hasFocus()) << name;
        EXPECT_NE(Grab(name), without) << name;
    }
}

TEST_F(WidgetsTest, ButtonShowsItsPictures) {
    const auto shown = [this] { return Grab("cmdButton").pixelColor(32, 12).name().toStdString(); };
    button.Picture = Square("#ff0000");
    EXPECT_EQ(shown(), "#ff0000");
    button.DisabledPicture = Square("#0000ff");
    EXPECT_EQ(shown(), "#ff0000");
    button.Enabled = false;
    EXPECT_EQ(shown(), "#0000ff");
}

TEST_F(WidgetsTest, ImageStretchesOrKeepsItsSize) {
    const auto shown = [this](int place) {
        return Grab("imgBack").pixelColor(place, place).name().toStdString();
    };
    image.Picture = Square("#ff0000");
    EXPECT_EQ(shown(40), "#ffffff");
    EXPECT_EQ(shown(20), "#ff0000");
    image.Stretch = true;
    EXPECT_EQ(shown(40), "#ff0000");
    image.Picture = nullptr;
    EXPECT_EQ(shown(20), "#ffffff");
}

TEST(DrawingTest, UndecodablePicturesDrawNothing) {
    TheDesktop();
    for (const char* content : {"", "no picture", "<svg"}) {
        Drawing drawing;
        drawing.Take(std::make_shared<forms::Picture>(content));
        EXPECT_TRUE(drawing.IsEmpty()) << content;
        EXPECT_TRUE(forms::WindowIcon(std::make_shared<forms::Picture>(content)).isNull()) << content;
    }
}

TEST(DrawingTest, SharpAtTheScreensRatio) {
    TheDesktop();
    Drawing drawing;
    drawing.Take(Square("#ff0000"));
    const QPixmap& pixels = drawing.At(QSize(20, 20), 1.5);
    EXPECT_EQ(pixels.size(), QSize(30, 30));
    EXPECT_EQ(pixels.deviceIndependentSize(), QSizeF(20, 20));
}

TEST_F(WidgetsTest, FontPointsAreOfNinetySixToTheInch) {
    const QFont font = forms::ToQt(*button.Font);
    EXPECT_EQ(font.pixelSize(), 11);
    EXPECT_EQ(font.families().first().toStdString(), "Liberation Sans");
    button.Font->Name = u"Arial";
    button.Font->Size = 12;
    EXPECT_EQ(forms::ToQt(*button.Font).families().first().toStdString(), "Arial");
    EXPECT_EQ(forms::ToQt(*button.Font).pixelSize(), 16);
}

}  // namespace
}  // namespace platform
