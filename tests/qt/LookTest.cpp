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
    for (const char* name : {"cmdButton", "txtMinute", "chkWide", "updTime", "Calendar"}) {
        QWidget& widget = WidgetOf(name);
        QApplication::focusWidget()->clearFocus();
        const QImage without = Grab(name);
        widget.setFocus(Qt::TabFocusReason);
        EXPECT_TRUE(widget.hasFocus()) << name;
        EXPECT_NE(Grab(name), without) << name;
    }
    const auto endOfLabel = [this] {
        const QRect place = WidgetOf("lblWide").geometry();
        return Window()->grab(QRect(place.topRight(), QSize(6, 16))).toImage();
    };
    WidgetOf("chkTrack").setFocus();
    const QImage ringed = endOfLabel();
    QApplication::focusWidget()->clearFocus();
    EXPECT_NE(endOfLabel(), ringed);
}

TEST_F(LookTest, CaptionsAreDrawnAsTheyStandAndAreNoKeys) {
    const auto drawn = [this](const char* name, const Text& caption) {
        for (auto* shown : {&button.Caption, &wide.Caption, &label.Caption}) *shown = caption;
        return Grab(name);
    };
    for (const char* name : {"cmdButton", "chkWide", "lblWide"})
        EXPECT_NE(drawn(name, u"AB&"), drawn(name, u"AB")) << name;
    drawn("cmdButton", u"A&B");
    for (const char* name : {"cmdButton", "chkWide"})
        EXPECT_TRUE(WidgetOf<QAbstractButton>(name).shortcut().isEmpty()) << name;
}

TEST_F(LookTest, TextsThatAreReadOut) {
    const Text huge(5'000'000, u'x'), cut = Text(4000, u'x') + u"\u2026";
    const Text caption = u"Read & set", tip = u" A <b>tip</b> ";
    const Table<Text, Text, bool, Text, Text> cases = {
        {caption, tip, false, caption, tip}, {caption, tip, true, tip, tip},
        {caption, u"", true, caption, u""},  {u" ", u" ", false, u"cmdButton", u" "},
        {huge, huge, false, cut, cut},
    };
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
        EXPECT_LE(Handle()->title().size(), 4001);
    }
    form.Caption = u"10001 [*]";
    EXPECT_EQ(Handle()->title().toStdString(), "10001 [*]");
}

TEST_F(LookTest, WindowsStayLightOnADarkDesktop) {
    const auto shown = [this] { return Window()->grab().toImage(); };
    const QImage before = shown();
    const QPalette light = QApplication::palette();
    QApplication::setPalette(Qt::black);
    EXPECT_EQ(shown(), before);
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

// Whether what is to be read stands out from its ground, as WCAG 2 measures it for level AA.
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
    const Table<const char*, QRgb, QRgb, double> cases = {
        {"day of the calendar", look::ink, look::paper, forText},
        {"name of a day", look::inkSoft, look::paper, forText},
        {"chosen day", look::paper, look::accent, forText},
        {"button", look::ink, look::face, forText},
        {"tick", look::accent, look::paper, forShapes},
        {"edge of a field", look::lineField, look::paper, forShapes},
        {"edge of a button", look::line, look::face, forShapes},
        {"ring of the focus", look::accent, look::face, forShapes}};
    for (const auto& [what, ink, ground, least] : cases)
        EXPECT_GE(Contrast(QColor(ink), QColor(ground)), least) << what;
}

TEST(ContrastTest, LabelsStandOutFromEveryBackground) {
    for (const auto& entry : std::filesystem::directory_iterator(BACKGROUNDS)) {
        QImage image(474, 291, QImage::Format_RGB32);
        QPainter painter(&image);
        QSvgRenderer renderer(QString::fromStdString(entry.path().string()));
        renderer.render(&painter);
        double least = renderer.isValid() ? 21 : 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                least = std::min(least, Contrast(ToQt(windowText), image.pixelColor(x, y)));
        EXPECT_GE(least, forText) << entry.path();
    }
}

}  // namespace
}  // namespace platform
