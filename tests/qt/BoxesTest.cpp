#include <QLabel>
#include <QPushButton>

#include "../unit/ErrorOf.h"
#include "QtFixture.h"
#include "platform/desktop/MessageBoxButtons.h"

namespace platform {
namespace {

using namespace buttons;

std::int16_t AnswerOf(std::int32_t buttons, std::function<void(QWidget&)> act) {
    return ShowBox(std::move(act), {u"Prompt", buttons, {}, {}, 0});
}

void PressEscape(const QWidget& box) {
    PressKey(box, Qt::Key_Escape);
}

// What each button of a set answers, then Enter, Escape and closing, such as "OK 1, Cancel 2, 1, 2, 2, ". A
// box that stays is left by its last button.
std::string AnswersOf(std::int32_t set) {
    std::string answers;
    const auto note = [&](std::int16_t answer) { answers += std::to_string(answer) + ", "; };
    qsizetype count = 1;
    for (qsizetype i = 0; i < count; ++i)
        note(AnswerOf(set, [&](QWidget& box) {
            const auto shown = box.findChildren<QPushButton*>();
            count = shown.size();
            answers += shown[i]->text().toStdString() + " ";
            shown[i]->click();
        }));
    const std::function<void(QWidget&)> ways[] = {PressReturn, PressEscape,
                                                  [](QWidget& box) { box.windowHandle()->close(); }};
    for (const auto& leave : ways)
        note(AnswerOf(set, [&](QWidget& box) {
            leave(box);
            if (!box.isVisible()) return;
            answers += "stays, ";
            box.findChildren<QPushButton*>().last()->click();
        }));
    return answers;
}

TEST(MessageBoxTest, EachButtonOfEachSetAnswersAndEscapeAndClosingCancel) {
    const std::pair<std::int32_t, const char*> cases[] = {
        {okOnly, "OK 1, 1, 1, 1, "},
        {okCancel, "OK 1, Cancel 2, 1, 2, 2, "},
        {abortRetryIgnore, "Abort 3, Retry 4, Ignore 5, 3, stays, 5, stays, 5, "},
        {yesNoCancel + defaultButton2, "Yes 6, No 7, Cancel 2, 7, 2, 2, "},
        {yesNoCancel + defaultButton3, "Yes 6, No 7, Cancel 2, 2, 2, 2, "},
        {yesNo + defaultButton3, "Yes 6, No 7, 6, stays, 7, stays, 7, "},  // there is no third button
        {retryCancel, "Retry 4, Cancel 2, 4, 2, 2, "}};
    for (const auto& [set, answers] : cases) EXPECT_EQ(AnswersOf(set), answers);
    for (const std::int32_t set : {6, 15}) EXPECT_EQ(ErrorOf([&] { AnswerOf(set, PressReturn); }), 5) << set;
}

// Title, plain prompt and buttons of the next box, which is left by Escape.
HandleRef Read(std::string& seen) {
    return WhenBoxOpens([&seen](QWidget& box) {
        QStringList texts{box.windowTitle()};
        for (const QLabel* label : box.findChildren<QLabel*>())
            if (label->textFormat() == Qt::PlainText) texts += label->text();
        for (const QPushButton* button : box.findChildren<QPushButton*>()) texts += button->text();
        seen = texts.join('|').toStdString();
        PressEscape(box);
    });
}

TEST(MessageBoxTest, TextsAreShownAsTheyAreWritten) {
    surroundings.application.buttons = {u"ok",   u"&cancel", u"abort", u"retry", u"ignore",
                                        u"はい", u"no",      u"help",  u"wait",  u"give & up"};
    const Text prompt = u"<b>a</b>\rb & c\r\rd\r\ne";
    const std::string shown = "<b>a</b>\nb & c\n\nd\ne|";
    std::string seen;
    HandleRef reading = Read(seen);
    TheDesktop().Boxes().Show({prompt, yesNoCancel + helpButton + critical, {}, {}, 0});
    EXPECT_EQ(seen, "Default title|" + shown + "はい|no|&&cancel|help");
    reading = Read(seen);
    TheDesktop().Boxes().Show({prompt, okOnly, u"", {}, 0});
    EXPECT_EQ(seen, "|" + shown + "ok");
    bool gaveUp = false;
    reading = Read(seen);
    const auto box = TheDesktop().Waits().Open(u"Title", prompt, [&](bool answer) { gaveUp = answer; });
    EXPECT_TRUE(Until([&] { return gaveUp; }));
    EXPECT_EQ(seen, "Title|" + shown + "wait|give && up");
    surroundings.application.buttons = {};
}

TEST(MessageBoxTest, LongTextsAreCutWhereNobodyReadsOnAndStayOnTheScreen) {
    Text lines;
    for (int i = 0; i < 300; ++i) lines += u"line\r";
    const Text word(3000, u'x'), huge(5'000'000, u'x');
    const auto act = [](QWidget& box) {
        const QSize screen = QGuiApplication::primaryScreen()->availableSize();
        EXPECT_EQ(box.size(), box.size().boundedTo(screen));
        for (const QString& shown :
             {box.windowTitle(), box.accessibleDescription(), box.findChild<QLabel*>()->text()})
            EXPECT_LT(shown.size(), 10000);
        PressReturn(box);
    };
    for (const Text& text : {lines, word, lines + word, huge}) ShowBox(act, {text, 0, text, {}, 0});
}

using BoxOverFormTest = FormTest;

TEST_F(BoxOverFormTest, BoxStandsOverTheFormAndOutlivesIt) {
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
        const HandleRef acting = WhenBoxOpens([key = key](QWidget& shown) { PressKey(shown, key); });
        EXPECT_TRUE(Until([&] { return !answers.empty(); }));
        EXPECT_EQ(answers, std::vector<bool>{givesUp});
    }
}

}  // namespace
}  // namespace platform
