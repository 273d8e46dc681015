#include "platform/runtime/Format.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

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

// Longer codes come before their prefixes.
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

// A nonzero number as 0.DIGITS times a power of ten.
struct Decimal {
    std::string digits;  // without trailing zeros
    int power = 0;
};

template <class Number>
Decimal DecimalOf(Number magnitude, int places) {
    char buffer[32];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, magnitude, std::chars_format::scientific, places - 1)
            .ptr;
    const std::string_view text(buffer, static_cast<std::size_t>(end - buffer));
    const auto sign = text.find('e');
    Decimal decimal{std::string(1, text[0]).append(text.substr(2, sign - 2)),
                    std::atoi(std::string(text.substr(sign + 1)).c_str()) + 1};
    decimal.digits.resize(decimal.digits.find_last_not_of('0') + 1);
    return decimal;
}

std::string Plain(Decimal decimal) {
    auto& [digits, power] = decimal;
    if (power <= 0) return "0." + std::string(static_cast<std::size_t>(-power), '0') + digits;
    const auto whole = static_cast<std::size_t>(power);
    if (digits.size() <= whole) return digits.append(whole - digits.size(), '0');
    return digits.insert(whole, ".");
}

std::string WithPowerOfTen(Decimal decimal) {
    auto& [digits, power] = decimal;
    if (digits.size() > 1) digits.insert(1, ".");
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "E%+03d", power - 1);
    return digits + buffer;
}

template <class Number>
Text TextOfNumber(Number number, int places) {
    if (number == 0) return u"0";
    if (!std::isfinite(number)) return std::isnan(number) ? u"nan" : number < 0 ? u"-inf" : u"inf";
    const Decimal decimal = DecimalOf(std::fabs(number), places);
    const int fraction = static_cast<int>(decimal.digits.size()) - decimal.power;
    const bool fits = decimal.power <= places && fraction <= places;
    return FromUtf8((number < 0 ? "-" : "") + (fits ? Plain(decimal) : WithPowerOfTen(decimal)));
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

Text NumberText(float number) {
    return TextOfNumber(number, 7);
}

Text NumberText(double number) {
    return TextOfNumber(number, 15);
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
