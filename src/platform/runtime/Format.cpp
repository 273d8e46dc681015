#include "platform/runtime/Format.h"

#include <cstdio>

namespace platform {

namespace {

Text Padded(int number, int digits) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%0*d", digits, number);
    return FromUtf8(buffer);
}

struct Code {
    TextView letters;
    Text (*text)(Date, const LocaleTexts&);
};

// Longer codes stand ahead of their prefixes.
const Code codes[] = {
    {u"yyyy", [](Date d, const LocaleTexts&) { return Padded(PartsOf(d).year, 4); }},
    {u"aaaa", [](Date d, const LocaleTexts& locale) { return locale.DayName(Weekday(d)); }},
    {u"ddd", [](Date d, const LocaleTexts& locale) { return locale.ShortDayName(Weekday(d)); }},
    {u"hhmm",
     [](Date d, const LocaleTexts&) {
         const DateParts parts = PartsOf(d);
         return TwoDigits(parts.hour) + TwoDigits(parts.minute);
     }},
    {u"mm", [](Date d, const LocaleTexts&) { return TwoDigits(PartsOf(d).month); }},
    {u"dd", [](Date d, const LocaleTexts&) { return TwoDigits(PartsOf(d).day); }},
    {u"hh", [](Date d, const LocaleTexts&) { return TwoDigits(PartsOf(d).hour); }},
    {u"nn", [](Date d, const LocaleTexts&) { return TwoDigits(PartsOf(d).minute); }},
    {u"ss", [](Date d, const LocaleTexts&) { return TwoDigits(PartsOf(d).second); }},
};

const Code* CodeAtStart(TextView pattern) {
    for (const Code& code : codes)
        if (pattern.starts_with(code.letters)) return &code;
    return nullptr;
}

}  // namespace

Text FormatDate(Date date, TextView pattern, const LocaleTexts& locale) {
    if (pattern == u"Long Date") return locale.LongDate(date);
    if (pattern == u"Long Time") return locale.LongTime(date);
    Text text;
    while (!pattern.empty()) {
        if (const Code* code = CodeAtStart(pattern)) {
            text += code->text(date, locale);
            pattern.remove_prefix(code->letters.size());
        } else {
            text += pattern.front();
            pattern.remove_prefix(1);
        }
    }
    return text;
}

Text TwoDigits(int number) {
    return Padded(number, 2);
}

Text GeneralDateText(Date date) {
    const DateParts p = PartsOf(date);
    const Text day = Padded(p.month, 2) + u"/" + Padded(p.day, 2) + u"/" + Padded(p.year, 4);
    const Text time = Padded(p.hour, 2) + u":" + Padded(p.minute, 2) + u":" + Padded(p.second, 2);
    const bool midnight = p.hour == 0 && p.minute == 0 && p.second == 0;
    if (static_cast<long long>(date.days) == 0 && !midnight) return time;
    return midnight ? day : day + u" " + time;
}

}  // namespace platform
