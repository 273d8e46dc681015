// What is seen of the widgets, and read out.
#include <QPainter>
#include <QSvgRenderer>
#include <QTextDocument>
#include <algorithm>
#include <cmath>

#include "QtFixture.h"
#include "platform/qt/Look.h"

namespace platform {
namespace {

using namespace forms;

PictureRef Square(const std::string& color) {
    return std::make_shared<Picture>(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 9 9">)"
                                     R"(<rect width="9" height="9" fill=")" +
                                     color + R"("/></svg>)");
}

struct LookTest : FormTest {
    LookTest() {
        wide.Place(4000, 150, 1500, 300);
        label.Place(4000, 500, 1500, 300);
        track.TextLabel = &label;
    }
    QImage Grab(const char* name) const { return WidgetOf(name).grab().toImage(); }

    CheckBox& wide = form.Add<CheckBox>(u"chkWide");
    Label& label = form.Add<Label>(u"lblWide");
};

TEST_F(LookTest, FocusIsSeenOnEveryWidgetAndAroundTheLabelOfABox) {
    const QRect endOfLabel(WidgetOf("lblWide").geometry().topRight(), QSize(6, 16));
    for (const char* name : {"cmdButton", "txtMinute", "chkWide", "updTime", "Calendar", "chkTrack"}) {
        QWidget& widget = WidgetOf(name);
        const QRect place = &widget == &WidgetOf("chkTrack") ? endOfLabel : widget.geometry();
        QApplication::focusWidget()->clearFocus();
        const QImage without = Window()->grab(place).toImage();
        widget.setFocus(Qt::TabFocusReason);
        EXPECT_TRUE(widget.hasFocus()) << name;
        EXPECT_NE(Window()->grab(place).toImage(), without) << name;
    }
}

TEST_F(LookTest, CaptionsAreDrawnAsTheyStandAndAreNoKeys) {
    const auto drawn = [this](const Text& caption) {
        for (auto* shown : {&button.Caption, &wide.Caption, &label.Caption}) *shown = caption;
        return std::array{Grab("cmdButton"), Grab("chkWide"), Grab("lblWide")};
    };
    const auto with = drawn(u"AB&"), without = drawn(u"AB");
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NE(with[i], without[i]) << i;
    drawn(u"A&B");
    for (const char* name : {"cmdButton", "chkWide"})
        EXPECT_TRUE(WidgetOf<QAbstractButton>(name).shortcut().isEmpty()) << name;
}

TEST_F(LookTest, TextsThatAreReadOut) {
    const Text huge(5'000'000, u'x'), cut = Text(4000, u'x') + u"\u2026";
    const Text caption = u"Read & set [*]", tip = u" A <b>tip</b> ";
    const Table<Text, Text, bool, Text, Text> cases = {{caption, tip, false, caption, tip},
                                                       {caption, tip, true, tip, tip},
                                                       {caption, u"", true, caption, u""},
                                                       {u" ", u" ", false, u"cmdButton", u" "},
                                                       {huge, huge, false, cut, cut}};
    for (const auto& [text, tipText, picture, name, description] : cases) {
        form.Caption = text;
        button.Caption = text;
        button.ToolTipText = tipText;
        button.Picture = picture ? Square("#ff0000") : nullptr;
        const QWidget& widget = WidgetOf("cmdButton");
        EXPECT_EQ(FromQt(widget.accessibleName()), name);
        EXPECT_EQ(FromQt(widget.accessibleDescription()), description);
        QTextDocument shown;
        Qt::mightBeRichText(widget.toolTip()) ? shown.setHtml(widget.toolTip())
                                              : shown.setPlainText(widget.toolTip());
        EXPECT_EQ(FromQt(shown.toPlainText()), description);
        EXPECT_EQ(FromQt(Handle()->title()), text == huge ? cut : text);
    }
}

TEST_F(LookTest, WindowsStayLightOnADarkDesktop) {
    const QImage before = Window()->grab().toImage();
    const QPalette light = QApplication::palette();
    QApplication::setPalette(Qt::black);
    EXPECT_EQ(Window()->grab().toImage(), before);
    QApplication::setPalette(light);
}

TEST(PlaceTest, IsSeenFromTheCornerOfThePrimaryScreen) {
    EXPECT_EQ(ToDesktop(0, 7, {0, 0, 800, 600}), QPoint(0, 0));
    EXPECT_EQ(ToDesktop(150, -300, {1920, 200, 800, 600}), QPoint(1930, 180));
}

TEST_F(LookTest, ButtonShowsItsPictures) {
    const auto shown = [this] { return Grab("cmdButton").pixelColor(32, 12).name().toStdString(); };
    button.Picture = Square("#ff0000");
    EXPECT_EQ(shown(), "#ff0000");
    button.DisabledPicture = Square("#0000ff");
    EXPECT_EQ(shown(), "#ff0000");
    button.Enabled = false;
    EXPECT_EQ(shown(), "#0000ff");
}

// As WCAG 2 measures it.
double Contrast(const QColor& one, const QColor& other) {
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.05 + 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return light / dark;
}

TEST(ContrastTest, TextAndShapesStandOutFromTheirGrounds) {
    using namespace look;
    for (const auto& [text, ground] : {std::pair(ink, paper), {inkSoft, paper}, {paper, accent}, {ink, face}})
        EXPECT_GE(Contrast(text, ground), 4.5) << std::hex << text << " on " << ground;
    for (const auto& [shape, ground] :
         {std::pair(accent, paper), {lineField, paper}, {accent, face}, {line, face}})
        EXPECT_GE(Contrast(shape, ground), 3) << std::hex << shape << " on " << ground;
    for (const auto& entry : std::filesystem::directory_iterator(BACKGROUNDS)) {
        QImage image(474, 291, QImage::Format_RGB32);
        QPainter painter(&image);
        QSvgRenderer renderer(QString::fromStdString(entry.path().string()));
        renderer.render(&painter);
        double least = renderer.isValid() ? 21 : 0;
        for (int i = 0; i < image.width() * image.height(); ++i)
            least = std::min(least,
                             Contrast(ToQt(windowText), image.pixel(i % image.width(), i / image.width())));
        EXPECT_GE(least, 4.5) << entry.path();
    }
}

}  // namespace
}  // namespace platform
