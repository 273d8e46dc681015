#include <QLabel>
#include <QPushButton>

#include "QtFixture.h"
#include "platform/desktop/MessageBoxButtons.h"

namespace platform {
namespace {

using namespace buttons;

// The buttons of a box in their order, without marks: "Yes No Cancel".
QStringList ButtonTexts(const QWidget& box) {
    QStringList texts;
    for (const QPushButton* button : box.findChildren<QPushButton*>()) texts += button->text().remove(u'&');
    return texts;
}

QLabel* PromptOf(const QWidget& box) {
    for (QLabel* label : box.findChildren<QLabel*>())
        if (!label->text().isEmpty()) return label;
    return nullptr;
}

void Press(QWidget& box, Qt::Key key) {
    QTest::keyClick(box.windowHandle(), key);
}

std::int16_t Show(std::int32_t value, std::function<void(QWidget&)> act, Text prompt = u"Prompt") {
    const HandleRef acting = WhenBoxOpens(std::move(act));
    MessageBox box;
    box.prompt = std::move(prompt);
    box.buttons = value;
    return TheDesktop().Boxes().Show(box);
}

struct SetCase {
    std::int32_t set;
    const char* texts;
    std::vector<std::int16_t> answers;
    std::int16_t escape;  // 0 where Escape does nothing
};

const SetCase setCases[] = {
    {okOnly, "OK", {1}, 1},
    {okCancel, "OK Cancel", {1, 2}, 2},
    {abortRetryIgnore, "Abort Retry Ignore", {3, 4, 5}, 0},
    {yesNoCancel, "Yes No Cancel", {6, 7, 2}, 2},
    {yesNo, "Yes No", {6, 7}, 0},
    {retryCancel, "Retry Cancel", {4, 2}, 2},
};

TEST(MessageBoxTest, EachButtonOfEachSetAnswers) {
    for (const SetCase& set : setCases) {
        for (std::size_t i = 0; i < set.answers.size(); ++i) {
            const auto answer = Show(set.set + critical, [&](QWidget& box) {
                EXPECT_EQ(ButtonTexts(box).join(u' ').toStdString(), set.texts);
                box.findChildren<QPushButton*>()[static_cast<qsizetype>(i)]->click();
            });
            EXPECT_EQ(answer, set.answers[i]) << set.texts << " " << i;
        }
    }
}

TEST(MessageBoxTest, EnterPressesTheDefaultButton) {
    const struct {
        std::int32_t value;
        std::int16_t answer;
    } cases[] = {
        {yesNoCancel, 6},
        {yesNoCancel + defaultButton2, 7},
        {yesNoCancel + defaultButton3, 2},
        {yesNo + defaultButton3, 6},  // there is no third button
        {abortRetryIgnore + defaultButton2 + question, 4},
        {retryCancel + defaultButton2 + systemModal, 2},
    };
    for (const auto& [value, answer] : cases)
        EXPECT_EQ(Show(value, [](QWidget& box) { Press(box, Qt::Key_Return); }), answer) << value;
}

TEST(MessageBoxTest, EscapeAndClosingCancel) {
    for (const SetCase& set : setCases) {
        for (const bool byKey : {true, false}) {
            const auto answer = Show(set.set, [&](QWidget& box) {
                if (byKey)
                    Press(box, Qt::Key_Escape);
                else
                    box.windowHandle()->close();
                EXPECT_EQ(box.isVisible(), set.escape == 0) << set.texts;
                if (box.isVisible()) box.findChildren<QPushButton*>().last()->click();
            });
            EXPECT_EQ(answer, set.escape ? set.escape : set.answers.back()) << set.texts;
        }
    }
}

TEST(MessageBoxTest, UnknownSetRaises) {
    for (const std::int32_t value : {6, 7, 8, 15})
        EXPECT_THROW(TheDesktop().Boxes().Show({u"", value, {}, {}, 0}), RuntimeError) << value;
}

TEST(MessageBoxTest, PromptIsPlainTextWithAllKindsOfLineBreaks) {
    Show(
        okOnly,
        [](QWidget& box) {
            EXPECT_EQ(PromptOf(box)->text().toStdString(), "<b>a</b>\nb & c\n\nd\ne");
            EXPECT_EQ(PromptOf(box)->textFormat(), Qt::PlainText);
            EXPECT_EQ(box.windowTitle().toStdString(), "Default title");
            Press(box, Qt::Key_Return);
        },
        u"<b>a</b>\rb & c\r\rd\r\ne");
}

TEST(MessageBoxTest, GivenTitleIsShownAlsoWhenEmpty) {
    for (const Text& title : {Text(u"Given"), Text()}) {
        const HandleRef acting = WhenBoxOpens([&](QWidget& box) {
            EXPECT_EQ(box.windowTitle().toStdU16String(), title);
            Press(box, Qt::Key_Return);
        });
        TheDesktop().Boxes().Show({u"Prompt", 0, title, {}, 0});
    }
}

TEST(MessageBoxTest, HelpButtonIsDeadWithoutAHelpFile) {
    Show(okOnly + helpButton, [](QWidget& box) {
        const QPushButton* help = box.findChildren<QPushButton*>().last();
        EXPECT_EQ(help->text().toStdString(), "Help");
        EXPECT_FALSE(help->isEnabled());
        Press(box, Qt::Key_Return);
    });
}

TEST(MessageBoxTest, DirectionAndAlignmentFollowTheConstants) {
    Show(okOnly + right + rightToLeft, [](QWidget& box) {
        EXPECT_EQ(box.layoutDirection(), Qt::RightToLeft);
        EXPECT_TRUE(PromptOf(box)->alignment().testFlag(Qt::AlignRight));
        Press(box, Qt::Key_Return);
    });
    Show(okOnly + systemModal, [](QWidget& box) {
        EXPECT_TRUE(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        Press(box, Qt::Key_Return);
    });
}

TEST(MessageBoxTest, LongPromptsStayOnTheScreen) {
    Text lines, word;
    for (int i = 0; i < 300; ++i) {
        lines += u"line\r";
        word += u"unbreakable";
    }
    for (const Text& prompt : {lines, word, lines + word}) {
        Show(
            okOnly,
            [](QWidget& box) {
                const QSize screen = QGuiApplication::primaryScreen()->availableSize();
                EXPECT_LE(box.width(), screen.width());
                EXPECT_LE(box.height(), screen.height());
                Press(box, Qt::Key_Return);
            },
            prompt);
    }
}

TEST(MessageBoxTest, StandsOverTheForm) {
    SampleForm sample;
    sample.form.Show();
    Until([&] { return sample.Window()->isActiveWindow(); });
    Show(okOnly, [&](QWidget& box) {
        const QPoint apart = box.geometry().center() - sample.Window()->geometry().center();
        EXPECT_LE(apart.manhattanLength(), 4);
        EXPECT_EQ(box.windowHandle()->transientParent(), sample.Window()->windowHandle());
        Press(box, Qt::Key_Return);
    });
}

TEST(MessageBoxTest, OutlivesTheFormBehindIt) {
    SampleForm sample;
    sample.form.Show();
    Until([&] { return sample.Window()->isActiveWindow(); });
    const auto answer = Show(yesNo, [&](QWidget& box) {
        sample.form.Unload();
        Settle();
        EXPECT_EQ(sample.Window(), nullptr);
        box.findChildren<QPushButton*>().last()->click();
    });
    EXPECT_EQ(answer, 7);
}

TEST(WaitBoxTest, AnswersOnceClosedAndMayBeDroppedInside) {
    const struct {
        std::function<void(QWidget&)> act;
        bool givesUp;
    } cases[] = {
        {[](QWidget& box) { box.findChildren<QPushButton*>().first()->click(); }, false},
        {[](QWidget& box) { box.findChildren<QPushButton*>().last()->click(); }, true},
        {[](QWidget& box) { Press(box, Qt::Key_Return); }, false},
        {[](QWidget& box) { Press(box, Qt::Key_Escape); }, true},
    };
    for (const auto& [act, givesUp] : cases) {
        std::vector<bool> answers;
        std::unique_ptr<WaitBox> box;
        box = TheDesktop().Waits().Open(u"Title", u"Wait?", [&](bool answer) {
            EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
            box.reset();
            Settle();
            answers.push_back(answer);
        });
        const HandleRef acting = WhenBoxOpens(act);
        EXPECT_TRUE(Until([&] { return !answers.empty(); }));
        EXPECT_EQ(answers, std::vector<bool>{givesUp});
    }
}

TEST(WaitBoxTest, DroppingClosesWithoutAnAnswer) {
    bool answered = false;
    auto box = TheDesktop().Waits().Open(u"Title", u"Wait?", [&](bool) { answered = true; });
    EXPECT_TRUE(Until([] { return QApplication::activeModalWidget() != nullptr; }));
    box.reset();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    Settle();
    EXPECT_FALSE(answered);
}

TEST(ScreenTest, PointerSwitches) {
    Screen& screen = TheDesktop().TheScreen();
    screen.SetPointer(MousePointer::Hourglass);
    screen.SetPointer(MousePointer::Hourglass);
    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    screen.SetPointer(MousePointer::Default);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_FLOAT_EQ(screen.Width(),
                    static_cast<float>(QGuiApplication::primaryScreen()->size().width() * 15));
}

}  // namespace
}  // namespace platform
