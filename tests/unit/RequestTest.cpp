#include <gtest/gtest.h>

#include "request/cListRequest.h"
#include "request/comTools.h"

using namespace horalink;
using namespace platform;

namespace {

TEST(RecordTest, ANewRecordHasItsDefaults) {
    const auto record = std::make_shared<cListRequest>();
    const std::vector<std::pair<const char*, Value>> defaults = {
        {"Count", Value(std::int16_t{0})},
        {"ObjectID", Value(u"1")},
        {"ErrCode", Value(std::int32_t{0})},
        {"CommandType", Value(std::int16_t{20})},
        {"ShowBusy", Value(true)},
        {"WaitFlag", Value(true)},
        {"CompIndication", Value(false)},
        {"Mode", Value(std::int16_t{0})},
        {"Tag", Value(u"")},
        {"LoginID", Value(u"")},
        {"Key", Value(u"")},
        {"TimeTag", Value(u"")},
    };
    for (const auto& [name, value] : defaults) EXPECT_EQ(Get(record, name), value) << name;
    EXPECT_EQ(Get(record, "CMD", 0).ToText(), u"");
}

TEST(RecordTest, ItemsOutsideTheCountReadEmptyAndTakeNothing) {
    const auto record = std::make_shared<cListRequest>();
    for (const char16_t* cmd : {u"a", u"b", u"c"}) Call(record, "AddToList", cmd);
    EXPECT_EQ(Get(record, "Count").ToInteger(), 3);
    EXPECT_EQ(Get(record, "CMD", 2).ToText(), u"c");
    for (const int index : {3, -1, 32767, -32768}) {
        Put(record, "CMD", index, u"x");
        EXPECT_EQ(Get(record, "CMD", index).ToText(), u"") << index;
    }
    EXPECT_THROW(Get(record, "CMD", 32768), RuntimeError);
    EXPECT_EQ(Get(record, "SecondData", 1).ToText(), u"");
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
    EXPECT_THROW(record.AddToList(u"02"), RuntimeError);
    EXPECT_EQ(record.Count(), 32767);
    EXPECT_EQ(record.Item(cListRequest::CMD, 32766), u"02");
}

TEST(RecordTest, SlotsStandInTheOrderOfTheInterface) {
    const cListRequest record;
    const auto& members = record.Class().members;
    ASSERT_EQ(members.size(), 46U);
    const auto slot = [&](std::size_t i) {
        return std::string(members[i].kind == InvokeKind::PropertyPut ? "=" : "") +
               std::string(members[i].name);
    };
    EXPECT_EQ(slot(0), "Mode");
    EXPECT_EQ(slot(6), "ObjectID");
    EXPECT_EQ(slot(9), "=PBXNumber");
    EXPECT_EQ(slot(10), "PBXNumber");
    EXPECT_EQ(slot(17), "=Tag");
    EXPECT_EQ(slot(23), "AddToList");
    EXPECT_EQ(slot(27), "Clear");
    EXPECT_EQ(slot(45), "=MSGFP");
}

TEST(AnswerTextTest, Codes) {
    const std::vector<std::pair<Text, int>> cases = {
        {u"", -1},
        {u"OK", 100},
        {u"OK" + Text(23, u' '), 100},
        {u"OK" + Text(28, u' '), -1},
        {u"12345OK" + Text(23, u' '), 100},
        {u"ok", -1},
        {u"O", -1},
        {u" OK", -1},
        {u"CODE NOT ALLOWED", 2},
        {u"CODE NOTALLOWED", 2},
        {u"DIGIT ERROR", 0},
        {u"SEE CM", 15},
        {u"COMMAND=", 106},
        {u"LNK_TIMEOUT", 60},
        {u"LNK_NO_IPPBX", 77},
        {u"LNK_OK", 80},
        {u"LNK_STN", 83},
        {u"LNK_STN_X", 83},
        {u"LNK_STN_ISDN", 89},
        {u"LNK_STN_ZOLAN", 86},
        {u"LNK_STN_ZOLANIP", 94},
        {u"DATA ERROR", 1},
        {u"ERROR 12", 104},
        {u"DATA", -1},
        {u"2026", -1},
        {u"11/18", -1},
        {u"12:30:45", -1},
    };
    for (const auto& [text, code] : cases) EXPECT_EQ(LookupAnswerText(text), code) << ToUtf8(text);
}

}  // namespace
