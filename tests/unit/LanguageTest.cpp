#include <gtest/gtest.h>

#include <sstream>

#include "Joined.h"
#include "Table.h"
#include "harness/Desk.h"
#include "harness/SmallTexts.h"
#include "language/LanguageDatabase.h"
#include "language/LanguageMsgBox.h"
#include "language/TextTokens.h"

using namespace horalink;
using namespace platform;
using desk::Long, desk::Notes, desk::Short;

namespace {

TEST(TokensTest, ExpandAsWrittenUpToPositionsOfSixteenBits) {
    desk::Desk computer;
    // The expansion, and what is left of the arguments.
    const auto expand = [&](const Text& text, Text args) {
        const Text result = ExpandTextTokens(computer.boxes, text, args);
        return ToUtf8(result + u"|" + args + u"|");
    };
    EXPECT_EQ(expand(u"", u"a%") + expand(u"Hello & -1", u"") + expand(u"-1 & Hello", u"") +
                  expand(u"One & %CR & Two", u"") + expand(u"%sp & %AND Chips & %CR.", u"") +
                  expand(u"Fish&%SP&%AND&%SP4&Chips&", u""),
              "|a%|-1||-1Hello||One\rTwo||%sp%AND Chips%CR.||Fish &    Chips||");
    EXPECT_EQ(expand(u"%ST & %SP & %ST", u"left%right") + expand(u"%ST & %ST", u"one") +
                  expand(u"%ST & %ST", u"%b%c") + expand(u"Text (%ST) here", u"X%") +
                  expand(u"%ST", u"50% off"),
              "left right|right|oneone|one|b|c|X||50| off|");
    const std::string x(32766, 'x'), a(16382, 'a'), far = "head%a" + a + "%";
    EXPECT_EQ(expand(FromUtf8(x + "&y"), u"") + expand(u"%ST & %ST", FromUtf8(a + "%b%")),
              x + "y||" + a + "b||");
    EXPECT_EQ(computer.Boxes(), Notes{});
    EXPECT_EQ(expand(FromUtf8("head&x" + x + "&y"), u"") + expand(u"%ST & %ST", FromUtf8(far)),
              "head||head|" + far + "|");
    EXPECT_EQ(computer.Boxes(), (Notes{Long("Overflow", 6), Long("Overflow", 6)}));
}

TEST(ButtonsTest, NamesAddUp) {
    std::istringstream names(
        "RtlReading 1048576 Right 524288 SetForeground 65536 HelpButton 16384 SystemModal 4096 "
        "DefaultButton4 768 "
        "DefaultButton3 512 DefaultButton2 256 Information 64 Exclamation 48 Question 32 Critical 16 "
        "RetryCancel 5 "
        "YesNo 4 YesNoCancel 3 AbortRetryIgnore 2 OKCancel 1 OKOnly 0 DefaultButton1 0 ApplicationModal 0");
    Text largest;
    std::string word;
    for (int value, rest = 2147483647; names >> word >> value;) {
        const Text name = FromUtf8((value > 4096 ? "vbMsgBox" : "vb") + word);
        EXPECT_TRUE(IsMsgBoxConstant(name) && !IsMsgBoxConstant(UpperCase(name))) << word;
        EXPECT_EQ(ParseMsgBoxButtons(name), value) << word;
        for (; value > 0 && rest >= value; rest -= value) largest += name + u"+";
    }
    const auto sum = [](auto... texts) { return Joined(ParseMsgBoxButtons(texts)...); };
    EXPECT_EQ(sum(u"vbYesNo + vbQuestion", u"vbYesNo+vbYesNo", u"+vbYesNo", u"vbYesNo+",
                  u"vbYesNo+vbQuestion+any", u""),
              "0|8|4|4|36|0|");
    EXPECT_EQ(sum(largest, Text(32766, u'x') + u"+vbYesNo"), "2147483647|4|");
    EXPECT_EQ(Faults([&] { sum(largest + u"vbOKCancel"); }, [&] { sum(Text(32767, u'x') + u"+vbYesNo"); }),
              "6 Overflow: Buttons|6 Overflow|");
}

struct LanguageTest : testing::Test {
    LanguageTest() {
        computer.app.path = u"C:\\A";
        harness::AddSmallTexts(databases);
        OpenLanguageDatabase(databases, computer.boxes, u"C:\\B\\Common.LNG", data.CommonLanguageDb, true);
        OpenLanguageDatabase(databases, computer.boxes, u"C:\\A\\Horalink.lng", data.AddInLanguageDb, false);
    }
    std::int16_t Show(int mode, int number, BoxArguments arguments = {}) {
        computer.Calls();
        return ShowLanguageMsgBox(computer.services, data, static_cast<std::int16_t>(mode),
                                  static_cast<std::int16_t>(number), arguments);
    }
    bool LoadProject(const char16_t* name) {
        computer.Calls();
        return LoadProjectText(computer.boxes, computer.app, name, *data.AddInLanguageDb);
    }
    std::string ProjectTexts() {
        const WaitSettings& waits = computer.app.waits;
        return Joined(computer.app.title, waits.busyTitle, waits.busyText, waits.pendingTitle,
                      waits.pendingText);
    }
    bool LoadMessages() {
        computer.Calls();
        return LoadMessageTable(computer.boxes, data.MessageTable, u"tMessages",
                                *databases.OpenDatabase(u"Horalink.lng", true));
    }
    std::string ButtonWords() {
        ButtonTexts words;
        TakeButtonTexts(data.MessageTable, words);
        return Joined(words.ok, words.cancel, words.abort, words.retry, words.ignore, words.yes, words.no,
                      words.help, words.keepWaiting, words.giveUp);
    }
    desk::Desk computer;
    harness::MemoryDatabases& databases = computer.databases;
    ModuleData data;
};

TEST_F(LanguageTest, ADatabaseIsOpenedAsAskedOrIsNone) {
    EXPECT_FALSE(
        OpenLanguageDatabase(databases, computer.boxes, u"C:\\None.lng", data.AddInLanguageDb, true));
    EXPECT_EQ(data.AddInLanguageDb, nullptr);
    EXPECT_EQ(computer.Boxes(), Notes{Short("C:\\None.lng", 3024)});
    EXPECT_EQ(computer.Calls(), (Notes{"open C:\\B\\Common.LNG read-only", "open C:\\A\\Horalink.lng",
                                       "open C:\\None.lng read-only"}));
}

TEST_F(LanguageTest, TheProjectsTextsGoToTheApplicationOneByOne) {
    EXPECT_TRUE(LoadProject(u"Horalink"));
    EXPECT_EQ(ProjectTexts(), "app title|busy title|busy text|pending title|pending text|");
    EXPECT_EQ(computer.Calls(),
              (Notes{"rows 8 select * from tProject where EXEName = 'Horalink'", "close rows"}));
    EXPECT_FALSE(LoadProject(u"Nobody"));
    EXPECT_EQ(computer.Boxes(), Notes{Short("There is no current record", 3021)});
    EXPECT_EQ(ProjectTexts(), "app title|busy title|busy text|pending title|pending text|");
    databases.Add(u"Horalink.lng",
                  "update tProject set OleServerBusyMsgTitle = null;"
                  "alter table tProject drop OleServerBusyMsgText");
    EXPECT_FALSE(LoadProject(u"Another"));
    EXPECT_EQ(ProjectTexts(), "other title||busy text|pending title|pending text|");
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
    computer.boxes.answer = 7;
    for (const auto& [mode, number, arguments, box] : cases) {
        EXPECT_EQ(Show(mode, number, arguments), 7);
        EXPECT_EQ(computer.Boxes(), Notes{box});
        const std::string fields =
            mode == 1 ? "Prompt,Buttons,Title" : "Prompt, Buttons, Title, HelpFile, Context";
        const std::string query =
            "rows 8 select " + fields + " from tMsgBox where MsgNo = " + std::to_string(number);
        EXPECT_EQ(computer.Calls(), (Notes{query, "close rows"}));
    }
    computer.app.path = u"C:\\Q & A";
    Show(10, 0);
    EXPECT_EQ(computer.Boxes(), Notes{"common|4|-|C:\\QA\\common.hlp|75"}) << "an & parts the path as well";
}

TEST_F(LanguageTest, AFailedBoxIsTheLongNoticeAndZero) {
    databases.Add(u"Horalink.lng",
                  "drop table tMsgBox; create table tMsgBox (MsgNo, Prompt, Buttons, Title);"
                  "insert into tMsgBox values (0, null, '', ''), (1, '', null, ''),"
                  " (2, '', '', null), (3, 'fine', 'vbOKOnly', 'fine')");
    databases.Add(u"Common.LNG", "alter table tMsgBox drop Context");
    const auto fail = [&](int mode, int number) {
        EXPECT_EQ(Show(mode, number), 0);
        EXPECT_EQ(computer.Calls().size(), 1U) << "closed after a failure";
        return computer.Boxes();
    };
    for (const int number : {0, 1, 2}) EXPECT_EQ(fail(1, number), Notes{Long("Invalid use of Null", 94)});
    EXPECT_EQ(fail(1, 77), Notes{Long("There is no current record", 3021)});
    EXPECT_EQ(fail(2, 3), Notes{Long("The field 'HelpFile' was not found in Horalink.lng", 3061)});
    EXPECT_EQ(fail(10, 0), Notes{Long("The field 'Context' was not found in Common.LNG", 3061)});
    EXPECT_EQ(Show(1, 3, {.context = 40000}), 0);
    EXPECT_EQ(computer.Boxes(), Notes{Long("Overflow", 6)});
    databases.FailAt(5, DataError::DiskError);
    EXPECT_EQ(Show(1, 3), 1) << "shown, and only the closing failed";
    EXPECT_EQ(computer.Boxes(), (Notes{"fine|0|fine|..\\Mora32\\Help\\error.hlp|0",
                                       Long("The database file can't be read or written", 3043)}));
    data.AddInLanguageDb = nullptr;
    EXPECT_EQ(Show(1, 3), 0);
    EXPECT_EQ(computer.Boxes(), Notes{Long("Object variable is not set", 91)});
}

TEST_F(LanguageTest, MessagesStandByRankAndGiveTheButtonsTheirWords) {
    ASSERT_TRUE(LoadMessages());
    EXPECT_EQ(computer.Calls(),
              (Notes{"open Horalink.lng read-only",
                     "rows 8 SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tMessages ORDER BY ID",
                     "close rows"}));
    EXPECT_EQ(ButtonWords(), "ok|cancel|abort|retry|ignore|yes|no|help|keep waiting|give up|");
    databases.Add(u"Horalink.lng",
                  "update tMessages set Caption = null where ID in (4, 8);"
                  "delete from tMessages where ID in (3, 16)");
    ASSERT_TRUE(LoadMessages());
    EXPECT_EQ(ButtonWords(), "OK|abort|retry|ignore|yes|no|help|keep waiting|Keep waiting|Give up|")
        << "a gap moves the texts after it down";
    const MessageTexts& table = data.MessageTable;
    EXPECT_EQ(Joined(table[0], table[3], table[14]), "login failed||keep waiting|");
    EXPECT_EQ(FaultOf([&] { table[15]; }), "9 Subscript out of range: message 15");
}

TEST_F(LanguageTest, AMessageTableThatDoesNotAddUpIsRefused) {
    const std::string columns = "drop table if exists tMessages; create table tMessages (ID, Caption);";
    const auto load = [&](const std::string& sql) {
        databases.Add(u"Horalink.lng", sql);
        EXPECT_FALSE(LoadMessages()) << sql;
        EXPECT_EQ(computer.Calls().size(), 2U) << "closed after a failure";
        return computer.Boxes();
    };
    EXPECT_EQ(load(columns), Notes{Long("Subscript out of range: the message table has no rows", 9)});
    EXPECT_EQ(load("insert into tMessages values (0, 'twice'), (0, 'twice')"),
              Notes{Long("There is no current record", 3021)});
    EXPECT_EQ(load("insert into tMessages values (-2, 'text')"), Notes{Long("Type mismatch", 13)});
    EXPECT_EQ(load("insert into tMessages values (-3, 40000)"), Notes{Long("Overflow", 6)});
    EXPECT_EQ(load("alter table tMessages add Third"),
              Notes{Long("The two parts of a union query have different numbers of fields", 3307)});
    EXPECT_EQ(load("drop table tMessages"),
              Notes{Long("The table 'tMessages' was not found in Horalink.lng", 3078)});
}

}  // namespace
