#include <QKeyEvent>

#include "QtFixture.h"
#include "platform/desktop/qt/QtLocale.h"
#include "platform/desktop/qt/QtText.h"
#include "platform/forms/qt/KeyCodes.h"

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

TEST(KeyCodesTest, KeysHaveTheCodesOfForms) {
    const struct {
        int key;
        Qt::KeyboardModifiers modifiers;
        int code;
    } cases[] = {
        {Qt::Key_F1, {}, 112},    {Qt::Key_F16, {}, 127},      {Qt::Key_A, Qt::ShiftModifier, 65},
        {Qt::Key_Z, {}, 90},      {Qt::Key_0, {}, 48},         {Qt::Key_9, Qt::KeypadModifier, 105},
        {Qt::Key_Space, {}, 32},  {Qt::Key_Escape, {}, 27},    {Qt::Key_Plus, Qt::KeypadModifier, 107},
        {Qt::Key_Plus, {}, 0},    {Qt::Key_Tab, {}, 0},        {Qt::Key_Left, Qt::KeypadModifier, 37},
        {Qt::Key_Delete, {}, 46}, {Qt::Key_AsciiTilde, {}, 0},
    };
    for (const auto& [key, modifiers, code] : cases)
        EXPECT_EQ(forms::KeyCodeOf(QKeyEvent(QEvent::KeyPress, key, modifiers)), code) << key;
    EXPECT_EQ(forms::ShiftOf(Qt::ShiftModifier | Qt::AltModifier), 5);
    EXPECT_EQ(forms::ShiftOf(Qt::ControlModifier | Qt::KeypadModifier), 2);
}

}  // namespace
}  // namespace platform
