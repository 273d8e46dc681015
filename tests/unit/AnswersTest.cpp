#include <gtest/gtest.h>

#include <array>

#include "Fakes.h"
#include "exchange/Answers.h"
#include "exchange/ClockCommands.h"

using namespace horalink;
using namespace platform;

namespace {

using Items = std::vector<std::array<const char16_t*, 3>>;  // FirstData, SecondData, ExtraData

std::shared_ptr<cListRequest> Answer(const Items& items) {
    auto answer = std::make_shared<cListRequest>();
    for (const auto& [fd, sd, ed] : items) answer->AddToList(u"02", fd, sd, ed);
    return answer;
}

Text Errors(const Items& items) {
    return UpdateErrors(*Answer(items), [] { return Text(u"no way"); });
}

Text Lookup(const Items& items, TextView market = u"10001") {
    try {
        return ClockText(*Answer(items), market, fakes::FakeLocale());
    } catch (const RuntimeError& error) {
        return u"error " + DecimalText(error.Number());
    }
}

TEST(UpdateAnswerTest, ItemsByClass) {
    const std::vector<std::pair<const char16_t*, const char16_t*>> cases = {
        {u"OK", nullptr},
        {u"LNK_OK", nullptr},
        {u"LNK_STN_STATION", nullptr},
        {u"LNK_STN_ZOLANIP", nullptr},
        {u"DIGIT ERROR", u"DIGIT ERROR"},
        {u"SEE CM 12", u"SEE CM 12"},
        {u"NONE", u"NONE"},
        {u"COMMAND=", u"COMMAND="},
        {u"LNK_TIMEOUT", u"no way"},
        {u"LNK_NO_IPPBX", u"no way"},
        {u"LNK_NONE", u"no way"},
        {u"LNK_PKG", u"no way"},
        {u"gibberish", u"no way"},
        {u"", u"no way"},
    };
    for (const auto& [text, tail] : cases) {
        const Text expected = tail ? u"\r\nCM = 02, FD = 1, SD = 111803 " + Text(tail) : Text();
        EXPECT_EQ(Errors({{u"1", u"111803", text}}), expected) << ToUtf8(text);
    }
}

TEST(UpdateAnswerTest, LinesStandInTheOrderOfTheItems) {
    EXPECT_EQ(Errors({}), u"");
    EXPECT_EQ(Errors({{u"0", u"2026", u"WRONG"}, {u"1", u"x", u"OK"}, {u"2", u"1", u"?"}}),
              u"\r\nCM = 02, FD = 0, SD = 2026 WRONG\r\nCM = 02, FD = 2, SD = 1 no way");
}

TEST(LookupAnswerTest, TheMarketDecidesTheForm) {
    const Items items = {{u"0", u"2026", u""}, {u"1", u"11/18 (WED)", u""}, {u"2", u"13:02:03", u""}};
    for (const char16_t* market : {u"10001", u"2", u"9", u"", u"X", u"\u0663"})
        EXPECT_EQ(Lookup(items, market), u"2026/11/18 (d4)\r\n13:02:03") << ToUtf8(market);
    for (const char16_t* market : {u"3", u"80001"})
        EXPECT_EQ(Lookup(items, market), u"long date(day 4)\r\nlong time") << ToUtf8(market);
}

TEST(LookupAnswerTest, MissingAndMalformedItems) {
    const std::vector<std::pair<Items, const char16_t*>> cases = {
        {{}, u"error 13"},
        {{{u"0", u"2026", u""}, {u"1", u"11/18", u""}}, u"2026/11/18 (d4)\r\n00:00:00"},
        {{{u"0", u"2026", u""}, {u"2", u"13:02:03", u""}}, u"error 13"},
        {{{u"0", u"2026", u""}, {u"1", u"13/18", u""}}, u"error 13"},
        {{{u"0", u"2026", u""}, {u"1", u"02/29", u""}}, u"error 13"},
        {{{u"0", u"2026", u""}, {u"1", u"11/18", u""}, {u"2", u"25:00:00", u""}}, u"error 13"},
        {{{u"0", u"2026", u""}, {u"1", u"11/18", u""}, {u"2", u"", u""}}, u"error 13"},
        {{{u"0", u"LNK_TIMEOUT", u""}, {u"1", u"11/18", u""}}, u"error 13"},
        {{{u"0", u"2026", u""}, {u"1", u"11/18", u""}, {u"7", u"DATA ERROR", u""}}, u"error 13"},
        {{{u"0", u"1999", u""}, {u"0", u"2026", u""}, {u"7", u"other", u""}, {u"1", u"11/18", u""}},
         u"2026/11/18 (d4)\r\n00:00:00"},
        {{{u"0", u"2026", u""}, {u"1", u"11/18", u""}, {u"2", u"01:02 and 03", u""}},
         u"2026/11/18 (d4)\r\n01:02:03"},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) EXPECT_EQ(Lookup(cases[i].first), cases[i].second) << i;
}

struct CommandTest : testing::Test {
    void SetTime(const char16_t* hour, const char16_t* minute, const char16_t* second, const char16_t* half) {
        const std::array texts{hour, minute, second, half};
        for (std::size_t i = 0; i < 4; ++i) controls.txtTime[i]->Text = texts[i];
    }
    void SetDate(std::int16_t year, std::int16_t month, std::int16_t day) {
        controls.Calendar->SetDay(day);
        controls.Calendar->SetMonth(month);
        controls.Calendar->SetYear(year);
    }
    Text Item(std::int16_t i) const {
        return UpdateClockRequest(controls, locale)->Item(cListRequest::SecondData, i);
    }
    fakes::FakeScheduler scheduler;
    fakes::NoToolkit toolkit;
    fakes::FakeLocale locale;
    forms::Form form{u"form", scheduler, toolkit};
    DialogControls controls = LayOut(form);
};

TEST_F(CommandTest, TheUpdateCarriesDateAndTimeInTwentyFourHours) {
    SetDate(2026, 11, 18);
    const struct {
        std::array<const char16_t*, 4> time;
        const char16_t* text;
    } times[] = {
        {{u"01", u"02", u"03", u"PM"}, u"130203"}, {{u"12", u"00", u"00", u"AM"}, u"000000"},
        {{u"12", u"00", u"00", u"PM"}, u"120000"}, {{u"12", u"05", u"30", u"AM"}, u"000530"},
        {{u"11", u"59", u"59", u"PM"}, u"235959"},
    };
    for (const auto& [time, text] : times) {
        SetTime(time[0], time[1], time[2], time[3]);
        EXPECT_EQ(Item(2), text);
    }
    EXPECT_EQ(Item(0), u"2026");
    EXPECT_EQ(Item(1), u"111803");
    SetDate(2026, 11, 15);
    EXPECT_EQ(Item(1), u"111500");
    SetDate(2026, 12, 31);
    EXPECT_EQ(Item(1), u"123104");
}

TEST_F(CommandTest, NoRequestWithoutADateOrATime) {
    SetDate(2026, 2, 30);
    EXPECT_THROW(Item(0), RuntimeError);
    SetDate(2026, 2, 0);
    EXPECT_THROW(Item(0), RuntimeError);
    SetDate(2026, 2, 28);
    SetTime(u"", u"02", u"03", u"PM");
    EXPECT_THROW(Item(0), RuntimeError);
}

TEST_F(CommandTest, BothCarryTheThreeItemsAndTheirTag) {
    for (const auto& [request, tag] : {std::pair(UpdateClockRequest(controls, locale), u"UPDATE_CLOCK"),
                                       std::pair(LookupClockRequest(), u"LOOKUP_CLOCK")}) {
        ASSERT_EQ(request->Count(), 3);
        EXPECT_EQ(request->Tag, tag);
        for (std::int16_t i = 0; i < 3; ++i) {
            EXPECT_EQ(request->Item(cListRequest::CMD, i), u"02");
            EXPECT_EQ(request->Item(cListRequest::FirstData, i), DecimalText(i));
        }
    }
    EXPECT_EQ(LookupClockRequest()->Item(cListRequest::SecondData, 0), u"");
}

}  // namespace
