#include "QtFixture.h"
#include "platform/desktop/qt/QtLocale.h"
#include "platform/desktop/qt/QtText.h"

namespace platform {
namespace {

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
    EXPECT_EQ(ToUtf8(locale.DayName(1)), "Sunday");
    EXPECT_EQ(ToUtf8(locale.ShortDayName(2)), "Mon");
    EXPECT_EQ(ToUtf8(locale.DayName(7)), "Saturday");
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

}  // namespace
}  // namespace platform
