#include <QLineEdit>
#include <QPainter>

#include "QtFixture.h"
#include "platform/forms/qt/Drawing.h"
#include "platform/forms/qt/Look.h"

namespace platform {
namespace {

using forms::Drawing;

forms::PictureRef RedSvg() {
    return std::make_shared<forms::Picture>(
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="32" height="32"><rect width="32" height="32" fill="#F00"/></svg>)");
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

// Counts the paintings of a widget.
class PaintCounter : public QObject {
  public:
    explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }
    int count = 0;

  private:
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

class WidgetsTest : public ::testing::Test {
  protected:
    WidgetsTest() {
        sample.form.BackColor = 0xFFFFFF;
        sample.form.Show();
        Until([this] { return sample.Window()->isActiveWindow(); });
    }
    ~WidgetsTest() override {
        sample.form.Unload();
        Settle();
    }
    QImage Grab(const char* name) const { return sample.WidgetOf(name).grab().toImage(); }
    QColor Middle(const char* name) const {
        const QImage image = Grab(name);
        return image.pixelColor(image.width() / 2, image.height() / 2);
    }

    SampleForm sample;
};

TEST_F(WidgetsTest, SmallTextBoxesShowTheirTextUncut) {
    for (const char* name : {"txtMinute", "txtHalf"}) {
        const auto& box = static_cast<const QLineEdit&>(sample.WidgetOf(name));
        const int wanted = QFontMetrics(box.font()).tightBoundingRect(box.text()).width();
        EXPECT_GE(InkWidth(Grab(name)), wanted - 2) << name;
    }
}

TEST_F(WidgetsTest, EqualValuesPaintNothing) {
    Settle();
    PaintCounter label(sample.WidgetOf("lblFrame")), calendar(sample.WidgetOf("Calendar"));
    std::vector<std::unique_ptr<PaintCounter>> all;
    for (QWidget* widget : sample.Window()->findChildren<QWidget*>())
        all.push_back(std::make_unique<PaintCounter>(*widget));
    sample.form.Refresh();
    for (const auto& control : sample.form.Controls()) sample.form.ControlChanged(*control);
    Settle();
    for (const auto& widget : all) EXPECT_EQ(widget->count, 0);
    sample.frame.Caption = u"Changed";
    sample.calendar.SetDay(9);
    EXPECT_TRUE(Until([&] { return label.count > 0 && calendar.count > 0; }));
}

TEST_F(WidgetsTest, FocusIsSeenOnEveryWidget) {
    for (const char* name : {"cmdButton", "txtMinute", "txtHalf", "chkTrack", "updTime", "Calendar"}) {
        QWidget& widget = sample.WidgetOf(name);
        QApplication::focusWidget()->clearFocus();
        const QImage without = Grab(name);
        widget.setFocus(Qt::TabFocusReason);
        EXPECT_TRUE(widget.hasFocus()) << name;
        EXPECT_NE(Grab(name), without) << name;
    }
}

TEST_F(WidgetsTest, AccessibleNames) {
    const auto spoken = [this](const char* name) {
        return sample.WidgetOf(name).accessibleName().toStdString();
    };
    EXPECT_EQ(spoken("cmdButton"), "cmdButton");
    sample.button.Caption = u" &Look up ";
    EXPECT_EQ(spoken("cmdButton"), "Look up");
    sample.button.ToolTipText = u" Read the clock ";
    EXPECT_EQ(spoken("cmdButton"), "Read the clock");
    EXPECT_EQ(sample.WidgetOf("cmdButton").toolTip().toStdString(), "Read the clock");
    EXPECT_EQ(spoken("updTime"), "updTime");
    EXPECT_NE(spoken("Calendar").find("October 2003"), std::string::npos);
    sample.calendar.SetMonth(11);
    EXPECT_NE(spoken("Calendar").find("November 2003"), std::string::npos);
}

TEST_F(WidgetsTest, ButtonShowsItsPictures) {
    sample.button.Picture = RedSvg();
    EXPECT_EQ(Middle("cmdButton"), QColor(255, 0, 0));
    sample.button.DisabledPicture = std::make_shared<forms::Picture>(
        R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 32 32"><rect width="32" height="32" fill="#00F"/></svg>)");
    EXPECT_EQ(Middle("cmdButton"), QColor(255, 0, 0));
    sample.button.Enabled = false;
    EXPECT_EQ(Middle("cmdButton"), QColor(0, 0, 255));
}

TEST_F(WidgetsTest, ImageStretchesOrKeepsItsSize) {
    sample.image.Picture = RedSvg();
    EXPECT_EQ(Grab("imgBack").pixelColor(40, 40), QColor(255, 255, 255));
    EXPECT_EQ(Grab("imgBack").pixelColor(20, 20), QColor(255, 0, 0));
    sample.image.Stretch = true;
    EXPECT_EQ(Grab("imgBack").pixelColor(40, 40), QColor(255, 0, 0));
    sample.image.Picture = nullptr;
    EXPECT_EQ(Grab("imgBack").pixelColor(20, 20), QColor(255, 255, 255));
}

TEST_F(WidgetsTest, CalendarMarksTheChosenDayOnly) {
    const auto accents = [this] {
        const QImage image = Grab("Calendar");
        int count = 0;
        for (int x = 0; x < image.width(); ++x)
            for (int y = 0; y < image.height(); ++y) count += image.pixel(x, y) == forms::look::accent;
        return count;
    };
    EXPECT_GT(accents(), 100);
    for (const int none : {0, 31}) {
        sample.calendar.SetMonth(11);
        sample.calendar.SetDay(static_cast<std::int16_t>(none));
        EXPECT_EQ(accents(), 0) << none;
    }
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
    drawing.Take(RedSvg());
    const QPixmap& pixels = drawing.At(QSize(20, 20), 1.5);
    EXPECT_EQ(pixels.size(), QSize(30, 30));
    EXPECT_EQ(pixels.deviceIndependentSize(), QSizeF(20, 20));
}

TEST(FontTest, PointsAreOfNinetySixToTheInch) {
    SampleForm sample;
    const QFont font = forms::ToQt(*sample.button.Font);
    EXPECT_EQ(font.pixelSize(), 11);
    EXPECT_EQ(font.families().first().toStdString(), "Liberation Sans");
    sample.button.Font->Name = u"Arial";
    sample.button.Font->Size = 12;
    EXPECT_EQ(forms::ToQt(*sample.button.Font).families().first().toStdString(), "Arial");
    EXPECT_EQ(forms::ToQt(*sample.button.Font).pixelSize(), 16);
}

}  // namespace
}  // namespace platform
