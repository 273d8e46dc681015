#include "exchange/Answers.h"

#include "exchange/ClockCommands.h"
#include "language/LanguageMsgBox.h"
#include "platform/runtime/RuntimeError.h"
#include "request/comTools.h"

namespace horalink {

using namespace platform;

namespace {

enum class AnswerClass { Fine, Refused, AccessFailure };

bool IsBetween(std::int16_t code, std::int16_t first, std::int16_t last) {
    return code >= first && code <= last;
}

AnswerClass ClassOf(std::int16_t code) {
    if (IsBetween(code, 0, 15) || IsBetween(code, 101, 106)) return AnswerClass::Refused;
    if (IsBetween(code, 60, 79) || IsBetween(code, 81, 84) || code == -1) return AnswerClass::AccessFailure;
    return AnswerClass::Fine;
}

Text ErrorLine(const cListRequest& answer, std::int16_t i, const Text& tail) {
    return u"\r\nCM = " + answer.Item(cListRequest::CMD, i) + u", FD = " +
           answer.Item(cListRequest::FirstData, i) + u", SD = " + answer.Item(cListRequest::SecondData, i) +
           u" " + tail;
}

std::string Named(std::string_view list, std::int16_t i, TextView content) {
    return "item " + std::to_string(i) + ": " + std::string(list) + " \"" + ToUtf8(content) + "\"";
}

RuntimeError Unreadable(const std::string& why) {
    return RuntimeError(static_cast<std::int32_t>(ErrorNumber::TypeMismatch), FromUtf8(why));
}

// Converts a text; traces a failure under `blame` before raising it.
Date Converted(const Text& text, const std::string& blame) {
    try {
        return DateOfText(text);
    } catch (const RuntimeError&) {
        throw Unreadable(blame);
    }
}

struct ClockParts {
    Text year, monthDay;
    std::int16_t yearItem = -1, dayItem = -1;
    Date time;
};

void TakeItem(ClockParts& parts, const cListRequest& answer, std::int16_t i) {
    const Text role = answer.Item(cListRequest::FirstData, i),
               value = answer.Item(cListRequest::SecondData, i);
    if (role == u"0") {
        parts.year = value;
        parts.yearItem = i;
    }
    if (role == u"1") {
        parts.monthDay = Left(value, 5);
        parts.dayItem = i;
    }
    if (role == u"2")
        parts.time = Converted(Mid(value, 1, 2) + u":" + Mid(value, 4, 2) + u":" + Right(value, 2),
                               Named("SecondData", i, value) + " is no time");
}

Date DateOf(const ClockParts& parts) {
    if (parts.yearItem < 0 || parts.dayItem < 0)
        throw Unreadable("an item with the year, or with month and day, is missing");
    return Converted(parts.monthDay + u"/" + parts.year,
                     Named("SecondData", parts.yearItem, parts.year) + " and " +
                         Named("SecondData", parts.dayItem, parts.monthDay) + " aren't a date");
}

ClockParts PartsOfAnswer(const cListRequest& answer) {
    ClockParts parts;
    for (std::int16_t i = 0; i < answer.Count(); ++i) {
        const Text value = answer.Item(cListRequest::SecondData, i);
        if (LookupAnswerText(value) > -1)
            throw Unreadable(Named("SecondData", i, value) + " is an answer text");
        TakeItem(parts, answer, i);
    }
    return parts;
}

// Markets 3 to 8 use the locale's long date and time.
bool TakesLongForms(TextView marketCode) {
    return !marketCode.empty() && marketCode.front() >= u'3' && marketCode.front() <= u'8';
}

}  // namespace

bool EqualsNumber(const Value& value, std::int32_t number) {
    try {
        return value.ToDouble() == number;
    } catch (const RuntimeError&) {
        return false;
    }
}

Text UpdateErrors(const cListRequest& answer, const std::function<Text()>& accessFailure) {
    Text errors;
    for (std::int16_t i = 0; i < answer.Count(); ++i) {
        const Text text = answer.Item(cListRequest::ExtraData, i);
        const AnswerClass outcome = ClassOf(LookupAnswerText(text));
        if (outcome == AnswerClass::Fine) continue;
        const bool isRefused = outcome == AnswerClass::Refused;
        errors += ErrorLine(answer, i, isRefused ? text : accessFailure());
        Trace(Named("ExtraData", i, text) +
              (isRefused ? " is a refusal" : " is no answer text of an exchange") + ": update failed");
    }
    return errors;
}

Text ClockText(const cListRequest& answer, TextView marketCode, const LocaleTexts& locale) {
    const ClockParts parts = PartsOfAnswer(answer);
    const Date date = DateOf(parts);
    const auto day = [&](TextView pattern) { return FormatDate(date, pattern, locale); };
    if (TakesLongForms(marketCode))
        return day(u"Long Date") + day(u"(aaaa)") + u"\r\n" + FormatDate(parts.time, u"Long Time", locale);
    return day(u"yyyy/mm/dd (ddd)") + u"\r\n" + FormatDate(parts.time, u"hh:nn:ss", locale);
}

namespace {

void ShowUpdateAnswer(const Services& services, const ModuleData& data, const cListRequest& answer) {
    const Text errors = UpdateErrors(answer, [&] { return data.MessageTable[message::accessFailure]; });
    if (errors.empty()) Trace("update done");
    const std::int16_t msgNo = errors.empty() ? box::updateDone : box::updateFailed;
    ShowLanguageMsgBox(services, data, mode::general, msgNo, {.args = errors});
}

void ShowLookupAnswer(const Services& services, const ModuleData& data, const cListRequest& answer) {
    try {
        const Text clock = ClockText(answer, data.MarketCode, services.locale);
        Trace("clock read");
        ShowLanguageMsgBox(services, data, mode::general, box::clockRead, {.args = clock});
    } catch (const RuntimeError& error) {
        Trace(std::string(error.what()) + ": reading failed");
        ShowLanguageMsgBox(services, data, mode::general, box::lookupFailed);
    }
}

}  // namespace

void ShowAnswer(const Services& services, const ModuleData& data, const cListRequest& answer) {
    if (answer.Tag == tag::update) return ShowUpdateAnswer(services, data, answer);
    if (answer.Tag == tag::lookup) return ShowLookupAnswer(services, data, answer);
    Trace("Tag \"" + ToUtf8(answer.Tag) + "\" of the answer is that of no request: nothing shown");
}

}  // namespace horalink
