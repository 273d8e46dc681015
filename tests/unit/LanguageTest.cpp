#include <gtest/gtest.h>

#include "Fakes.h"
#include "language/LanguageDatabase.h"
#include "language/LanguageMsgBox.h"
#include "language/MsgBoxButtons.h"
#include "language/TextTokens.h"

using namespace horalink;
using namespace platform;

namespace {

struct TokenCase {
    const char16_t *text, *args, *result, *left;
};

TEST(TokensTest, ExpandAsWritten) {
    const TokenCase cases[] = {
        {u"", u"a%", u"", u"a%"},
        {u"-1", u"", u"-1", u""},
        {u"Hello & -1", u"", u"-1", u""},
        {u"-1 & Hello", u"", u"-1Hello", u""},
        {u"Line one & %CR & Line two", u"", u"Line one\rLine two", u""},
        {u"Saving & %SP & %ST & %SP & failed", u"A.DAT%", u"Saving A.DAT failed", u""},
        {u"%ST & %SP & %ST", u"left%right", u"left right", u"right"},
        {u"%ST & %ST", u"one", u"oneone", u"one"},
        {u"%ST", u"", u"", u""},
        {u"Text (%ST) here", u"X%", u"X", u""},
        {u"%sp", u"", u"%sp", u""},
        {u"A &  B", u"", u"AB", u""},
        {u"Fish %AND Chips", u"", u"Fish %AND Chips", u""},
        {u"Fish&%SP&%AND&%SP4&Chips&", u"", u"Fish &    Chips", u""},
        {u"%ST", u"50% off", u"50", u" off"},
    };
    fakes::FakeBoxes boxes;
    for (const TokenCase& c : cases) {
        Text args = c.args;
        EXPECT_EQ(ExpandTextTokens(boxes, c.text, args), c.result) << ToUtf8(c.text);
        EXPECT_EQ(args, c.left) << ToUtf8(c.text);
    }
    EXPECT_TRUE(boxes.shown.empty());
}

TEST(TokensTest, PositionsBeyondSixteenBitsEndInTheNotice) {
    fakes::FakeBoxes boxes;
    Text none;
    EXPECT_EQ(ExpandTextTokens(boxes, Text(32766, u'x') + u"&y", none).size(), 32767U);
    EXPECT_TRUE(boxes.shown.empty());
    EXPECT_EQ(ExpandTextTokens(boxes, u"head&" + Text(32767, u'x') + u"&y", none), u"head");
    ASSERT_EQ(boxes.shown.size(), 1U);
    EXPECT_EQ(boxes.shown[0].prompt, u"Error No: [6]\r    Overflow");
    EXPECT_EQ(boxes.shown[0].title, u"System Fatal Notice");
    EXPECT_EQ(boxes.shown[0].buttons, 16);
    Text args = Text(16383, u'a') + u"%";
    const Text given = args;
    EXPECT_EQ(ExpandTextTokens(boxes, u"head & %ST", args), u"head");
    EXPECT_EQ(args, given);
    EXPECT_EQ(boxes.shown.size(), 2U);
}

TEST(ButtonsTest, NamesAddUp) {
    const std::vector<std::pair<const char16_t*, int>> cases = {
        {u"", 0},
        {u"vbYesNo+vbQuestion", 36},
        {u"vbYesNo + vbQuestion", 0},
        {u"vbYesNo+vbYesNo", 8},
        {u"vbYesNo+", 4},
        {u"+vbYesNo", 4},
        {u"vbyesno", 0},
        {u"vbMsgBoxRtlReading", 1048576},
        {u"vbCritical+vbDefaultButton4+vbSystemModal+vbMsgBoxHelpButton", 16 + 768 + 4096 + 16384},
    };
    for (const auto& [text, value] : cases) EXPECT_EQ(ParseMsgBoxButtons(text), value) << ToUtf8(text);
    Text many;
    for (int i = 0; i < 1639; ++i) many += u"vbMsgBoxRtlReading+";
    EXPECT_EQ(ParseMsgBoxButtons(many), 1639 * 1048576);
    for (int i = 0; i < 409; ++i) many += u"vbMsgBoxRtlReading+";
    EXPECT_THROW(ParseMsgBoxButtons(many), RuntimeError);
}

struct LanguageTest : testing::Test {
    LanguageTest() {
        data.AddInLanguageDb = computer.language;
        data.CommonLanguageDb = computer.common;
    }
    fakes::Row& BoxRow(std::int16_t number) {
        return computer.language->answers[fakes::Computer::BoxQuery(number)][0];
    }
    std::int16_t Show(std::int16_t number, BoxArguments arguments = {}) {
        return ShowLanguageMsgBox(computer.services, data, mode::general, number, arguments);
    }
    fakes::Computer computer;
    ModuleData data;
};

TEST_F(LanguageTest, ABoxTakesPromptTitleAndHelpFromItsRow) {
    BoxRow(2) = {{u"Prompt", Value(u"%ST & %SP & read")},
                 {u"Buttons", Value(u"vbYesNo+vbQuestion")},
                 {u"Title", Value(u"About & %SP & %ST")},
                 {u"HelpFile", Value(u"%ST")},
                 {u"Context", Value(1000)}};
    computer.boxes.answer = 7;
    EXPECT_EQ(Show(2, {.args = u"a%b%c.hlp%"}), 7);
    ASSERT_EQ(computer.boxes.shown.size(), 1U);
    const MessageBox& box = computer.boxes.shown[0];
    EXPECT_EQ(box.prompt, u"a read");
    EXPECT_EQ(box.buttons, 36);
    EXPECT_EQ(box.title, u"About b");
    EXPECT_EQ(box.helpFile, u"c.hlp") << "the piece with %ST is dropped as a whole";
    EXPECT_EQ(box.helpContext, 1000);
}

TEST_F(LanguageTest, TitleAndContextAreLeftOutEachForItself) {
    const struct {
        Value title, context;
        bool hasTitle, hasHelp;
    } cases[] = {
        {u"T", 5, true, true},        {u"T", u"-1", true, false},    {u"-1", 5, false, true},
        {u"-1", u"-1", false, false}, {u"-1", Null{}, false, false},
    };
    for (const auto& c : cases) {
        BoxRow(0)[u"Title"] = c.title;
        BoxRow(0)[u"Context"] = c.context;
        Show(0);
        EXPECT_EQ(computer.boxes.shown.back().title.has_value(), c.hasTitle);
        EXPECT_EQ(computer.boxes.shown.back().helpFile.has_value(), c.hasHelp);
    }
}

TEST_F(LanguageTest, ModeOneTakesHelpFromTheArguments) {
    computer.language->answers[u"select Prompt,Buttons,Title from tMsgBox where MsgNo = 9"] = {
        {{u"Prompt", Value(u"p")}, {u"Buttons", Value(u"")}, {u"Title", Value(u"-1")}}};
    ShowLanguageMsgBox(computer.services, data, mode::helpFromArguments, 9);
    EXPECT_EQ(computer.boxes.shown.back().title, u"-1");
    EXPECT_EQ(computer.boxes.shown.back().helpFile, u"..\\Mora32\\Help\\error.hlp");
    ShowLanguageMsgBox(computer.services, data, mode::helpFromArguments, 9,
                       {.helpFile = Value(u"my.hlp"), .context = Value(u"12")});
    EXPECT_EQ(computer.boxes.shown.back().helpFile, u"my.hlp");
    EXPECT_EQ(computer.boxes.shown.back().helpContext, 12);
}

TEST_F(LanguageTest, ModeTenReadsTheCommonDatabaseAndTakesTheTitleAsArgument) {
    computer.common->answers[fakes::Computer::BoxQuery(1)] = {{{u"Prompt", Value(u"common")},
                                                               {u"Buttons", Value(u"")},
                                                               {u"HelpFile", Value(u"x")},
                                                               {u"Context", Value(u"-1")}}};
    ShowLanguageMsgBox(computer.services, data, mode::commonDatabase, 1);
    EXPECT_FALSE(computer.boxes.shown.back().title.has_value());
    ShowLanguageMsgBox(computer.services, data, mode::commonDatabase, 1, {.title = u"Given"});
    EXPECT_EQ(computer.boxes.shown.back().title, u"Given");
}

TEST_F(LanguageTest, AFailedBoxIsTheNoticeAndZero) {
    BoxRow(0)[u"Prompt"] = Null{};
    BoxRow(1)[u"Title"] = Null{};
    BoxRow(2).erase(u"Context");
    computer.language->answers[fakes::Computer::BoxQuery(3)].clear();
    const std::vector<const char16_t*> numbers = {u"[94]", u"[94]", u"[3265]", u"[3021]", u"[3078]"};
    for (std::int16_t i = 0; i < 5; ++i) {
        EXPECT_EQ(Show(i == 4 ? 77 : i), 0);
        EXPECT_EQ(computer.boxes.shown.size(), static_cast<std::size_t>(i) + 1) << "one notice each";
        EXPECT_NE(computer.boxes.shown.back().prompt.find(numbers[static_cast<std::size_t>(i)]), Text::npos)
            << i;
    }
    data.AddInLanguageDb = nullptr;
    EXPECT_EQ(Show(0), 0);
}

TEST_F(LanguageTest, MessagesStandByRankAndNullIsEmpty) {
    auto& rows = computer.language->answers[fakes::Computer::messagesQuery];
    rows = {{{u"ID", Value(-1)}, {u"Caption", Value(3)}},
            {{u"ID", Value(10)}, {u"Caption", Value(u"ten")}},
            {{u"ID", Value(20)}, {u"Caption", Value(Null{})}},
            {{u"ID", Value(30)}, {u"Caption", Value(u"thirty")}}};
    ASSERT_TRUE(LoadMessageTable(computer.boxes, data.MessageTable, u"tMessages", *computer.language));
    EXPECT_EQ(data.MessageTable[0], u"ten");
    EXPECT_EQ(data.MessageTable[1], u"");
    EXPECT_EQ(data.MessageTable[2], u"thirty");
    EXPECT_THROW(data.MessageTable[3], RuntimeError);
}

TEST_F(LanguageTest, AMessageTableThatDoesNotAddUpIsRefused) {
    const auto first = [](Value caption) {
        return fakes::Row{{u"ID", Value(-1)}, {u"Caption", std::move(caption)}};
    };
    const fakes::Rows cases[] = {{first(0)},
                                 {first(2), {{u"ID", Value(0)}, {u"Caption", Value(u"only")}}},
                                 {first(u"text")},
                                 {first(40000)},
                                 {}};
    for (const auto& rows : cases) {
        computer.language->answers[fakes::Computer::messagesQuery] = rows;
        const auto before = computer.boxes.shown.size();
        EXPECT_FALSE(LoadMessageTable(computer.boxes, data.MessageTable, u"tMessages", *computer.language));
        EXPECT_EQ(computer.boxes.shown.size(), before + 1);
    }
    EXPECT_FALSE(LoadMessageTable(computer.boxes, data.MessageTable, u"tNone", *computer.language));
}

TEST_F(LanguageTest, ProjectTextWritesFieldByFieldUntilItFails) {
    ASSERT_TRUE(LoadProjectText(computer.boxes, computer.app, u"Horalink", *computer.language));
    EXPECT_EQ(computer.app.title, u"Horalink");
    EXPECT_EQ(computer.app.waits.busyText, u"busy text");
    EXPECT_EQ(computer.app.waits.pendingText, u"") << "Null";
    auto& row = computer.language->answers[fakes::Computer::projectQuery][0];
    row[u"Title"] = u"New";
    row.erase(u"OleServerBusyMsgTitle");
    EXPECT_FALSE(LoadProjectText(computer.boxes, computer.app, u"Horalink", *computer.language));
    EXPECT_EQ(computer.app.title, u"New");
    EXPECT_NE(computer.boxes.shown.back().prompt.find(u" [3265]"), Text::npos);
}

}  // namespace
