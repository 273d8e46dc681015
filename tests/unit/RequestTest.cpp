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

// All fields that can be read without an index, and the items from −1 to the one behind the last.
std::string Content(const ObjectRef& record) {
    std::string content;
    for (const Member& member : record->Class().members)
        if (member.kind == InvokeKind::PropertyGet && member.parameters.empty())
            content += ToUtf8(Get(record, member.name).ToText()) + ",";
    for (std::int16_t i = -1; i <= Get(record, "Count").ToInteger(); ++i) {
        content += " " + std::to_string(i) + ":";
        for (const char* list :
             {"CMD", "FirstData", "SecondData", "ExtraData", "DescriptionData", "CK", "ERMFP", "MSGFP"})
            content += ToUtf8(Get(record, list, i).ToText()) + ",";
    }
    return content;
}

TEST(RecordTest, HoldsItemsInStepAndFieldsOnTheirOwn) {
    const auto record = std::make_shared<cListRequest>();
    // Mode, Key, CompIndication, ObjectID, PBXName, PBXNumber, ShowBusy, WaitFlag, LoginID, Tag, RequestID,
    // TimeTag, CommandType, Count, ErrCode
    const std::string none = " -1:,,,,,,,, 0:,,,,,,,,";
    EXPECT_EQ(Content(record), "0,,False,1,,,True,True,,,,,20,0,0," + none);
    int i = 0;
    for (const Member& member : record->Class().members)
        if (member.kind == InvokeKind::PropertyPut && member.parameters.size() == 1) {
            const bool isFlag = member.parameters[0].type == ValueType::Boolean;
            Put(record, member.name, isFlag ? !Get(record, member.name).ToBoolean() : Value(++i));
        }
    const std::string fields = "1,2,True,1,3,4,False,False,5,6,7,8,9,";
    EXPECT_EQ(Content(record), fields + "0,10," + none);
    Call(record, "AddToList", u"a");
    Call(record, "AddToList", u"b", u"c", u"d", u"e", u"f");
    Call(record, "AddToList", u"g", Missing{}, u"h");
    EXPECT_EQ(Content(record),
              fields + "3,10, -1:,,,,,,,, 0:a,,,,,,,, 1:b,c,d,e,f,,,, 2:g,,h,,,,,, 3:,,,,,,,,");
    for (const char* list :
         {"CMD", "FirstData", "SecondData", "ExtraData", "DescriptionData", "CK", "ERMFP", "MSGFP"})
        for (const int index : {1, 3, -1, 32767, -32768})
            Put(record, list, index, FromUtf8(list).substr(0, 2));
    EXPECT_EQ(Content(record),
              fields + "3,10, -1:,,,,,,,, 0:a,,,,,,,, 1:CM,Fi,Se,Ex,De,CK,ER,MS, 2:g,,h,,,,,, 3:,,,,,,,,");
    EXPECT_EQ(ErrorOf([&] { Get(record, "CMD", 32768); }), 6);
    Call(record, "Clear");
    Put(record, "CMD", 0, u"x");
    EXPECT_EQ(Content(record), fields + "0,10," + none);
    Call(record, "AddToList", u"y");
    EXPECT_EQ(Content(record), fields + "1,10, -1:,,,,,,,, 0:y,,,,,,,, 1:,,,,,,,,");
    while (record->Count() < 32767) record->AddToList(u"z");
    EXPECT_EQ(FaultOf([&] { record->AddToList(u"over"); }), "6 Overflow: AddToList");
    EXPECT_EQ(record->Count(), 32767);
    EXPECT_EQ(record->Item(cListRequest::CMD, 32766), u"z");
}

TEST(AnswerTextTest, Codes) {
    const std::pair<int, std::vector<Text>> cases[] = {
        {-1, {u"", u"ok", u"O", u" OK", u"OK" + Text(24, u' '), u"DATA", u"2026", u"11/18", u"12:30:45"}},
        {100, {u"OK", u"OK" + Text(23, u' '), u"12345OK" + Text(23, u' '), u"OKAY"}},
        {1, {u"DATA ERROR"}},
        {2, {u"CODE NOT ALLOWED", u"CODE NOTALLOWED"}},
        {15, {u"SEE CM"}},
        {104, {u"ERROR 12"}},
        {83, {u"LNK_STN", u"LNK_STN_X"}},
        {86, {u"LNK_STN_ZOLAN"}},
        {89, {u"LNK_STN_ISDN"}},
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
