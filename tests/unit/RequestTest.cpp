#include <gtest/gtest.h>

#include "ErrorOf.h"
#include "Table.h"
#include "exchange/Answers.h"
#include "exchange/ClockCommands.h"
#include "platform/headless/Headless.h"
#include "request/comTools.h"

using namespace horalink;
using namespace platform;

namespace {

TEST(RecordTest, ItemsOutsideTheCountReadEmptyAndTakeNothing) {
    const auto record = std::make_shared<cListRequest>();
    for (const char16_t* cmd : {u"a", u"b", u"c"}) Call(record, "AddToList", cmd);
    EXPECT_EQ(Get(record, "CMD", 2).ToText(), u"c");
    for (const int index : {3, -1, 32767, -32768}) {
        Put(record, "CMD", index, u"x");
        EXPECT_EQ(Get(record, "CMD", index).ToText(), u"") << index;
    }
    EXPECT_EQ(ErrorOf([&] { Get(record, "CMD", 32768); }), 6);
    EXPECT_EQ(Get(record, "ExtraData", 1).ToText(), u"");
    Put(record, "ExtraData", 1, u"OK");
    EXPECT_EQ(Get(record, "ExtraData", 1).ToText(), u"OK");
}

TEST(AnswerTextTest, Codes) {
    const std::pair<int, std::vector<Text>> cases[] = {
        {-1, {u"", u"ok", u"O", u" OK", u"OK" + Text(28, u' '), u"DATA", u"2026", u"11/18", u"12:30:45"}},
        {100, {u"OK", u"OK" + Text(23, u' '), u"12345OK" + Text(23, u' ')}},
        {2, {u"CODE NOT ALLOWED", u"CODE NOTALLOWED"}},
        {15, {u"SEE CM"}},
        {83, {u"LNK_STN", u"LNK_STN_X"}},
        {86, {u"LNK_STN_ZOLAN"}},
        {94, {u"LNK_STN_ZOLANIP"}}};
    for (const auto& [code, texts] : cases)
        for (const Text& text : texts) EXPECT_EQ(LookupAnswerText(text), code) << ToUtf8(text);
}

using Items = std::vector<std::array<const char16_t*, 3>>;  // FirstData, SecondData, ExtraData

std::shared_ptr<cListRequest> Answer(const Items& items) {
    auto answer = std::make_shared<cListRequest>();
    for (const auto& [first, second, extra] : items) answer->AddToList(u"02", first, second, extra);
    return answer;
}

// The text, or "error" and its number.
Text Result(const std::function<Text()>& make) {
    Text text;
    const auto error = ErrorOf([&] { text = make(); });
    return error ? u"error " + DecimalText(error) : text;
}

TEST(UpdateAnswerTest, AnItemIsGoodOrALineInItsPlace) {
    const std::pair<Items, Text> cases[] = {
        {{}, u""},
        {{{u"1", u"x", u"OK"}, {u"1", u"x", u"LNK_OK"}, {u"1", u"x", u"LNK_STN_ZOLANIP"}}, u""},
        {{{u"1", u"x", u"DIGIT ERROR"}, {u"3", u"y", u"COMMAND="}},
         u"\r\nCM = 02, FD = 1, SD = x DIGIT ERROR\r\nCM = 02, FD = 3, SD = y COMMAND="},
        {{{u"1", u"x", u"LNK_TIMEOUT"}}, u"\r\nCM = 02, FD = 1, SD = x no way"},
        {{{u"1", u"x", u"LNK_PKG"}}, u"\r\nCM = 02, FD = 1, SD = x no way"},
        {{{u"0", u"2026", u"SEE CM 12"}, {u"1", u"x", u"OK"}, {u"2", u"1", u"gibberish"}},
         u"\r\nCM = 02, FD = 0, SD = 2026 SEE CM 12\r\nCM = 02, FD = 2, SD = 1 no way"}};
    for (const auto& [items, text] : cases)
        EXPECT_EQ(UpdateErrors(*Answer(items), [] { return Text(u"no way"); }), text) << ToUtf8(text);
}

TEST(LookupAnswerTest, TheMarketDecidesTheForm) {
    const auto answer = Answer({{u"0", u"2026", u""}, {u"1", u"11/18 (WED)", u""}, {u"2", u"13:02:03", u""}});
    for (const char16_t* market : {u"10001", u"2", u"9", u"", u"X", u"\u0663"})
        EXPECT_EQ(ClockText(*answer, market, headless::Locale()), u"2026/11/18 (d4)\r\n13:02:03")
            << ToUtf8(market);
    for (const char16_t* market : {u"3", u"80001"})
        EXPECT_EQ(ClockText(*answer, market, headless::Locale()), u"long 11/18/2026(day 4)\r\nlong 13:02:03");
}

TEST(LookupAnswerTest, MissingAndMalformedItems) {
    const std::array<const char16_t*, 3> year{u"0", u"2026", u""}, day{u"1", u"11/18", u""};
    const std::pair<Items, const char16_t*> cases[] = {
        {{}, u"error 13"},
        {{year, day}, u"2026/11/18 (d4)\r\n00:00:00"},
        {{year, {u"2", u"13:02:03", u""}}, u"error 13"},
        {{year, {u"1", u"13/18", u""}}, u"error 13"},
        {{year, day, {u"2", u"", u""}}, u"error 13"},
        {{{u"0", u"LNK_TIMEOUT", u""}, day}, u"error 13"},
        {{year, day, {u"7", u"DATA ERROR", u""}}, u"error 13"},
        {{{u"0", u"1999", u""}, year, {u"7", u"other", u""}, day}, u"2026/11/18 (d4)\r\n00:00:00"},
        {{year, day, {u"2", u"01:02 and 03", u""}}, u"2026/11/18 (d4)\r\n01:02:03"}};
    for (const auto& [items, text] : cases)
        EXPECT_EQ(
            Result([&, given = items] { return ClockText(*Answer(given), u"10001", headless::Locale()); }),
            text);
}

TEST(CommandTest, TheUpdateCarriesDateAndTimeInTwentyFourHours) {
    headless::Headless computer;
    forms::Form form(u"form", computer.timers, computer.toolkit);
    const DialogControls controls = LayOut(form);
    const Table<std::array<std::int16_t, 3>, std::array<const char16_t*, 4>, Text> cases = {
        {{2026, 11, 18}, {u"01", u"02", u"03", u"PM"}, u"2026 111803 130203"},
        {{2026, 11, 15}, {u"12", u"00", u"00", u"AM"}, u"2026 111500 000000"},
        {{2026, 12, 31}, {u"12", u"00", u"00", u"PM"}, u"2026 123104 120000"},
        {{2026, 2, 0}, {u"01", u"02", u"03", u"PM"}, u"error 13"},
        {{2026, 2, 28}, {u"", u"02", u"03", u"PM"}, u"error 13"}};
    for (const auto& [date, time, values] : cases) {
        controls.Calendar->SetDay(date[2]);
        controls.Calendar->SetMonth(date[1]);
        controls.Calendar->SetYear(date[0]);
        for (std::size_t i = 0; i < 4; ++i) controls.txtTime[i]->Text = time[i];
        const auto make = [&] {
            const auto request = UpdateClockRequest(controls, headless::Locale());
            EXPECT_EQ(request->Tag, u"UPDATE_CLOCK");
            const auto value = [&](std::int16_t i) { return request->Item(cListRequest::SecondData, i); };
            return value(0) + u" " + value(1) + u" " + value(2);
        };
        EXPECT_EQ(Result(make), values);
    }
}

}  // namespace
