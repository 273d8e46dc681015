#include <QLabel>
#include <QPushButton>

#include "QtFixture.h"
#include "platform/desktop/MessageBoxButtons.h"

namespace platform {
namespace {

using namespace buttons;

std::int16_t AnswerOf(std::int32_t buttons, std::function<void(QWidget&)> act) {
    return ShowBox(std::move(act), {u"Prompt", buttons, {}, {}, 0});
}

TEST(MessageBoxTest, EachButtonOfEachSetAnswersAndEscapeAndClosingCancel) {
    const struct {
        std::int32_t set;
        std::vector<std::pair<QString, std::int16_t>> answers;
        std::int16_t escape;  // 0 where Escape does nothing
    } cases[] = {
        {okOnly, {{"OK", 1}}, 1},
        {okCancel, {{"OK", 1}, {"Cancel", 2}}, 2},
        {abortRetryIgnore, {{"Abort", 3}, {"Retry", 4}, {"Ignore", 5}}, 0},
        {yesNoCancel, {{"Yes", 6}, {"No", 7}, {"Cancel", 2}}, 2},
        {yesNo, {{"Yes", 6}, {"No", 7}}, 0},
        {retryCancel, {{"Retry", 4}, {"Cancel", 2}}, 2},
    };
    const std::function<void(QWidget&)> ways[] = {
        [](QWidget& box) { QTest::keyClick(box.windowHandle(), Qt::Key_Escape); },
        [](QWidget& box) { box.windowHandle()->close(); }};
    for (const auto& [set, answers, escape] : cases) {
        for (std::size_t i = 0; i < answers.size(); ++i) {
            const auto answer = AnswerOf(set + critical, [set = set, &answers = answers, i](QWidget& box) {
                QPushButton* button = box.findChildren<QPushButton*>()[static_cast<qsizetype>(i)];
                EXPECT_EQ(button->text(), answers[i].first) << set << " " << i;
                button->click();
            });
            EXPECT_EQ(answer, answers[i].second) << set << " " << i;
        }
        for (const auto& leave : ways) {
            const auto answer = AnswerOf(set, [set = set, escape = escape, &leave](QWidget& box) {
                leave(box);
                EXPECT_EQ(box.isVisible(), escape == 0) << set;
                if (box.isVisible()) box.findChildren<QPushButton*>().last()->click();
            });
            EXPECT_EQ(answer, escape ? escape : answers.back().second) << set;
        }
    }
}

TEST(MessageBoxTest, EnterPressesTheDefaultButton) {
    const std::pair<std::int32_t, std::int16_t> cases[] = {
        {yesNoCancel, 6},
        {yesNoCancel + defaultButton2, 7},
        {yesNoCancel + defaultButton3, 2},
        {yesNo + defaultButton3, 6},  // there is no third button
    };
    for (const auto& [value, answer] : cases) EXPECT_EQ(AnswerOf(value, PressReturn), answer) << value;
}

TEST(MessageBoxTest, UnknownSetRaises) {
    for (const std::int32_t value : {6, 15})
        EXPECT_THROW(AnswerOf(value, PressReturn), RuntimeError) << value;
}

TEST(MessageBoxTest, PromptIsPlainTextBelowATitleThatMayBeEmpty) {
    const std::pair<std::optional<Text>, const char*> titles[] = {{{}, "Default title"}, {u"", ""}};
    for (const auto& [title, shown] : titles) {
        const auto act = [shown = shown](QWidget& box) {
            EXPECT_EQ(box.windowTitle().toStdString(), shown);
            const auto labels = box.findChildren<QLabel*>();
            EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
                return label->text() == "<b>a</b>\nb & c\n\nd\ne" && label->textFormat() == Qt::PlainText;
            }));
            PressReturn(box);
        };
        ShowBox(act, {u"<b>a</b>\rb & c\r\rd\r\ne", 0, title, {}, 0});
    }
}

// Notes what the buttons of the next box say, and leaves it by Escape.
HandleRef ReadButtons(std::vector<QString>& words) {
    return WhenBoxOpens([&words](QWidget& box) {
        for (const QPushButton* button : box.findChildren<QPushButton*>()) words.push_back(button->text());
        QTest::keyClick(box.windowHandle(), Qt::Key_Escape);
    });
}

TEST(MessageBoxTest, ButtonsSayWhatTheLanguageSaysWithoutAccessKeys) {
    ButtonTexts& texts = surroundings.application.buttons;
    texts = {u"ok",   u"&cancel", u"abort", u"retry", u"ignore",
             u"はい", u"no",      u"help",  u"wait",  u"give & up"};
    std::vector<QString> words;
    {
        const HandleRef reading = ReadButtons(words);
        EXPECT_EQ(TheDesktop().Boxes().Show({u"Prompt", yesNoCancel + helpButton, {}, {}, 0}), 2);
    }
    bool gaveUp = false;
    const HandleRef reading = ReadButtons(words);
    const auto box = TheDesktop().Waits().Open(u"Title", u"Wait?", [&](bool answer) { gaveUp = answer; });
    EXPECT_TRUE(Until([&] { return gaveUp; }));
    texts = {};
    EXPECT_EQ(words, (std::vector<QString>{"はい", "no", "&&cancel", "help", "wait", "give && up"}));
}

TEST(MessageBoxTest, LongPromptsStayOnTheScreen) {
    Text lines, word;
    for (int i = 0; i < 300; ++i) {
        lines += u"line\r";
        word += u"unbreakable";
    }
    const auto act = [](QWidget& box) {
        const QSize screen = QGuiApplication::primaryScreen()->availableSize();
        EXPECT_LE(box.width(), screen.width());
        EXPECT_LE(box.height(), screen.height());
        PressReturn(box);
    };
    for (const Text& prompt : {lines, word, lines + word}) ShowBox(act, {prompt, 0, {}, {}, 0});
}

TEST(MessageBoxTest, TextsOfMegabytesAreCutWhereNobodyReadsOn) {
    const auto act = [](QWidget& box) {
        for (const QString& shown :
             {box.windowTitle(), box.accessibleDescription(), box.findChild<QLabel*>()->text()}) {
            EXPECT_LT(shown.size(), 10000);
            EXPECT_EQ(shown.back(), QChar(0x2026));
        }
        PressReturn(box);
    };
    const Text text(5'000'000, u'x');
    ShowBox(act, {text, 0, text, {}, 0});
}

using BoxOverFormTest = FormTest;

TEST_F(BoxOverFormTest, BoxStandsOverTheFormAndOutlivesIt) {
    Show();
    const auto answer = AnswerOf(yesNo, [&](QWidget& box) {
        EXPECT_EQ(box.windowHandle()->transientParent(), Handle());
        TakeAway();
        EXPECT_EQ(Window(), nullptr);
        box.findChildren<QPushButton*>().last()->click();
    });
    EXPECT_EQ(answer, 7);
}

TEST(WaitBoxTest, AnswersOnceClosedAndMayBeDroppedInside) {
    for (const auto& [key, givesUp] : {std::pair(Qt::Key_Return, false), {Qt::Key_Escape, true}}) {
        std::vector<bool> answers;
        std::unique_ptr<WaitBox> box;
        box = TheDesktop().Waits().Open(u"Title", u"Wait?", [&](bool answer) {
            EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
            box.reset();
            Settle();
            answers.push_back(answer);
        });
        const HandleRef acting =
            WhenBoxOpens([key = key](QWidget& shown) { QTest::keyClick(shown.windowHandle(), key); });
        EXPECT_TRUE(Until([&] { return !answers.empty(); }));
        EXPECT_EQ(answers, std::vector<bool>{givesUp});
    }
}

}  // namespace
}  // namespace platform
