// What the desktop gives beside windows: the loop, the texts of the locale, and picture files.
#include "../unit/Joined.h"
#include "../unit/TemporaryDirectory.h"
#include "QtFixture.h"
#include "platform/qt/QtLocale.h"
#include "platform/qt/QtPictureFiles.h"
#include "platform/runtime/Paths.h"

namespace platform {
namespace {

EventLoop& Loop() {
    return TheDesktop().Loop();
}

TEST(EventLoopTest, EveryGoesOnAfterAnError) {
    int calls = 0;
    const HandleRef timer = Loop().Every(1ms, [&] {
        ++calls;
        throw RuntimeError(ErrorNumber::Overflow);
    });
    EXPECT_TRUE(Until([&] { return calls >= 3; }));
}

TEST(EventLoopTest, HandlesMayBeDroppedInsideTheirCall) {
    int calls = 0;
    HandleRef timer;
    const auto held = std::make_shared<int>();
    timer = Loop().Every(1ms, [&calls, &timer, held] {
        timer.reset();
        Settle();
        calls += held.use_count() > 1;  // what the call holds is still there
    });
    EXPECT_TRUE(Until([&] { return calls > 0; }));
    Settle();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(held.use_count(), 1);
}

TEST(EventLoopTest, QuitCountsBeforeARunAndTheNextRunStartsAnew) {
    bool reached = false;
    const HandleRef timer = Loop().After(0ms, [&] {
        reached = true;
        Loop().Quit();
    });
    Loop().Quit();
    Loop().Run();
    EXPECT_FALSE(reached);
    Loop().Run();
    EXPECT_TRUE(reached);
}

TEST(LocaleTest, TimeZoneIsTakenOutOfPatterns) {
    const std::pair<const char*, const char*> cases[] = {
        {"h:mm:ss Ap t", "h:mm:ss Ap"}, {"HH:mm:ss (t)", "HH:mm:ss"},
        {"t HH:mm:ss", "HH:mm:ss"},     {"HH 'heures et' mm", "HH 'heures et' mm"},
        {"HH:mm:ss tttt", "HH:mm:ss"},
    };
    for (const auto& [pattern, expected] : cases)
        EXPECT_EQ(WithoutTimeZone(QString::fromUtf8(pattern)).toStdString(), expected) << pattern;
}

TEST(LocaleTest, WeeksBeginWithSunday) {
    const QtLocale locale(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(Joined(locale.DayName(1), locale.ShortDayName(2), locale.DayName(7)), "Sunday|Mon|Saturday|");
}

TEST(TextTest, TextsForTheScreenAreCutBetweenCharacters) {
    const Text fitting(4000, u'a'), pair = u"\U0001F600";
    const std::pair<Text, Text> cases[] = {
        {fitting, fitting},
        {fitting + u"b", fitting + u"\u2026"},
        {fitting.substr(2) + pair + u"b", fitting.substr(2) + pair + u"\u2026"},
        {fitting.substr(1) + pair, fitting.substr(1) + u"\u2026"},
    };
    for (const auto& [text, shown] : cases) EXPECT_EQ(FromQt(ToShow(text)), shown) << text.size();
}

TEST(PictureFilesTest, NamesWhatIsNoPictureByItsPathOnTheMachine) {
    const TemporaryDirectory directory;
    const Table<TextView, int, std::filesystem::path> cases = {
        {u"\\BACKGRND\\TEXT.SVG", 481, directory.Write("Backgrnd/Text.svg", "no picture")},
        {u"\\BACKGRND\\Half.svg", 481, directory.Write("Backgrnd/Half.svg", "<svg")},
        {u"\\BACKGRND\\None.svg", 53, directory.Path() / "Backgrnd/None.svg"}};
    const QtPictureFiles files(Layers({directory.Path() / "own", directory.Path()}, {}));
    for (const auto& [path, number, real] : cases) {
        const Text asked = UpperCase(PathText(directory.Path())) + Text(path);
        const RuntimeError error = Raised([&] { files.LoadPicture(asked); });
        EXPECT_EQ(error.Number(), number);
        EXPECT_TRUE(std::string(error.what()).ends_with(": '" + real.native() + "'")) << error.what();
    }
    const std::string own = "<svg xmlns='http://www.w3.org/2000/svg' width='7' height='5'/>";
    const Text shared = PathText(directory.Path() / "Backgrnd") + u"\\TEXT.SVG";
    directory.Write("own/Backgrnd/text.svg", own);
    EXPECT_EQ(files.Dir(shared), u"text.svg");
    EXPECT_EQ(files.LoadPicture(shared)->Content(), own);
}

}  // namespace
}  // namespace platform
