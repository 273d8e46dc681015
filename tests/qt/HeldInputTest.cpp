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

TEST_F(HeldInputTest, ComesInOrderAfterTheLastHoldAndBeforeWhatIsNew) {
    HandleRef first = Hold(), second = Hold();
    Click("chkTrack");
    Key(Qt::Key_F1);
    Click("cmdButton");
    Settle();
    first.reset();
    Settle();
    EXPECT_EQ(log, "");
    EXPECT_EQ(track.Value(), 0);
    second.reset();
    EXPECT_EQ(log, "") << "delivered from inside the drop";
    Click("chkTrack");
    ExpectInTheEnd("check key click check ");
}

TEST_F(HeldInputTest, CloseRequestIsKept) {
    HandleRef hold = Hold();
    const QWidget* window = Window();
    Handle()->close();
    Settle();
    EXPECT_TRUE(form.IsLoaded());
    EXPECT_TRUE(window->isVisible());
    hold.reset();
    ExpectInTheEnd("unloaded ");
}

TEST_F(HeldInputTest, HoldOpenedByTheFirstEventHoldsTheRest) {
    HandleRef hold = Hold(), next;
    button.Click = [&] {
        log += "click ";
        next = Hold();
    };
    Click("cmdButton");
    Key(Qt::Key_F1);
    hold.reset();
    ExpectInTheEnd("click ");
    Settle();
    EXPECT_EQ(log, "click ");
    next.reset();
    ExpectInTheEnd("click key ");
}

TEST_F(HeldInputTest, InputForAWindowThatWentIsForgotten) {
    HandleRef hold = Hold();
    Click("cmdButton");
    form.Unload();
    Settle();
    log.clear();
    hold.reset();
    Settle();
    Show();
    Click("chkTrack");
    EXPECT_EQ(log, "check ");
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
