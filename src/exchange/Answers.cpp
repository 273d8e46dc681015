#include "exchange/Answers.h"

#include "exchange/dlgAddin.h"
#include "language/LanguageMsgBox.h"
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

struct ClockParts {
    Text year, monthDay;
    Date time;
};

void TakeItem(ClockParts& parts, const Text& role, const Text& value) {
    if (role == u"0") parts.year = value;
    if (role == u"1") parts.monthDay = Left(value, 5);
    if (role == u"2")
        parts.time = DateOfText(Mid(value, 1, 2) + u":" + Mid(value, 4, 2) + u":" + Right(value, 2));
}

ClockParts PartsOfAnswer(const cListRequest& answer) {
    ClockParts parts;
    for (std::int16_t i = 0; i < answer.Count(); ++i) {
        const Text value = answer.Item(cListRequest::SecondData, i);
        if (LookupAnswerText(value) > -1) throw RuntimeError(ErrorNumber::TypeMismatch, ToUtf8(value));
        TakeItem(parts, answer.Item(cListRequest::FirstData, i), value);
    }
    return parts;
}

// Markets 3 to 8 take the long forms of the machine's locale.
bool TakesLongForms(TextView marketCode) {
    return !marketCode.empty() && marketCode.front() >= u'3' && marketCode.front() <= u'8';
}

}  // namespace

Text UpdateErrors(const cListRequest& answer, const std::function<Text()>& accessFailure) {
    Text errors;
    for (std::int16_t i = 0; i < answer.Count(); ++i) {
        const Text text = answer.Item(cListRequest::ExtraData, i);
        const AnswerClass outcome = ClassOf(LookupAnswerText(text));
        if (outcome == AnswerClass::Refused) errors += ErrorLine(answer, i, text);
        if (outcome == AnswerClass::AccessFailure) errors += ErrorLine(answer, i, accessFailure());
    }
    return errors;
}

Text ClockText(const cListRequest& answer, TextView marketCode, const LocaleTexts& locale) {
    const ClockParts parts = PartsOfAnswer(answer);
    const Date date = DateOfText(parts.monthDay + u"/" + parts.year);
    const auto day = [&](TextView pattern) { return FormatDate(date, pattern, locale); };
    if (TakesLongForms(marketCode))
        return day(u"Long Date") + day(u"(aaaa)") + u"\r\n" + FormatDate(parts.time, u"Long Time", locale);
    return day(u"yyyy/mm/dd (ddd)") + u"\r\n" + FormatDate(parts.time, u"hh:nn:ss", locale);
}

void dlgAddin::ShowUpdateAnswer() {
    const Text errors =
        UpdateErrors(LastAnswer(), [&] { return data_.MessageTable[message::accessFailure]; });
    const std::int16_t msgNo = errors.empty() ? box::updateDone : box::updateFailed;
    ShowLanguageMsgBox(services_, data_, mode::general, msgNo, {.args = errors});
}

void dlgAddin::ShowLookupAnswer() {
    try {
        const Text clock = ClockText(LastAnswer(), data_.MarketCode, services_.locale);
        ShowLanguageMsgBox(services_, data_, mode::general, box::clockRead, {.args = clock});
    } catch (const RuntimeError&) {
        ShowLanguageMsgBox(services_, data_, mode::general, box::lookupFailed);
    }
}

}  // namespace horalink
