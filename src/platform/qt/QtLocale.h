// The machine's locale.
#pragma once

#include <QLocale>

#include "platform/runtime/Format.h"

namespace platform {

// A Qt time pattern without its time zone ("t") and the brackets around it.
QString WithoutTimeZone(const QString& pattern);

class QtLocale : public LocaleTexts {
  public:
    explicit QtLocale(const QLocale& locale = QLocale::system())
        : locale_(locale), timePattern_(WithoutTimeZone(locale.timeFormat(QLocale::LongFormat))) {}

    Text LongDate(Date date) const override;
    Text LongTime(Date time) const override;
    Text DayName(int weekday) const override;
    Text ShortDayName(int weekday) const override;

  private:
    QLocale locale_;
    QString timePattern_;
};

}  // namespace platform
