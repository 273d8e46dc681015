#include <gtest/gtest.h>

#include <sstream>

#include "Joined.h"
#include "exchange/Answers.h"
#include "platform/headless/Headless.h"
#include "request/comTools.h"

using namespace horalink;
using namespace platform;

namespace {

const char* const lists[] = {"CMD", "FirstData", "SecondData", "ExtraData", "DescriptionData",
                             "CK",  "ERMFP",     "MSGFP"};

// All fields that can be read without an index, and the items from −1 to the one after the last.
std::string Content(const ObjectRef& record) {
    std::string content;
    for (const Member& member : record->Class().members)
        if (member.kind == InvokeKind::PropertyGet && member.parameters.empty())
            content += Joined(Get(record, member.name));
    for (std::int16_t i = -1; i <= Get(record, "Count").ToInteger(); ++i) {
        content += " " + std::to_string(i) + ":";
        for (const char* list : lists) content += Joined(Get(record, list, i));
    }
    return content;
}

TEST(RecordTest, HoldsItemsInStepAndFieldsOnTheirOwn) {
    const auto record = std::make_shared<cListRequest>();
    // Mode, Key, CompIndication, ObjectID, PBXName, PBXNumber, ShowBusy, WaitFlag, LoginID, Tag, RequestID,
    // TimeTag, CommandType, Count, ErrCode
    const std::string none = " -1:|||||||| 0:||||||||";
    EXPECT_EQ(Content(record), "0||False|1|||True|True|||||20|0|0|" + none);
    int number = 0;
    for (const Member& member : record->Class().members)
        if (member.kind == InvokeKind::PropertyPut && member.parameters.size() == 1) {
            const bool isFlag = member.parameters[0].type == ValueType::Boolean;
            Put(record, member.name, isFlag ? !Get(record, member.name).ToBoolean() : Value(++number));
        }
    const std::string fields = "1|2|True|1|3|4|False|False|5|6|7|8|9|";
    EXPECT_EQ(Content(record), fields + "0|10|" + none);
    Call(record, "AddToList", u"a"), Call(record, "AddToList", u"b", u"c", u"d", u"e", u"f");
    Call(record, "AddToList", u"g", Missing{}, u"h");
    EXPECT_EQ(Content(record),
              fields + "3|10| -1:|||||||| 0:a|||||||| 1:b|c|d|e|f|||| 2:g||h|||||| 3:||||||||");
    for (const char* list : lists)
        for (const int index : {1, 3, -1, 32767, -32768})
            Put(record, list, index, FromUtf8(list).substr(0, 2));
    EXPECT_EQ(Content(record),
              fields + "3|10| -1:|||||||| 0:a|||||||| 1:CM|Fi|Se|Ex|De|CK|ER|MS| 2:g||h|||||| 3:||||||||");
    EXPECT_EQ(FaultOf([&] { Get(record, "CMD", 32768); }), "6 Overflow");
    Call(record, "Clear"), Put(record, "CMD", 0, u"x");
    EXPECT_EQ(Content(record), fields + "0|10|" + none);
    Call(record, "AddToList", u"y");
    EXPECT_EQ(Content(record), fields + "1|10| -1:|||||||| 0:y|||||||| 1:||||||||");
    while (record->Count() < 32767) record->AddToList(u"z");
    EXPECT_EQ(FaultOf([&] { record->AddToList(u"over"); }), "6 Overflow: AddToList");
    EXPECT_EQ(record->Item(cListRequest::CMD, 32766) + DecimalText(record->Count()), u"z32767");
}

TEST(AnswerTextTest, Codes) {
    const auto codes = [](auto... texts) { return Joined(LookupAnswerText(texts)...); };
    const Text ok = u"OK" + Text(23, u' ');
    EXPECT_EQ(codes(u"", u"ok", u"O", u" OK", ok + u" ", u"DATA", u"2026", u"11/18", u"12:30:45"),
              "-1|-1|-1|-1|-1|-1|-1|-1|-1|");
    EXPECT_EQ(codes(u"OK", ok, u"12345" + ok, u"OKAY", u"DATA ERROR", u"ERROR 12", u"SEE CM"),
              "100|100|100|100|1|104|15|");
    EXPECT_EQ(codes(u"CODE NOT ALLOWED", u"CODE NOTALLOWED", u"LNK_STN", u"LNK_STN_X", u"LNK_STN_ZOLAN",
                    u"LNK_STN_ISDN", u"LNK_STN_ZOLANIP"),
              "2|2|83|83|86|89|94|");
}

// An answer by its items, "FirstData=SecondData" or "FirstData=SecondData~ExtraData", with ";" between them.
cListRequest& Fill(cListRequest& answer, const std::string& items) {
    std::istringstream all(items);
    for (std::string item; std::getline(all, item, ';');) {
        const auto value = item.find('=') + 1, extra = std::min(item.find('~'), item.size());
        const auto piece = [&](std::size_t from, std::size_t to) {
            return FromUtf8(item.substr(from, to - from));
        };
        answer.AddToList(u"02", piece(0, value - 1), piece(value, extra),
                         extra < item.size() ? piece(extra + 1, item.size()) : Text());
    }
    return answer;
}

TEST(UpdateAnswerTest, AnItemIsGoodOrALineInItsPlace) {
    cListRequest answer;
    Fill(answer, "1=x~OK;1=x~LNK_OK;1=x~LNK_STN_ZOLANIP;1=x~LNK_STN_STATION;5=1~OK");
    for (const char* words : {"DIGIT ERROR", "COMMAND=", "SEE CM", "NONE"})
        Fill(answer, "1=x~" + std::string(words));
    for (const char* unknown : {"LNK_TIMEOUT", "LNK_NO_IPPBX", "LNK_NONE", "LNK_PKG", "gibberish"})
        Fill(answer, "2=y~" + std::string(unknown));
    const std::string errors = ToUtf8(UpdateErrors(answer, [] { return Text(u"no way"); }));
    const std::string head = "\r\nCM = 02, FD = 1, SD = x ", unknown = "\r\nCM = 02, FD = 2, SD = y no way";
    EXPECT_EQ(errors, head + "DIGIT ERROR" + head + "COMMAND=" + head + "SEE CM" + head + "NONE" + unknown +
                          unknown + unknown + unknown + unknown);
}

// The clock of an answer in the form of a market, or the number of its failure.
std::string Clock(const std::string& items, TextView market = u"10001") {
    cListRequest answer;
    Text text;
    const std::string fault =
        FaultOf([&] { text = ClockText(Fill(answer, items), market, headless::Locale()); });
    return fault == "0 " ? ToUtf8(text) : fault.substr(0, fault.find(' '));
}

TEST(LookupAnswerTest, TheMarketDecidesTheFormAndAllItemsHaveToBeThere) {
    for (const TextView market : {u"10001", u"2", u"9", u"", u"X", u"\u0663"})
        EXPECT_EQ(Clock("0=2026;1=11/18 (WED);2=13:02:03", market), "2026/11/18 (d4)\r\n13:02:03");
    for (const TextView market : {u"3", u"80001"})
        EXPECT_EQ(Clock("0=2026;1=11/18 (WED);2=13:02:03", market),
                  "long 11/18/2026(day 4)\r\nlong 13:02:03");
    EXPECT_EQ(Clock("0=1999;0=2026;7=other;1=11/18"), "2026/11/18 (d4)\r\n00:00:00");
    EXPECT_EQ(Clock("0=2026;1=11/18;2=01:02 and 03"), "2026/11/18 (d4)\r\n01:02:03");
    for (const char* items : {"", "0=2026;2=13:02:03", "1=11/18", "0=2026;1=13/18",
                              "0=2026;1=11/18;2=", "0=LNK_TIMEOUT;1=11/18", "0=2026;1=11/18;7=DATA ERROR"})
        EXPECT_EQ(Clock(items), "13") << items;
}

}  // namespace
