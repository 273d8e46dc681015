#include <QAbstractButton>

#include "QtFixture.h"

namespace platform {
namespace {

class HeldInputTest : public FormTest {
  protected:
    void SetUp() override {
        button.Click = [this] { log += "click "; };
        track.Click = [this] { log += "check "; };
        form.KeyDown = [this](std::int16_t, std::int16_t) { log += "key "; };
        form.Unloaded = [this] { log += "unloaded "; };
        Show();
    }
    static HandleRef Hold() { return TheDesktop().Loop().HoldInput(); }
    void ExpectInTheEnd(const char* expected) {
        EXPECT_TRUE(Until([&] { return log == expected; })) << log;
    }
};

TEST_F(HeldInputTest, DisabledFormLosesWhatItIsGivenDuringACall) {
    const auto alive = Window();
    HandleRef hold = Hold();
    form.Enabled = false;
    Click("cmdButton");
    Key(Qt::Key_F1);
    Act("chkTrack", QAccessibleActionInterface::toggleAction());
    Handle()->close();
    EXPECT_FALSE(form.IsCloseWaiting());
    form.Enabled = true;
    Key(Qt::Key_F1);
    Handle()->close();
    EXPECT_TRUE(form.IsCloseWaiting());
    EXPECT_TRUE(alive->isVisible());
    hold.reset();
    ExpectInTheEnd("key unloaded ");
}

TEST_F(HeldInputTest, ClickIsRefusedAsAWhole) {
    track.MouseUp = [this](auto&&...) { log += "up "; };
    for (const auto pressed : {Qt::LeftButton, Qt::RightButton}) {
        const QPoint place = WidgetOf("chkTrack").geometry().center();
        form.Enabled = false;
        QTest::mousePress(Handle(), pressed, {}, place);
        form.Enabled = true;
        QTest::mouseRelease(Handle(), pressed, {}, place);
    }
    EXPECT_EQ(log, "");
    WidgetOf("cmdButton").setFocus();
    form.Enabled = false;
    QTest::keyPress(Handle(), Qt::Key_Space);
    form.Enabled = true;
    QTest::keyRelease(Handle(), Qt::Key_Space);
    EXPECT_EQ(log, "");
    Key(Qt::Key_Space);
    EXPECT_EQ(log, "key click ");
}

TEST_F(HeldInputTest, NothingStaysPressedOnAFormThatIsDisabled) {
    spin.UpClick = [this] { log += "step "; };
    const QPoint upper = WidgetOf("updTime").geometry().center() - QPoint(0, 6);
    for (const QPoint place : {WidgetOf("cmdButton").geometry().center(), upper}) {
        log.clear();
        QTest::mousePress(Handle(), Qt::LeftButton, {}, place);
        form.Enabled = false;
        EXPECT_FALSE(static_cast<QAbstractButton&>(WidgetOf("cmdButton")).isDown());
        form.Enabled = true;
        const std::string before = log;
        WaitLongerThanAStep();
        QTest::mouseRelease(Handle(), Qt::LeftButton, {}, place);
        EXPECT_EQ(log, before);
    }
}

TEST_F(HeldInputTest, BoxTakesInputMeanwhile) {
    HandleRef hold = Hold();
    Click("cmdButton");
    EXPECT_EQ(ShowBox(PressReturn), 1);
    EXPECT_EQ(log, "");
    hold.reset();
    ExpectInTheEnd("click ");
}

TEST_F(HeldInputTest, ServingWithHeldInputWaits) {
    const HandleRef hold = Hold();
    Click("cmdButton");
    Settle();
    bool due = false;
    const HandleRef timer = TheDesktop().Loop().After(Milliseconds(50), [&] { due = true; });
    int rounds = 0;
    while (!due) {
        TheDesktop().Loop().ServeOnce();
        ++rounds;
    }
    EXPECT_LT(rounds, 50);
}

}  // namespace
}  // namespace platform
