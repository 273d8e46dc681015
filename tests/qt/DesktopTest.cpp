// The desktop apart from input: the loop, the locale's texts, pictures, and what screen readers say.
#include "QtFixture.h"
#include "harness/Files.h"
#include "platform/qt/QtLocale.h"
#include "platform/qt/QtPictureFiles.h"
#include "platform/runtime/Paths.h"

namespace platform {
namespace {

TEST(EventLoopTest, TimersGoOnAfterAnErrorAndEndInsideTheirCall) {
    int calls = 0;
    HandleRef timer;
    const auto held = std::make_shared<int>();
    timer = TheDesktop().Loop().Every(1ms, [&calls, &timer, held] {
        if (++calls < 3) throw RuntimeError(ErrorNumber::Overflow);
        timer.reset();
        Settle();
        EXPECT_GT(held.use_count(), 1) << "what the call holds is still there";
    });
    EXPECT_TRUE(Until([&] { return calls == 3 && held.use_count() == 1; }));
    Settle(10ms);
    EXPECT_EQ(calls, 3);
}

TEST(LocaleTest, TimesHaveNoZoneAndWeeksBeginWithSunday) {
    for (const auto* pattern : {u"tttt HH 'et' mm", u"HH 'et' mm (t)"})
        EXPECT_EQ(FromQt(WithoutTimeZone(ToQt(pattern))), u"HH 'et' mm");
    const QtLocale locale(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(Joined(locale.DayName(1), locale.ShortDayName(2), locale.DayName(7)), "Sunday|Mon|Saturday|");
}

TEST(PictureFilesTest, NamesWhatIsNoPictureByItsPathOnTheMachine) {
    const TemporaryDirectory directory;
    const std::string file = directory.Write("Backgrnd/Text.svg", "<svg");
    const QtPictureFiles files(Layers({directory.Path() / "own", directory.Path()}, {}));
    const Text shared = PathText(directory.Path() / "Backgrnd") + u"\\TEXT.SVG";
    const auto load = [&] { return files.LoadPicture(shared); };
    EXPECT_EQ(FaultOf(load), "481 Invalid picture: '" + file + "'");
    const std::string own = "<svg xmlns='http://www.w3.org/2000/svg' width='7' height='5'/>";
    directory.Write("own/Backgrnd/text.svg", own);
    EXPECT_EQ(files.Dir(shared), u"text.svg");
    EXPECT_EQ(load()->Content(), own);
}

TEST_F(FormTest, ItsTextsAreReadOut) {
    const Text huge(5'000'000, u'x'), cut = Text(4000, u'x') + u"\u2026";
    const Text caption = u"Read & set [*]", tip = u" A <b>tip</b> ";
    const auto red = std::make_shared<forms::Picture>(
        R"(<svg xmlns="http://www.w3.org/2000/svg"><rect width="9" height="9"/></svg>)");
    const Table<Text, Text, forms::PictureRef, Text> cases = {{caption, tip, nullptr, caption},
                                                              {caption, tip, red, tip},
                                                              {caption, u"", red, caption},
                                                              {u" ", u" ", nullptr, u"cmdButton"},
                                                              {huge, huge, nullptr, cut}};
    for (const auto& [text, tipText, picture, name] : cases) {
        form.Caption = text;
        button.Caption = text;
        button.ToolTipText = tipText;
        button.Picture = picture;
        const QWidget& widget = WidgetOf("cmdButton");
        const Text description = tipText == huge ? cut : tipText;
        EXPECT_EQ(FromQt(widget.accessibleName()), name);
        EXPECT_EQ(FromQt(widget.accessibleDescription()), description);
        EXPECT_EQ(FromQt(Handle()->title()), text == huge ? cut : text);
    }
}

}  // namespace
}  // namespace platform
