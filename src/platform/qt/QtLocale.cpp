#include "platform/qt/QtLocale.h"

#include <QDateTime>

#include "platform/qt/QtText.h"

namespace platform {

namespace {

// Platform days run from 1 for Sunday, those of Qt from 1 for Monday to 7 for Sunday.
int QtDay(int weekday) {
    return weekday == 1 ? Qt::Sunday : weekday - 1;
}

}  // namespace

QString WithoutTimeZone(const QString& pattern) {
    QString result;
    bool quoted = false;
    for (const QChar c : pattern) {
        if (c == u'\'') quoted = !quoted;
        if (quoted || c != u't') result += c;
    }
    return result.remove(QStringLiteral("()")).trimmed();
}

Text QtLocale::LongDate(Date date) const {
    const DateParts parts = PartsOf(date);
    return FromQt(locale_.toString(QDate(parts.year, parts.month, parts.day), QLocale::LongFormat));
}

Text QtLocale::LongTime(Date time) const {
    const DateParts parts = PartsOf(time);
    return FromQt(locale_.toString(QTime(parts.hour, parts.minute, parts.second), timePattern_));
}

Text QtLocale::DayName(int weekday) const {
    return FromQt(locale_.dayName(QtDay(weekday), QLocale::LongFormat));
}

Text QtLocale::ShortDayName(int weekday) const {
    return FromQt(locale_.dayName(QtDay(weekday), QLocale::ShortFormat));
}

}  // namespace platform
