// What assistive programs do to the widgets, which comes past all events of the window.
#include <QAbstractButton>
#include <QLineEdit>

#include "QtFixture.h"
#include "platform/desktop/qt/QtText.h"

namespace platform {
namespace {

class AssistiveTest : public FormTest {
  protected:
    void SetUp() override {
        button.Click = [this] { log += "click "; };
        track.Click = [this] { log += "check "; };
        calendar.NewMonth = [this] { log += "month "; };
        Show();
    }
    void PressEach() const {
        Act("cmdButton", QAccessibleActionInterface::pressAction());
        Act("chkTrack", QAccessibleActionInterface::toggleAction());
        Act("Next month", QAccessibleActionInterface::pressAction());
    }
    bool IsTicked() const { return static_cast<QAbstractButton&>(WidgetOf("chkTrack")).isChecked(); }
};

TEST_F(AssistiveTest, ActsAreTheOperatorsAndAreJudgedLikeThem) {
    PressEach();
    EXPECT_EQ(log, "click check month ");
    log.clear();
    form.Enabled = false;
    PressEach();
    Settle();
    form.Enabled = true;
    EXPECT_EQ(log, "");
    HandleRef hold = TheDesktop().Loop().HoldInput();
    PressEach();
    Act("chkTrack", QAccessibleActionInterface::toggleAction());
    Settle();
    EXPECT_EQ(log, "");
    hold.reset();
    EXPECT_TRUE(Until([this] { return log == "click check month check "; })) << log;
    for (forms::Control* control : std::initializer_list<forms::Control*>{&button, &track, &calendar})
        control->Enabled = false;
    PressEach();
    EXPECT_EQ(log, "click check month check ");
}

TEST_F(AssistiveTest, WhatIsShownIsWhatTheModelSays) {
    const auto boxSays = [&](int value) { return IsTicked() == (value != 0) && track.Value() == value; };
    auto& shown = static_cast<QAbstractButton&>(WidgetOf("chkTrack"));
    shown.toggle();
    EXPECT_TRUE(boxSays(1));
    form.Enabled = false;
    shown.toggle();
    EXPECT_TRUE(boxSays(1));
    form.Enabled = true;
    track.Click = [this] { track.SetValue(1); };
    shown.toggle();
    EXPECT_TRUE(boxSays(1));
}

TEST_F(AssistiveTest, TextIsChangedOnlyWhereTheOperatorMay) {
    auto& shown = static_cast<QLineEdit&>(WidgetOf("txtMinute"));
    auto* text = SpokenOf("txtMinute").editableTextInterface();
    ASSERT_TRUE(text);
    const auto bothSay = [&](TextView said) { return FromQt(shown.text()) == said && minute.Text() == said; };
    minute.SetSelStart(2);
    text->replaceText(0, 2, QStringLiteral("99"));  // which leaves the cursor where it is
    EXPECT_TRUE(bothSay(u"00")) << "locked";
    minute.Locked = false;
    form.Enabled = false;
    text->insertText(0, QStringLiteral("9"));
    EXPECT_TRUE(bothSay(u"00")) << "disabled";
    form.Enabled = true;
    HandleRef hold = TheDesktop().Loop().HoldInput();
    text->insertText(0, QStringLiteral("9"));
    EXPECT_TRUE(bothSay(u"00")) << "a call is out";
    hold.reset();
    EXPECT_TRUE(Until([&] { return bothSay(u"900"); }));
    WidgetOf("txtMinute").setFocus();
    Key(Qt::Key_End);
    Key(Qt::Key_1);
    Key(Qt::Key_Home);
    Key(Qt::Key_2);
    EXPECT_TRUE(bothSay(u"29001"));
    EXPECT_EQ(minute.SelStart(), 1);
}

}  // namespace
}  // namespace platform
