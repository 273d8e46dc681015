#include "host/Difference.h"

#include <QCoreApplication>
#include <QLocale>
#include <algorithm>

namespace switchdesk {

namespace {

QString Amount(std::chrono::microseconds difference) {
    const double seconds = std::chrono::duration<double>(difference).count();
    if (seconds < 120)
        return QCoreApplication::translate("Difference", "%1 s")
            .arg(QLocale().toString(seconds, 'f', seconds < 10 ? 1 : 0));
    if (seconds < 2 * 3600)
        return QCoreApplication::translate("Difference", "%1 min").arg(qRound64(seconds / 60));
    if (seconds < 2 * 86400)
        return QCoreApplication::translate("Difference", "%1 h").arg(qRound64(seconds / 3600));
    return QCoreApplication::translate("Difference", "%1 days").arg(qRound64(seconds / 86400));
}

}  // namespace

QString DifferenceText(const Exchange::Reading& reading) {
    constexpr std::chrono::microseconds shownAsNone = std::chrono::milliseconds(50);
    const auto difference = std::chrono::abs(reading.ahead);
    if (difference < std::max(reading.within, shownAsNone))
        return QCoreApplication::translate("Difference", "right");
    const QString words = reading.ahead.count() > 0 ? QCoreApplication::translate("Difference", "%1 fast")
                                                    : QCoreApplication::translate("Difference", "%1 slow");
    return words.arg(Amount(difference));
}

}  // namespace switchdesk
