#include <QLabel>
#include <QPushButton>

#include "QtFixture.h"

namespace platform {
namespace {

using namespace buttons;

TEST(MessageBoxTest, EnterTakesTheDefaultButtonAndEscapeCancelsWhereItCan) {
    // Yes and No have no third button.
    const Table<std::int32_t, std::int16_t, std::int16_t> cases = {{okOnly, 1, 1},
                                                                   {okCancel, 1, 2},
                                                                   {abortRetryIgnore, 3, 5},
                                                                   {abortRetryIgnore + defaultButton2, 4, 5},
                                                                   {yesNoCancel + defaultButton2, 7, 2},
                                                                   {yesNoCancel + defaultButton3, 2, 2},
                                                                   {yesNo + defaultButton3, 6, 7},
                                                                   {retryCancel, 4, 2}};
    for (const auto& [set, entered, escaped] : cases) {
        const bool stays = escaped == 5 || escaped == 7;  // and is left by its last button
        const auto escape = [stays](QWidget& box) {
            PressEscape(box);
            EXPECT_EQ(box.isVisible(), stays);
            if (stays) box.findChildren<QPushButton*>().last()->click();
        };
        const MessageBox box{u"Prompt", set, {}, {}, 0};
        EXPECT_EQ(ShowBox(PressReturn, box), entered) << set;
        EXPECT_EQ(ShowBox(escape, box), escaped) << set;
    }
    EXPECT_EQ(ErrorOf([] { ShowBox(PressReturn, {u"Prompt", 6, {}, {}, 0}); }), 5);
}

// Title, plain prompt and buttons.
std::string TextsOf(const QWidget& box) {
    QStringList texts{box.windowTitle()};
    for (const QLabel* label : box.findChildren<QLabel*>())
        if (label->textFormat() == Qt::PlainText) texts += label->text();
    for (const QPushButton* button : box.findChildren<QPushButton*>()) texts += button->text();
    return texts.join('|').toStdString();
}

TEST(MessageBoxTest, TextsAreShownAsTheyAreWritten) {
    surroundings.application.buttons.cancel = u"&はい";
    const auto read = [](QWidget& box) {
        EXPECT_EQ(TextsOf(box), "Default title|<b>a</b>\nb & c\n\nd\ne|Yes|No|&&はい|Help");
        PressEscape(box);
    };
    ShowBox(read, {u"<b>a</b>\rb & c\r\rd\r\ne", yesNoCancel + helpButton + critical, {}, {}, 0});
    surroundings.application.buttons = {};
}

TEST(MessageBoxTest, LongTextsAreCutWhereNobodyReadsOnAndStayOnTheScreen) {
    const Text lines(600, u'\r'), word(3000, u'x'), huge(5'000'000, u'x');
    const auto act = [](QWidget& box) {
        const QSize screen = QGuiApplication::primaryScreen()->availableSize();
        EXPECT_EQ(box.size(), box.size().boundedTo(screen));
        EXPECT_LT(box.windowTitle().size() + box.findChild<QLabel*>()->text().size(), 10000);
        PressReturn(box);
    };
    for (const Text& text : {lines, word, huge}) ShowBox(act, {text, 0, text, {}, 0});
}

TEST_F(FormTest, ABoxLiesOverTheFormAndOutlivesIt) {
    const auto answer = ShowBox([&](QWidget& box) {
        EXPECT_EQ(box.windowHandle()->transientParent(), Handle());
        TakeAway();
        PressReturn(box);
    });
    EXPECT_EQ(answer, 1);
}

TEST(WaitBoxTest, AnswersOnceClosedAndMayBeDroppedInside) {
    for (const bool givesUp : {false, true}) {
        std::vector<bool> answers;
        std::unique_ptr<WaitBox> box;
        box = TheDesktop().Waits().Open(u"Title", u"p\rq", [&](bool answer) {
            EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
            box.reset();
            Settle();
            answers.push_back(answer);
        });
        const HandleRef acting = WhenBoxOpens([=](QWidget& shown) {
            EXPECT_EQ(TextsOf(shown), "Title|p\nq|Keep waiting|Give up");
            givesUp ? PressEscape(shown) : PressReturn(shown);
        });
        EXPECT_TRUE(Until([&] { return !answers.empty(); }));
        EXPECT_EQ(answers, std::vector<bool>{givesUp});
    }
}

}  // namespace
}  // namespace platform
