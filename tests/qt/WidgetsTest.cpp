#include <QAbstractButton>
#include <QTextDocument>

#include "QtFixture.h"
#include "platform/forms/qt/Drawing.h"
#include "platform/forms/qt/Twips.h"

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

TEST_F(WidgetsTest, RingOfABoxIsAroundItsLabelToo) {
    forms::Form dialog{u"dlgRing", TheDesktop().Loop(), TheDesktop().Toolkit()};
    auto& label = dialog.Add<forms::Label>(u"lblBox");
    auto& box = dialog.Add<forms::CheckBox>(u"chkBox");
    dialog.Width = 3000;
    dialog.Height = 1500;
    box.Place(300, 300, 195, 240);
    label.Place(570, 315, 1500, 225);
    box.TextLabel = &label;
    dialog.Show();
    QWidget& window = *WindowCalled("dlgRing");
    ASSERT_TRUE(Until([&] { return window.isActiveWindow(); }));
    const auto right = [&] {
        return window.grab(QRect(138, 20, 6, 16)).toImage();
    };  // beside the end of the label
    QWidget& widget = *window.findChild<QWidget*>(QStringLiteral("chkBox"));
    widget.setFocus();
    const QImage ringed = right();
    widget.clearFocus();
    EXPECT_NE(right(), ringed);
}

TEST_F(WidgetsTest, CaptionsAreDrawnAsTheyStandAndAreNoKeys) {
    auto& box = form.Add<forms::CheckBox>(u"chkWide");
    auto& label = form.Add<forms::Label>(u"lblWide");
    TakeAway();
    box.Place(4000, 150, 1500, 300);
    label.Place(4000, 500, 1500, 300);
    FormTest::Show();
    const auto drawn = [&](const char* name, const Text& caption) {
        button.Caption = caption;
        box.Caption = caption;
        label.Caption = caption;
        return Grab(name);
    };
    for (const char* name : {"cmdButton", "chkWide", "lblWide"})
        EXPECT_NE(drawn(name, u"AB&"), drawn(name, u"AB")) << name;
    drawn("cmdButton", u"A&B");
    for (const char* name : {"cmdButton", "chkWide"})
        EXPECT_TRUE(static_cast<QAbstractButton&>(WidgetOf(name)).shortcut().isEmpty()) << name;
}

TEST_F(WidgetsTest, TextsThatAreReadOut) {
    const struct {
        const char16_t *caption, *tip;
        bool picture;
        const char *name, *description;
    } cases[] = {
        {u"Read & set", u" A <b>tip</b> ", false, "Read & set", " A <b>tip</b> "},
        {u"Read & set", u" A <b>tip</b> ", true, " A <b>tip</b> ", " A <b>tip</b> "},
        {u"Read & set", u"", true, "Read & set", ""},
        {u" ", u" ", false, "cmdButton", " "},
    };
    for (const auto& c : cases) {
        button.Caption = Text(c.caption);
        button.ToolTipText = Text(c.tip);
        button.Picture = c.picture ? Square("#ff0000") : nullptr;
        const QWidget& widget = WidgetOf("cmdButton");
        EXPECT_EQ(widget.accessibleName().toStdString(), c.name);
        EXPECT_EQ(widget.accessibleDescription().toStdString(), c.description);
        QTextDocument tip;
        Qt::mightBeRichText(widget.toolTip()) ? tip.setHtml(widget.toolTip())
                                              : tip.setPlainText(widget.toolTip());
        EXPECT_EQ(tip.toPlainText().toStdString(), c.description);
    }
}

TEST_F(WidgetsTest, TextsOfMegabytesAreCut) {
    for (auto* text : {&form.Caption, &button.Caption, &button.ToolTipText}) *text = Text(17000000, u'x');
    Settle();
    for (const QString& shown :
         {Window()->windowTitle(), WidgetOf("cmdButton").toolTip(), WidgetOf("cmdButton").accessibleName()})
        EXPECT_EQ(shown.size(), 4001);
    EXPECT_EQ(form.Caption().size(), 17000000U);
}

TEST(PlaceTest, IsSeenFromTheCornerOfThePrimaryScreen) {
    EXPECT_EQ(forms::ToDesktop(0, 7, {0, 0, 800, 600}), QPoint(0, 0));
    EXPECT_EQ(forms::ToDesktop(150, -300, {1920, 200, 800, 600}), QPoint(1930, 180));
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
