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

TEST(LocaleTest, DatesFollowTheLocale) {
    const Date date = MakeDate(DateParts{2003, 10, 5, 21, 4, 9});
    const QtLocale german(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(ToUtf8(german.LongDate(date)), "Sonntag, 5. Oktober 2003");
    EXPECT_EQ(ToUtf8(german.DayName(1)), "Sonntag");
    EXPECT_EQ(ToUtf8(german.DayName(7)), "Samstag");
    const QtLocale american(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(ToUtf8(american.ShortDayName(2)), "Mon");
    EXPECT_EQ(ToUtf8(american.LongTime(date)).substr(0, 7), "9:04:09");
}

}  // namespace
}  // namespace platform
