#include "QtFixture.h"
#include "platform/forms/qt/Drawing.h"

namespace platform {
namespace {

forms::PictureRef Square(const std::string& color) {
    return std::make_shared<forms::Picture>(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 9 9">)"
                                            R"(<rect width="9" height="9" fill=")" +
                                            color + R"("/></svg>)");
}

struct WidgetsTest : FormTest {
    void SetUp() override { Show(); }
    QImage Grab(const char* name) const { return WidgetOf(name).grab().toImage(); }
};

TEST_F(WidgetsTest, FocusIsSeenOnEveryWidget) {
    for (const char* name : {"cmdButton", "txtMinute", "chkTrack", "updTime", "Calendar"}) {
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

TEST(DrawingTest, UndecodablePicturesDrawNothing) {
    for (const char* content : {"", "no picture", "<svg"}) {
        const auto picture = std::make_shared<forms::Picture>(content);
        forms::Drawing drawing;
        drawing.Take(picture);
        EXPECT_TRUE(drawing.IsEmpty()) << content;
        EXPECT_TRUE(forms::WindowIcon(picture).isNull()) << content;
    }
}

}  // namespace
}  // namespace platform
