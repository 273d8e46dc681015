#include <gtest/gtest.h>

#include "harness/Cases.h"
#include "harness/Desk.h"
#include "language/LanguageDatabase.h"
#include "language/LanguageMsgBox.h"
#include "language/TextTokens.h"

using namespace horalink;
using namespace platform;
using desk::Long, desk::Notes, desk::Short;

namespace {

TEST(TokensTest, ExpandAsWrittenUpToPositionsOfSixteenBits) {
    desk::Desk computer;
    const Text x(32766, u'x'), a(16382, u'a'), far = u"head%a" + a + u"%";
    // A text, its arguments, the expansion, and what is left of the arguments.
    const Table<Text, Text, Text, Text> cases = {{u"", u"a%", u"", u"a%"},
                                                 {u"-1 & Hello", u"", u"-1Hello", u""},
                                                 {u"%sp & %AND Chips & %CR.", u"", u"%sp%AND Chips%CR.", u""},
                                                 {u"Fish&%SP&%AND&%SP4&Chips&", u"", u"Fish &    Chips", u""},
                                                 {u"%ST & %SP & %ST", u"left%right", u"left right", u"right"},
                                                 {u"%ST & %ST", u"one", u"oneone", u"one"},
                                                 {u"%ST & %ST", u"%b%c", u"b", u"c"},
                                                 {u"%ST", u"50% off", u"50", u" off"},
                                                 {x + u"&y", u"", x + u"y", u""},
                                                 {u"%ST & %ST", a + u"%b%", a + u"b", u""},
                                                 {u"head&x" + x + u"&y", u"", u"head", u""},
                                                 {u"%ST & %ST", far, u"head", far}};
    for (auto [text, args, expanded, left] : cases) {
        EXPECT_EQ(ExpandTextTokens(computer.boxes, text, args), expanded);
        EXPECT_EQ(args, left);
    }
    EXPECT_EQ(computer.Boxes(), (Notes{Long("Overflow", 6), Long("Overflow", 6)}));
}

TEST(ButtonsTest, NamesAddUp) {
    const std::pair<Text, int> names[] = {
        {u"vbMsgBoxRtlReading", 1048576}, {u"vbMsgBoxRight", 524288}, {u"vbMsgBoxSetForeground", 65536},
        {u"vbMsgBoxHelpButton", 16384},   {u"vbSystemModal", 4096},   {u"vbDefaultButton4", 768},
        {u"vbInformation", 64},           {u"vbRetryCancel", 5},      {u"vbOKCancel", 1}};
    Text largest;
    int rest = 2147483647;
    for (const auto& [name, value] : names)
        for (; rest >= value; rest -= value) largest += name + u"+";
    const auto sum = [](auto... texts) { return Joined(ParseMsgBoxButtons(texts)...); };
    EXPECT_EQ(sum(u"vbYesNo + vbQuestion", u"vbYesNo+vbYesNo", u"+VBYESNO", u"vbYesNo+vbQuestion+any", u""),
              "0|8|0|36|0|");
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
        return ShowLanguageMsgBox(computer.services, data, static_cast<std::int16_t>(mode),
                                  static_cast<std::int16_t>(number), arguments);
    }
    bool LoadProject(const char16_t* name) {
        return LoadProjectText(computer.boxes, computer.app, name, *data.AddInLanguageDb);
    }
    std::string ProjectTexts() {
        const WaitSettings& waits = computer.app.waits;
        return Joined(computer.app.title, waits.busyTitle, waits.busyText, waits.pendingTitle,
                      waits.pendingText);
    }
    desk::Desk computer;
    harness::MemoryDatabases& databases = computer.databases;
    ModuleData data;
};

TEST_F(LanguageTest, TheProjectsTextsGoToTheApplicationOneByOne) {
    EXPECT_TRUE(LoadProject(u"Horalink"));
    EXPECT_EQ(ProjectTexts(), "app title|busy title|busy text|pending title|pending text|");
    EXPECT_FALSE(LoadProject(u"Nobody"));
    EXPECT_EQ(computer.Boxes(), Notes{Short("There is no current record", 3021)});
    databases.Add(u"Horalink.lng",
                  "update tProject set OleServerBusyMsgTitle = null;"
                  "alter table tProject drop OleServerBusyMsgText");
    EXPECT_FALSE(LoadProject(u"Another"));
    EXPECT_EQ(ProjectTexts(), "other title||busy text|pending title|pending text|");
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
    }
    computer.app.path = u"C:\\Q & A";
    Show(10, 0);
    EXPECT_EQ(computer.Boxes(), Notes{"common|4|-|C:\\QA\\common.hlp|75"}) << "an & parts the path as well";
}

}  // namespace
