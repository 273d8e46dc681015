#include <gtest/gtest.h>

#include "ErrorOf.h"
#include "request/cListRequest.h"
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

TEST(RecordTest, ClearTakesTheItemsAndNothingElse) {
    cListRequest record;
    record.AddToList(u"02", u"0", u"2026", u"OK", u"text");
    record.Tag = u"tag";
    record.ErrCode = 7;
    record.Clear();
    record.SetItem(cListRequest::CMD, 0, u"x");
    EXPECT_EQ(record.Item(cListRequest::CMD, 0), u"");
    EXPECT_EQ(record.Tag, u"tag");
    EXPECT_EQ(record.ErrCode, 7);
    record.AddToList(u"03");
    EXPECT_EQ(record.Count(), 1);
    EXPECT_EQ(record.Item(cListRequest::SecondData, 0), u"");
}

TEST(RecordTest, TheLastItemThatFitsIsNumber32767) {
    cListRequest record;
    for (int i = 0; i < 32767; ++i) record.AddToList(u"02");
    EXPECT_EQ(ErrorOf([&] { record.AddToList(u"02"); }), 6);
    EXPECT_EQ(record.Count(), 32767);
    EXPECT_EQ(record.Item(cListRequest::CMD, 32766), u"02");
}

TEST(RecordTest, SlotsStandInTheOrderOfTheInterface) {
    const cListRequest record;
    const auto& members = record.Class().members;
    ASSERT_EQ(members.size(), 46U);
    const std::pair<std::size_t, const char*> slots[] = {
        {0, "Mode"},  {6, "ObjectID"},   {9, "=PBXNumber"}, {10, "PBXNumber"},
        {17, "=Tag"}, {23, "AddToList"}, {27, "Clear"},     {45, "=MSGFP"}};
    for (const auto& [slot, name] : slots)
        EXPECT_EQ(
            (members[slot].kind == InvokeKind::PropertyPut ? "=" : "") + std::string(members[slot].name),
            name);
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

}  // namespace
