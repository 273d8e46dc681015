#include <QLabel>
#include <QPushButton>

#include "QtFixture.h"
#include "platform/desktop/Desktop.h"

namespace platform {
namespace {

using namespace buttons;

// What each button of a set answers, then Enter and Escape, such as "OK 1, Cancel 2, 1, 2, ". A box that
// stays is left by its last button.
std::string AnswersOf(std::int32_t set) {
    std::string answers;
    for (int i = 0, buttons = 1; i < buttons + 2; ++i) {
        const std::int16_t answer = ShowBox(
            [&](QWidget& box) {
                const auto shown = box.findChildren<QPushButton*>();
                buttons = int(shown.size());
                if (i < buttons) {
                    answers += shown[i]->text().toStdString() + " ";
                    return shown[i]->click();
                }
                PressKey(box, i == buttons ? Qt::Key_Return : Qt::Key_Escape);
                if (!box.isVisible()) return;
                answers += "stays, ";
                shown.last()->click();
            },
            {u"Prompt", set, {}, {}, 0});
        answers += std::to_string(answer) + ", ";
    }
    return answers;
}

TEST(MessageBoxTest, EachButtonOfEachSetAnswersAndEscapeCancels) {
    const std::pair<std::int32_t, const char*> cases[] = {
        {okOnly, "OK 1, 1, 1, "},
        {okCancel, "OK 1, Cancel 2, 1, 2, "},
        {abortRetryIgnore, "Abort 3, Retry 4, Ignore 5, 3, stays, 5, "},
        {yesNoCancel + defaultButton2, "Yes 6, No 7, Cancel 2, 7, 2, "},
        {yesNo + defaultButton3, "Yes 6, No 7, 6, stays, 7, "},  // there is no third button
        {retryCancel, "Retry 4, Cancel 2, 4, 2, "}};
    for (const auto& [set, answers] : cases) EXPECT_EQ(AnswersOf(set), answers);
    EXPECT_EQ(ErrorOf([] { AnswersOf(6); }), 5);
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
        for (const QString& shown :
             {box.windowTitle(), box.accessibleDescription(), box.findChild<QLabel*>()->text()})
            EXPECT_LT(shown.size(), 10000);
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
