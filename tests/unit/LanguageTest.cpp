#include <gtest/gtest.h>

#include "Desk.h"
#include "ErrorOf.h"
#include "Table.h"
#include "harness/SmallTexts.h"
#include "language/LanguageDatabase.h"
#include "language/LanguageMsgBox.h"
#include "language/MsgBoxButtons.h"
#include "language/TextTokens.h"

using namespace horalink;
using namespace platform;
using desk::Notes;

namespace {

TEST(TokensTest, ExpandAsWrittenUpToPositionsOfSixteenBits) {
    const Text nearPercent = Text(16382, u'a') + u"%", farPercent = u"a" + nearPercent;
    const Table<Text, Text, Text, Text> cases = {
        {u"", u"a%", u"", u"a%"},
        {u"Hello & -1", u"", u"-1", u""},
        {u"-1 & Hello", u"", u"-1Hello", u""},
        {u"Line one & %CR & Line two", u"", u"Line one\rLine two", u""},
        {u"Saving & %SP & %ST & %SP & failed", u"A.DAT%", u"Saving A.DAT failed", u""},
        {u"%ST & %SP & %ST", u"left%right", u"left right", u"right"},
        {u"%ST & %ST", u"one", u"oneone", u"one"},
        {u"%ST & %ST", u"%b%c", u"b", u"c"},
        {u"Text (%ST) here", u"X%", u"X", u""},
        {u"%sp & %AND Chips & %CR.", u"", u"%sp%AND Chips%CR.", u""},
        {u"Fish&%SP&%AND&%SP4&Chips&", u"", u"Fish &    Chips", u""},
        {u"%ST", u"50% off", u"50", u" off"},
        {u"%ST & %ST", nearPercent + u"b%", Text(16382, u'a') + u"b", u""},
        {Text(32766, u'x') + u"&y", u"", Text(32766, u'x') + u"y", u""},
        {u"head&" + Text(32767, u'x') + u"&y", u"", u"head", u""},
        {u"%ST & %ST", u"head%" + farPercent, u"head", u"head%" + farPercent}};
    desk::Desk computer;
    for (auto [text, args, result, left] : cases) {
        const bool fails = result == u"head";
        EXPECT_TRUE(ExpandTextTokens(computer.boxes, text, args) == result) << ToUtf8(text.substr(0, 40));
        EXPECT_TRUE(args == left) << ToUtf8(text.substr(0, 40));
        EXPECT_EQ(computer.Boxes(), fails ? Notes{desk::Long("Overflow", 6)} : Notes{});
    }
}

TEST(ButtonsTest, NamesAddUp) {
    const std::pair<Text, int> names[] = {{u"vbOKOnly", 0},
                                          {u"vbOKCancel", 1},
                                          {u"vbAbortRetryIgnore", 2},
                                          {u"vbYesNoCancel", 3},
                                          {u"vbYesNo", 4},
                                          {u"vbRetryCancel", 5},
                                          {u"vbCritical", 16},
                                          {u"vbQuestion", 32},
                                          {u"vbExclamation", 48},
                                          {u"vbInformation", 64},
                                          {u"vbDefaultButton1", 0},
                                          {u"vbDefaultButton2", 256},
                                          {u"vbDefaultButton3", 512},
                                          {u"vbDefaultButton4", 768},
                                          {u"vbApplicationModal", 0},
                                          {u"vbSystemModal", 4096},
                                          {u"vbMsgBoxHelpButton", 16384},
                                          {u"vbMsgBoxSetForeground", 65536},
                                          {u"vbMsgBoxRight", 524288},
                                          {u"vbMsgBoxRtlReading", 1048576}};
    for (const auto& [name, value] : names) {
        EXPECT_EQ(ParseMsgBoxButtons(name), value) << ToUtf8(name);
        EXPECT_TRUE(IsMsgBoxConstant(name) && !IsMsgBoxConstant(UpperCase(name))) << ToUtf8(name);
    }
    Text many;
    int rest = 2147483647;
    for (auto name = std::rbegin(names); name != std::rend(names); ++name)
        for (; name->second > 0 && rest >= name->second; rest -= name->second) many += name->first + u"+";
    const std::pair<Text, int> sums[] = {{u"vbYesNo + vbQuestion", 0},
                                         {u"vbYesNo+vbYesNo", 8},
                                         {u"+vbYesNo", 4},
                                         {u"vbYesNo+", 4},
                                         {u"vbYesNo+vbQuestion+any", 36},
                                         {u"", 0},
                                         {many, 2147483647}};
    for (const auto& [text, value] : sums) EXPECT_EQ(ParseMsgBoxButtons(text), value) << ToUtf8(text);
    EXPECT_EQ(FaultOf([&] { ParseMsgBoxButtons(many + u"vbOKCancel"); }), "6 Overflow: Buttons");
    EXPECT_EQ(ParseMsgBoxButtons(Text(32766, u'x') + u"+vbYesNo"), 4);
    EXPECT_EQ(ErrorOf([&] { ParseMsgBoxButtons(Text(32767, u'x') + u"+vbYesNo"); }), 6);
}

struct LanguageTest : testing::Test {
    LanguageTest() {
        computer.app.path = u"C:\\A";
        harness::AddSmallTexts(databases);
        OpenLanguageDatabase(databases, computer.boxes, u"C:\\B\\Common.LNG", data.CommonLanguageDb, true);
        OpenLanguageDatabase(databases, computer.boxes, u"C:\\A\\Horalink.lng", data.AddInLanguageDb, false);
    }
    desk::Desk computer;
    harness::MemoryDatabases& databases = computer.databases;
    ModuleData data;
};

TEST_F(LanguageTest, ADatabaseIsOpenedAsAskedOrIsNone) {
    EXPECT_FALSE(
        OpenLanguageDatabase(databases, computer.boxes, u"C:\\None.lng", data.AddInLanguageDb, true));
    EXPECT_EQ(data.AddInLanguageDb, nullptr);
    EXPECT_EQ(computer.Boxes(), Notes{desk::Short("C:\\None.lng", 3024)});
    EXPECT_EQ(computer.Calls(), (Notes{"open C:\\B\\Common.LNG read-only", "open C:\\A\\Horalink.lng",
                                       "open C:\\None.lng read-only"}));
}

TEST_F(LanguageTest, TheProjectsTextsGoToTheApplicationOneByOne) {
    const auto load = [&](const char16_t* name) {
        computer.Calls();
        return LoadProjectText(computer.boxes, computer.app, name, *data.AddInLanguageDb);
    };
    const auto texts = [&] {
        const WaitSettings& waits = computer.app.waits;
        return ToUtf8(computer.app.title + u"|" + waits.busyTitle + u"|" + waits.busyText + u"|" +
                      waits.pendingTitle + u"|" + waits.pendingText);
    };
    EXPECT_TRUE(load(u"Horalink"));
    EXPECT_EQ(texts(), "app title|busy title|busy text|pending title|pending text");
    EXPECT_EQ(computer.Calls(),
              (Notes{"rows 8 select * from tProject where EXEName = 'Horalink'", "close rows"}));
    EXPECT_FALSE(load(u"Nobody"));
    EXPECT_EQ(computer.Boxes(), Notes{desk::Short("There is no current record", 3021)});
    EXPECT_EQ(texts(), "app title|busy title|busy text|pending title|pending text");
    databases.Add(u"Horalink.lng",
                  "update tProject set OleServerBusyMsgTitle = null;"
                  "alter table tProject drop OleServerBusyMsgText");
    EXPECT_FALSE(load(u"Another"));
    EXPECT_EQ(texts(), "other title||busy text|pending title|pending text");
    EXPECT_EQ(computer.Calls().size(), 1U) << "closed after a failure";
}

TEST_F(LanguageTest, EachModeTakesTitleAndHelpFromItsOwnPlace) {
    databases.Add(u"Horalink.lng", R"(drop table tMsgBox;
        create table tMsgBox (MsgNo, Prompt, Buttons, Title, HelpFile, Context); insert into tMsgBox values
        (5, '%ST & %SP & asks', 'vbYesNo+vbQuestion', 'title & %SP & %ST', 'a.hlp & %ST', 1000),
        (6, 'plain', 'vbOKOnly', '-1', null, '-1'), (7, 'plain', 'any', '-1', null, 70000),
        (8, 'plain', 'vbOKOnly', 'title', '\x', null))");
    const BoxArguments given{.args = u"1%2%3%", .helpFile = u"g.hlp", .context = 9, .title = u"%ST & given"};
    const Table<int, int, BoxArguments, const char*> cases = {
        {2, 5, given, "1 asks|36|title 2|C:\\A\\a.hlp3|1000"},
        {0, 5, {}, " asks|36|title |C:\\A\\a.hlp|1000"},
        {2, 6, given, "plain|0|-|-|0"},
        {2, 7, given, "plain|0|-|C:\\A\\|70000"},
        {2, 8, given, "plain|0|title|-|0"},
        {1, 5, given, "1 asks|36|title 2|g.hlp|9"},
        {1, 6, {}, "plain|0|-1|..\\Mora32\\Help\\error.hlp|0"},
        {10, 0, given, "common1|4|2given|C:\\A\\common.hlp|75"},
        {10, 0, {}, "common|4|-|C:\\A\\common.hlp|75"}};
    computer.Calls();
    computer.boxes.answer = 7;
    for (const auto& [mode, number, arguments, box] : cases) {
        EXPECT_EQ(ShowLanguageMsgBox(computer.services, data, static_cast<std::int16_t>(mode),
                                     static_cast<std::int16_t>(number), arguments),
                  7);
        EXPECT_EQ(computer.Boxes(), Notes{box});
        const std::string query = mode == 1 ? "rows 8 select Prompt,Buttons,Title from tMsgBox where MsgNo = "
                                            : "rows 8 select Prompt, Buttons, Title, HelpFile, Context from "
                                              "tMsgBox where MsgNo = ";
        EXPECT_EQ(computer.Calls(), (Notes{query + std::to_string(number), "close rows"}));
    }
    computer.app.path = u"C:\\Q & A";
    ShowLanguageMsgBox(computer.services, data, mode::commonDatabase, 0);
    EXPECT_EQ(computer.Boxes(), Notes{"common|4|-|C:\\QA\\common.hlp|75"}) << "an & parts the path as well";
}

TEST_F(LanguageTest, AFailedBoxIsTheLongNoticeAndZero) {
    databases.Add(u"Horalink.lng",
                  "drop table tMsgBox; create table tMsgBox (MsgNo, Prompt, Buttons, Title);"
                  "insert into tMsgBox values (0, null, '', ''), (1, '', null, ''),"
                  " (2, '', '', null), (3, 'fine', 'vbOKOnly', 'fine')");
    databases.Add(u"Common.LNG", "alter table tMsgBox drop Context");
    const std::string noNull = desk::Long("Invalid use of Null", 94);
    const Table<int, int, std::string> cases = {
        {1, 0, noNull},
        {1, 1, noNull},
        {1, 2, noNull},
        {1, 77, desk::Long("There is no current record", 3021)},
        {2, 3, desk::Long("The field 'HelpFile' was not found in Horalink.lng", 3061)},
        {10, 0, desk::Long("The field 'Context' was not found in Common.LNG", 3061)}};
    const auto show = [&](int mode, int number, BoxArguments arguments = {}) {
        computer.Calls();
        return ShowLanguageMsgBox(computer.services, data, static_cast<std::int16_t>(mode),
                                  static_cast<std::int16_t>(number), arguments);
    };
    for (const auto& [mode, number, notice] : cases) {
        EXPECT_EQ(show(mode, number), 0);
        EXPECT_EQ(computer.Boxes(), Notes{notice}) << mode << " " << number;
        EXPECT_EQ(computer.Calls().size(), 1U) << "closed after a failure";
    }
    EXPECT_EQ(show(1, 3, {.context = 40000}), 0);
    EXPECT_EQ(computer.Boxes(), Notes{desk::Long("Overflow", 6)});
    databases.FailAt(5, DataError::DiskError);
    EXPECT_EQ(show(1, 3), 1) << "shown, and only the closing failed";
    EXPECT_EQ(computer.Boxes(), (Notes{"fine|0|fine|..\\Mora32\\Help\\error.hlp|0",
                                       desk::Long("The database file can't be read or written", 3043)}));
    data.AddInLanguageDb = nullptr;
    EXPECT_EQ(show(1, 3), 0);
    EXPECT_EQ(computer.Boxes(), Notes{desk::Long("Object variable is not set", 91)});
}

struct MessagesTest : LanguageTest {
    bool Load() {
        computer.Calls();
        return LoadMessageTable(computer.boxes, data.MessageTable, u"tMessages",
                                *databases.OpenDatabase(u"Horalink.lng", true));
    }
    const std::vector<Text>& texts = data.MessageTable.texts;
};

TEST_F(MessagesTest, StandByRankAndGiveTheButtonsTheirWords) {
    ASSERT_TRUE(Load());
    EXPECT_EQ(computer.Calls(),
              (Notes{"open Horalink.lng read-only",
                     "rows 8 SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tMessages ORDER BY ID",
                     "close rows"}));
    const auto words = [&] {
        ButtonTexts buttons;
        TakeButtonTexts(data.MessageTable, buttons);
        Text all;
        for (const Text& word : {buttons.ok, buttons.cancel, buttons.abort, buttons.retry, buttons.ignore,
                                 buttons.yes, buttons.no, buttons.help, buttons.keepWaiting, buttons.giveUp})
            all += word + u" ";
        return ToUtf8(all);
    };
    EXPECT_EQ(words(), "ok cancel abort retry ignore yes no help keep waiting give up ");
    databases.Add(u"Horalink.lng",
                  "update tMessages set Caption = null where ID = 7;"
                  "delete from tMessages where ID in (3, 16)");
    ASSERT_TRUE(Load());
    EXPECT_EQ(words(), "cancel abort retry ignore yes no help keep waiting Keep waiting Give up ")
        << "a gap moves the texts behind it down";
    EXPECT_EQ(texts[6], u"");
    EXPECT_EQ(data.MessageTable[14], u"keep waiting");
    EXPECT_EQ(ErrorOf([&] { data.MessageTable[15]; }), 9);
    data.MessageTable.texts[7] = u"";
    EXPECT_EQ(words(), "OK abort retry ignore yes no help keep waiting Keep waiting Give up ");
}

TEST_F(MessagesTest, ATableThatDoesNotAddUpIsRefused) {
    const std::string columns = "drop table if exists tMessages; create table tMessages (ID, Caption);";
    const Table<std::string, std::string> cases = {
        {columns, desk::Long("Subscript out of range: the message table has no rows", 9)},
        {columns + "insert into tMessages values (0, 'twice'), (0, 'twice')",
         desk::Long("There is no current record", 3021)},
        {columns + "insert into tMessages values (-2, 'text')", desk::Long("Type mismatch", 13)},
        {columns + "insert into tMessages values (-2, 40000)", desk::Long("Overflow", 6)},
        {"alter table tMessages add Third",
         desk::Long("The two parts of a union query have different numbers of fields", 3307)},
        {"drop table tMessages", desk::Long("The table 'tMessages' was not found in Horalink.lng", 3078)}};
    for (const auto& [sql, notice] : cases) {
        databases.Add(u"Horalink.lng", sql);
        EXPECT_FALSE(Load()) << sql;
        EXPECT_EQ(computer.Boxes(), Notes{notice});
        EXPECT_EQ(computer.Calls().size(), 2U) << "closed after a failure";
    }
}

}  // namespace
