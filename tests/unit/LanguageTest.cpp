#include <gtest/gtest.h>

#include "ErrorOf.h"
#include "Fakes.h"
#include "Table.h"
#include "language/LanguageMsgBox.h"
#include "language/MsgBoxButtons.h"
#include "language/TextTokens.h"

using namespace horalink;
using namespace platform;

namespace {

TEST(TokensTest, ExpandAsWritten) {
    const Table<Text, Text, Text, Text> cases = {
        {u"", u"a%", u"", u"a%"},
        {u"Hello & -1", u"", u"-1", u""},
        {u"-1 & Hello", u"", u"-1Hello", u""},
        {u"Line one & %CR & Line two", u"", u"Line one\rLine two", u""},
        {u"Saving & %SP & %ST & %SP & failed", u"A.DAT%", u"Saving A.DAT failed", u""},
        {u"%ST & %SP & %ST", u"left%right", u"left right", u"right"},
        {u"Text (%ST) here", u"X%", u"X", u""},
        {u"%sp", u"", u"%sp", u""},
        {u"Fish&%SP&%AND&%SP4&Chips&", u"", u"Fish &    Chips", u""},
        {u"%ST", u"50% off", u"50", u" off"}};
    fakes::FakeBoxes boxes;
    for (auto [text, args, result, left] : cases) {
        EXPECT_EQ(ExpandTextTokens(boxes, text, args), result) << ToUtf8(text);
        EXPECT_EQ(args, left) << ToUtf8(text);
    }
    EXPECT_TRUE(boxes.shown.empty());
}

TEST(TokensTest, PositionsBeyondSixteenBitsEndInTheNotice) {
    fakes::FakeBoxes boxes;
    Text none, args = Text(16383, u'a') + u"%";
    const Text given = args;
    EXPECT_EQ(ExpandTextTokens(boxes, Text(32766, u'x') + u"&y", none).size(), 32767U);
    EXPECT_TRUE(boxes.shown.empty());
    EXPECT_EQ(ExpandTextTokens(boxes, u"head&" + Text(32767, u'x') + u"&y", none), u"head");
    EXPECT_EQ(ExpandTextTokens(boxes, u"head & %ST", args), u"head");
    EXPECT_EQ(args, given);
    ASSERT_EQ(boxes.shown.size(), 2U);
    for (const MessageBox& notice : boxes.shown) {
        EXPECT_EQ(notice.prompt, u"Error No: [6]\r    Overflow");
        EXPECT_EQ(notice.title, u"System Fatal Notice");
        EXPECT_EQ(notice.buttons, 16);
    }
}

TEST(ButtonsTest, NamesAddUp) {
    Text many;
    for (int i = 0; i < 2047; ++i) many += u"vbMsgBoxRtlReading+";
    const std::pair<Text, int> cases[] = {
        {u"vbYesNo + vbQuestion", 0}, {u"vbYesNo+vbYesNo", 8}, {u"+vbYesNo", 4}, {u"vbyesno", 0}, {u"", 0},
        {u"vbYesNo+vbQuestion", 36}};
    for (const auto& [text, value] : cases) EXPECT_EQ(ParseMsgBoxButtons(text), value) << ToUtf8(text);
    EXPECT_EQ(ParseMsgBoxButtons(u"vbCritical+vbDefaultButton4+vbSystemModal+vbMsgBoxHelpButton"),
              16 + 768 + 4096 + 16384);
    EXPECT_EQ(ParseMsgBoxButtons(many), 2047 * 1048576);
    EXPECT_EQ(ErrorOf([&] { ParseMsgBoxButtons(many + u"vbMsgBoxRtlReading"); }), 6);
}

struct LanguageTest : testing::Test {
    LanguageTest() { data.AddInLanguageDb = computer.language; }
    fakes::Row& BoxRow(std::int16_t number) {
        return computer.language->answers[fakes::Computer::BoxQuery(number)][0];
    }
    const MessageBox& Show(std::int16_t number, BoxArguments arguments = {}) {
        answer = ShowLanguageMsgBox(computer.services, data, mode::general, number, arguments);
        return computer.boxes.shown.back();
    }
    fakes::Computer computer;
    ModuleData data;
    std::int16_t answer = 0;
};

TEST_F(LanguageTest, ABoxTakesPromptTitleAndHelpFromItsRow) {
    BoxRow(2) = {{u"Prompt", u"%ST & %SP & read"},
                 {u"Buttons", u"vbYesNo+vbQuestion"},
                 {u"Title", u"About & %SP & %ST"},
                 {u"HelpFile", u"%ST"},
                 {u"Context", 1000}};
    computer.boxes.answer = 7;
    const MessageBox& box = Show(2, {.args = u"a%b%c.hlp%"});
    EXPECT_EQ(answer, 7);
    EXPECT_EQ(box.prompt, u"a read");
    EXPECT_EQ(box.buttons, 36);
    EXPECT_EQ(box.title, u"About b");
    EXPECT_EQ(box.helpFile, u"c.hlp") << "the piece with %ST is dropped as a whole";
    EXPECT_EQ(box.helpContext, 1000);
}

TEST_F(LanguageTest, TitleAndContextAreLeftOutEachForItself) {
    for (const auto& [title, context] :
         {std::pair<Value, Value>(u"T", 5), {u"T", u"-1"}, {u"-1", 5}, {u"-1", Null{}}}) {
        BoxRow(0)[u"Title"] = title;
        BoxRow(0)[u"Context"] = context;
        EXPECT_EQ(Show(0).title.has_value(), title == Value(u"T"));
        EXPECT_EQ(Show(0).helpFile.has_value(), context == Value(5));
    }
}

TEST_F(LanguageTest, AFailedBoxIsTheNoticeAndZero) {
    BoxRow(0)[u"Prompt"] = Null{};
    BoxRow(1)[u"Title"] = Null{};
    BoxRow(2).erase(u"Context");
    computer.language->answers[fakes::Computer::BoxQuery(3)].clear();
    for (const auto& [number, error] :
         {std::pair(0, u"[94]"), {1, u"[94]"}, {2, u"[3265]"}, {3, u"[3021]"}, {77, u"[3078]"}}) {
        computer.boxes.shown.clear();
        EXPECT_NE(Show(static_cast<std::int16_t>(number)).prompt.find(error), Text::npos) << number;
        EXPECT_EQ(answer, 0);
        EXPECT_EQ(computer.boxes.shown.size(), 1U);
    }
    data.AddInLanguageDb = nullptr;
    Show(4);
    EXPECT_EQ(answer, 0);
}

TEST_F(LanguageTest, MessagesStandByRankAndATableThatDoesNotAddUpIsRefused) {
    const auto row = [](int id, Value caption) { return fakes::Row{{u"ID", id}, {u"Caption", caption}}; };
    const auto load = [&](fakes::Rows rows) {
        computer.language->answers[fakes::Computer::messagesQuery] = std::move(rows);
        computer.boxes.shown.clear();
        const bool loaded =
            LoadMessageTable(computer.boxes, data.MessageTable, u"tMessages", *computer.language);
        EXPECT_EQ(computer.boxes.shown.size(), loaded ? 0U : 1U);
        return loaded;
    };
    ASSERT_TRUE(load({row(-1, 3), row(10, u"ten"), row(20, Null{}), row(30, u"thirty")}));
    EXPECT_EQ(data.MessageTable[0] + u"|" + data.MessageTable[1] + u"|" + data.MessageTable[2],
              u"ten||thirty");
    EXPECT_THROW(data.MessageTable[3], RuntimeError);
    fakes::Rows nine{row(-1, 9)};
    for (int id = 0; id < 9; ++id) nine.push_back(row(id, id == 7 ? Value(Null{}) : Value(u"Absagen")));
    ASSERT_TRUE(load(nine));
    ButtonTexts buttons;
    TakeButtonTexts(data.MessageTable, buttons);
    EXPECT_EQ(buttons.ok + u"|" + buttons.cancel + u"|" + buttons.abort + u"|" + buttons.giveUp,
              u"OK|Absagen|Abort|Give up");
    for (const fakes::Rows& rows :
         {fakes::Rows{row(-1, 0)}, {row(-1, 2), row(0, u"only")}, {row(-1, u"text")}, {row(-1, 40000)}, {}})
        EXPECT_FALSE(load(rows));
    EXPECT_FALSE(LoadMessageTable(computer.boxes, data.MessageTable, u"tNone", *computer.language));
}

}  // namespace
