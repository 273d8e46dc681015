#include "QtFixture.h"

namespace platform {
namespace {

class HeldInputTest : public ::testing::Test {
  protected:
    HeldInputTest() {
        sample.button.Click = [this] { log += "click "; };
        sample.track.Click = [this] { log += "check "; };
        sample.form.KeyDown = [this](std::int16_t code, std::int16_t) {
            log += "key" + std::to_string(code) + " ";
        };
        sample.form.Unloaded = [this] { log += "unloaded "; };
        sample.form.Show();
        Until([this] { return sample.Window()->isActiveWindow(); });
    }
    ~HeldInputTest() override {
        sample.form.Unload();
        Settle();
    }

    void Press(Qt::Key key) { QTest::keyClick(sample.Window()->windowHandle(), key); }

    SampleForm sample;
    std::string log;
};

TEST_F(HeldInputTest, ComesInOrderAfterTheLastHold) {
    HandleRef first = TheDesktop().Loop().HoldInput();
    HandleRef second = TheDesktop().Loop().HoldInput();
    sample.Click("chkTrack");
    Press(Qt::Key_F1);
    sample.Click("cmdButton");
    QTest::mouseClick(sample.Window()->windowHandle(), Qt::LeftButton, {}, QPoint(390, 290));
    Settle();
    first.reset();
    Settle();
    EXPECT_EQ(log, "");
    EXPECT_EQ(sample.track.Value(), 0);
    second.reset();
    EXPECT_EQ(log, "") << "delivered from inside the drop";
    EXPECT_TRUE(Until([&] { return log == "check key112 click "; })) << log;
}

TEST_F(HeldInputTest, CloseRequestIsKept) {
    HandleRef hold = TheDesktop().Loop().HoldInput();
    QWidget* window = sample.Window();
    window->windowHandle()->close();
    Settle();
    EXPECT_TRUE(sample.form.IsLoaded());
    EXPECT_TRUE(window->isVisible());
    hold.reset();
    EXPECT_TRUE(Until([&] { return log == "unloaded "; })) << log;
    Settle();
    EXPECT_EQ(sample.Window(), nullptr);
}

TEST_F(HeldInputTest, NewInputStaysBehindTheOld) {
    HandleRef hold = TheDesktop().Loop().HoldInput();
    sample.Click("cmdButton");
    hold.reset();
    sample.Click("chkTrack");
    EXPECT_TRUE(Until([&] { return log == "click check "; })) << log;
}

TEST_F(HeldInputTest, HoldOpenedByTheFirstEventHoldsTheRest) {
    HandleRef next;
    sample.button.Click = [&] {
        log += "click ";
        next = TheDesktop().Loop().HoldInput();
    };
    HandleRef hold = TheDesktop().Loop().HoldInput();
    sample.Click("cmdButton");
    sample.Click("chkTrack");
    hold.reset();
    EXPECT_TRUE(Until([&] { return log == "click "; }));
    Settle();
    EXPECT_EQ(log, "click ");
    next.reset();
    EXPECT_TRUE(Until([&] { return log == "click check "; })) << log;
}

TEST_F(HeldInputTest, InputForAWindowThatWentIsForgotten) {
    HandleRef hold = TheDesktop().Loop().HoldInput();
    sample.Click("cmdButton");
    sample.form.Unload();
    Settle();
    log.clear();
    hold.reset();
    Settle();
    sample.form.Show();
    Until([this] { return sample.Window()->isActiveWindow(); });
    sample.Click("chkTrack");
    EXPECT_EQ(log, "check ");
}

TEST_F(HeldInputTest, BoxTakesInputMeanwhileAndCoversTheForm) {
    HandleRef hold = TheDesktop().Loop().HoldInput();
    sample.Click("cmdButton");
    const HandleRef press =
        WhenBoxOpens([](QWidget& box) { QTest::keyClick(box.windowHandle(), Qt::Key_Return); });
    EXPECT_EQ(TheDesktop().Boxes().Show({u"Prompt", 0, {}, {}, 0}), 1);
    EXPECT_EQ(log, "");
    hold.reset();
    EXPECT_TRUE(Until([&] { return log == "click "; })) << log;
}

TEST_F(HeldInputTest, ServingWithHeldInputWaits) {
    const HandleRef hold = TheDesktop().Loop().HoldInput();
    sample.Click("cmdButton");
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
