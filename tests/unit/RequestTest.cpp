#include <gtest/gtest.h>

#include <sstream>

#include "exchange/Answers.h"
#include "harness/Cases.h"
#include "platform/headless/Headless.h"
#include "request/comTools.h"

using namespace horalink;
using namespace platform;

namespace {

TEST(RecordTest, HoldsItemsInStepAndFieldsOnTheirOwn) {
    const auto record = std::make_shared<cListRequest>();
    std::string fields;
    for (const Member& member : record->Class().members)
        if (member.kind == InvokeKind::PropertyGet && member.parameters.empty())
            fields += Joined(Get(record, member.name));
    EXPECT_EQ(fields, "0||False|1|||True|True|||||20|0|0|");
    Call(record, "AddToList", u"a", u"b", u"c", u"d", u"e"), Call(record, "AddToList", u"f", Missing{}, u"g");
    const auto items = [&] {
        std::string content;
        for (const char* list : {"CMD", "FirstData", "SecondData", "ExtraData", "DescriptionData", "MSGFP"})
            for (const int i : {-1, 0, 1, 2}) content += Joined(Get(record, list, i));
        return content;
    };
    EXPECT_EQ(items(), "|a|f|||b||||c|g|||d||||e|||||||");
    for (const int index : {0, 2, -1, 32767, -32768}) Put(record, "MSGFP", index, index);
    EXPECT_EQ(items(), "|a|f|||b||||c|g|||d||||e||||0|||");
    EXPECT_EQ(FaultOf([&] { Get(record, "CMD", 32768); }), "6 Overflow");
    Call(record, "Clear");
    while (record->Count() < 32767) record->AddToList(u"z");
    EXPECT_EQ(FaultOf([&] { record->AddToList(u"over"); }), "6 Overflow: AddToList");
    EXPECT_EQ(record->Item(cListRequest::CMD, 32766) + DecimalText(record->Count()), u"z32767");
}

TEST(RecordTest, MembersAreFoundByNameAndKindAndTakeWhatTheyDeclare) {
    const auto record = std::make_shared<cListRequest>();
    Value command(7);
    Put(record, "MODE", u"12"), Call(record, "AddToList", ByRef(command));
    EXPECT_EQ(Joined(Get(record, "mode"), Call(record, "Mode"), Get(record, "cmd", u"0")), "12|12|7|");
    EXPECT_EQ(command, Value(7)) << "comes back as it went";
    EXPECT_FALSE(SameMemberName("[", "{") || SameMemberName("@", "`") || SameMemberName("a", "ab"));
    EXPECT_EQ(
        Faults([&] { Call(record, "Nobody"); }, [&] { Put(record, "ObjectID", 1); },
               [&] { Call(record, "AddToList", Missing{}); },
               [&] { Call(record, "AddToList", 1, 2, 3, 4, 5, 6); }, [&] { Call(ObjectRef(), "Clear"); }),
        "438 The object doesn't support this property or method: cListRequest.Nobody|"
        "383 The property is read-only: cListRequest.ObjectID|450 Wrong number of arguments: AddToList|"
        "450 Wrong number of arguments: AddToList|91 Object variable is not set|");
    EXPECT_EQ(Joined(record->Mode, record->Count()), "12|1|");
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

TEST(UpdateAnswerTest, AnItemIsGoodOrALine) {
    const auto errors = [](const char16_t* extra) {
        cListRequest answer;
        answer.AddToList(u"02", u"1", u"x", extra);
        return ToUtf8(UpdateErrors(answer, [] { return Text(u"no way"); }));
    };
    const std::string line = "\r\nCM = 02, FD = 1, SD = x ";
    for (const char16_t* good : {u"OK", u"LNK_OK", u"LNK_STN_ZOLANIP", u"LNK_STN_STATION"})
        EXPECT_EQ(errors(good), "");
    for (const char16_t* known : {u"DIGIT ERROR", u"COMMAND=", u"SEE CM", u"NONE"})
        EXPECT_EQ(errors(known), line + ToUtf8(known));
    for (const char16_t* other : {u"LNK_TIMEOUT", u"LNK_NO_IPPBX", u"LNK_NONE", u"LNK_PKG", u"gibberish"})
        EXPECT_EQ(errors(other), line + "no way");
}

// The clock of an answer, "FirstData=SecondData;...", in the form of a market, or the number of its failure.
std::string Clock(const std::string& items, TextView market = u"10001") {
    cListRequest answer;
    std::istringstream all(items);
    for (std::string first, second; std::getline(all, first, '=') && std::getline(all, second, ';');)
        answer.AddToList(u"02", FromUtf8(first), FromUtf8(second));
    Text text;
    const auto error = ErrorOf([&] { text = ClockText(answer, market, headless::Locale()); });
    return error ? "error " + std::to_string(error) : ToUtf8(text);
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
                              "0=2026;1=11/18;2= ", "0=LNK_TIMEOUT;1=11/18", "0=2026;1=11/18;7=DATA ERROR"})
        EXPECT_EQ(Clock(items), "error 13") << items;
    cListRequest answer;
    answer.AddToList(u"02", u"0", u"2026"), answer.AddToList(u"02", u"1", u"13/18");
    EXPECT_EQ(FaultOf([&] { ClockText(answer, u"10001", headless::Locale()); }),
              "13 item 0: SecondData \"2026\" and item 1: SecondData \"13/18\" aren't a date");
}

}  // namespace
