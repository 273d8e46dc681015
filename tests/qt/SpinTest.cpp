#include <QLineEdit>
#include <QWheelEvent>

#include "QtFixture.h"

namespace platform {
namespace {

// Longer than the pauses between the steps of an arrow that is held.
void WaitLongerThanAStep() {
    bool over = false;
    const HandleRef end = TheDesktop().Loop().After(Milliseconds(600), [&] { over = true; });
    Until([&] { return over; });
}

// A box whose text the spin control steps, as a section of a time field.
class SpinTest : public ::testing::Test {
  protected:
    SpinTest() {
        sample.minute.Spin = &sample.spin;
        sample.minute.GotFocus = [this] {
            log += "+minute ";
            Select();
        };
        sample.minute.LostFocus = [this] { log += "-minute "; };
        sample.spin.SetMax(59);
        sample.spin.Change = [this] {
            sample.minute.Text = (sample.spin.Value() < 10 ? u"0" : u"") + DecimalText(sample.spin.Value());
        };
        sample.spin.UpClick = [this] { Count("up "); };
        sample.spin.DownClick = [this] { Count("down "); };
        sample.form.Show();
        EXPECT_TRUE(Until([this] { return sample.Window()->isActiveWindow(); }));
        Box().setFocus();
        log.clear();
    }
    ~SpinTest() override {
        sample.form.Unload();
        Settle();
    }

    void Count(const char* step) {
        log += step;
        ++steps;
        Select();
    }
    void Select() {
        sample.minute.SetSelStart(0);
        sample.minute.SetSelLength(2);
    }
    QLineEdit& Box() const { return static_cast<QLineEdit&>(sample.WidgetOf("txtMinute")); }
    QWidget& Arrows() const { return sample.WidgetOf("updTime"); }
    QWindow* Handle() const { return sample.Window()->windowHandle(); }
    QPoint Upper() const { return Arrows().geometry().center() - QPoint(0, 6); }
    QPoint Lower() const { return Arrows().geometry().center() + QPoint(0, 6); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(Handle(), key, modifiers); }
    void Wheel(const QWidget& widget, int angle) {
        const QPointF place = widget.geometry().center();
        QWheelEvent event(place, sample.Window()->mapToGlobal(place), {}, {0, angle}, {}, {},
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(Handle(), &event);
    }
    void ExpectSectionSelected(const char* text) {
        EXPECT_EQ(Box().selectedText().toStdString(), text);
        EXPECT_TRUE(Box().hasFocus());
    }

    struct Input {
        const char* name;
        std::function<void()> act;
        const char* steps;
    };
    std::vector<Input> Inputs() {
        return {
            {"upper arrow", [this] { QTest::mouseClick(Handle(), Qt::LeftButton, {}, Upper()); }, "up "},
            {"lower arrow", [this] { QTest::mouseClick(Handle(), Qt::LeftButton, {}, Lower()); }, "down "},
            {"right button", [this] { QTest::mouseClick(Handle(), Qt::RightButton, {}, Upper()); }, ""},
            {"Up", [this] { Key(Qt::Key_Up); }, "up "},
            {"Down", [this] { Key(Qt::Key_Down, Qt::KeypadModifier); }, "down "},
            {"Ctrl+Up", [this] { Key(Qt::Key_Up, Qt::ControlModifier); }, ""},
            {"wheel up", [this] { Wheel(Box(), 120); }, "up "},
            {"wheel down twice", [this] { Wheel(Box(), -240); }, "down down "},
            {"small turns", [this] { Wheel(Box(), 50), Wheel(Box(), 50), Wheel(Box(), 50); }, "up "},
            {"rest of the turn", [this] { Wheel(Box(), -30); }, ""},
            {"wheel elsewhere", [this] { Wheel(Arrows(), 120); }, ""},
        };
    }

    SampleForm sample;
    std::string log;
    int steps = 0;
};

TEST_F(SpinTest, MouseKeysAndWheelStepTheSection) {
    for (const Input& input : Inputs()) {
        log.clear();
        input.act();
        EXPECT_EQ(log, input.steps) << input.name;
        ExpectSectionSelected(ToUtf8(sample.minute.Text()).c_str());
    }
    EXPECT_EQ(sample.minute.Text(), u"00");
}

TEST_F(SpinTest, OutOfServiceItRefusesAll) {
    sample.spin.Enabled = false;
    for (const Input& input : Inputs()) input.act();
    EXPECT_EQ(log, "");
    EXPECT_EQ(sample.minute.Text(), u"00");
}

TEST_F(SpinTest, HasKeysAndWheelOfItsOwnOnceItHasTheKeyboard) {
    Key(Qt::Key_Tab);
    EXPECT_FALSE(Arrows().hasFocus());
    Key(Qt::Key_Tab);
    ASSERT_TRUE(Arrows().hasFocus());
    log.clear();
    Key(Qt::Key_Up);
    Key(Qt::Key_Left);
    Wheel(Arrows(), -120);
    EXPECT_EQ(log, "up down ");
}

TEST_F(SpinTest, HeldArrowStepsUntilTheRelease) {
    QTest::mousePress(Handle(), Qt::LeftButton, {}, Lower());
    EXPECT_EQ(log, "down ") << "the first step waits for nothing";
    EXPECT_TRUE(Until([this] { return steps >= 4; }));
    QTest::mouseRelease(Handle(), Qt::LeftButton, {}, Lower());
    const int before = steps;
    WaitLongerThanAStep();
    EXPECT_EQ(steps, before);
    ExpectSectionSelected(ToUtf8(sample.minute.Text()).c_str());
}

TEST_F(SpinTest, StepsPauseOutsideTheArrow) {
    QTest::mousePress(Handle(), Qt::LeftButton, {}, Upper());
    QTest::mouseMove(Handle(), Lower());
    WaitLongerThanAStep();
    EXPECT_EQ(log, "up ");
    QTest::mouseMove(Handle(), Upper());
    EXPECT_TRUE(Until([this] { return steps >= 3; }));
    EXPECT_EQ(log.find("down"), std::string::npos);
    QTest::mouseRelease(Handle(), Qt::LeftButton, {}, Upper());
}

TEST_F(SpinTest, BoxOfAHandlerEndsTheHolding) {
    HandleRef press;
    sample.spin.UpClick = [&] {
        ++steps;
        press = WhenBoxOpens([](QWidget& box) {
            WaitLongerThanAStep();
            QTest::keyClick(box.windowHandle(), Qt::Key_Return);
        });
        TheDesktop().Boxes().Show({u"Prompt", 0, {}, {}, 0});
    };
    QTest::mousePress(Handle(), Qt::LeftButton, {}, Upper());
    WaitLongerThanAStep();
    EXPECT_EQ(steps, 1);
    QTest::mouseRelease(Handle(), Qt::LeftButton, {}, Upper());
}

TEST_F(SpinTest, HandlerMaySwitchOffOrTakeAway) {
    const std::function<void()> acts[] = {[this] { sample.spin.Enabled = false; },
                                          [this] { sample.form.Enabled = false; },
                                          [this] {
                                              sample.form.Unload();
                                              Settle();
                                          }};
    QWidget other;  // takes the release when the form has gone
    other.show();
    sample.form.SetFocus();
    for (const auto& act : acts) {
        steps = 0;
        sample.spin.Enabled = true;
        sample.form.Enabled = true;
        sample.spin.UpClick = [&] {
            ++steps;
            act();
        };
        QTest::mousePress(Handle(), Qt::LeftButton, {}, Upper());
        WaitLongerThanAStep();
        EXPECT_EQ(steps, 1);
        QTest::mouseRelease(sample.form.IsLoaded() ? Handle() : other.windowHandle(), Qt::LeftButton);
    }
}

TEST_F(SpinTest, SectionIsPickedAsAWhole) {
    const QPoint inside = Box().geometry().center();
    const std::pair<const char*, std::function<void()>> acts[] = {
        {"click", [&] { QTest::mouseClick(Handle(), Qt::LeftButton, {}, inside); }},
        {"double click", [&] { QTest::mouseDClick(Handle(), Qt::LeftButton, {}, inside); }},
        {"drag",
         [&] {
             QTest::mousePress(Handle(), Qt::LeftButton, {}, inside);
             QTest::mouseMove(Handle(), inside - QPoint(5, 0));
             QTest::mouseRelease(Handle(), Qt::LeftButton, {}, inside - QPoint(5, 0));
         }},
        {"Left", [&] { Key(Qt::Key_Left); }},
        {"End", [&] { Key(Qt::Key_End, Qt::ShiftModifier); }},
        {"right click", [&] { QTest::mouseClick(Handle(), Qt::RightButton, {}, inside); }},
    };
    Select();
    for (const auto& [name, act] : acts) {
        SCOPED_TRACE(name);
        act();
        ExpectSectionSelected("00");
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    }
    EXPECT_EQ(log, "");
}

TEST_F(SpinTest, WindowInFrontKeepsTheSection) {
    Select();
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(Until([&] { return other.isActiveWindow(); }));
    EXPECT_EQ(Box().selectedText().toStdString(), "00");
    other.close();
    sample.form.SetFocus();
    ASSERT_TRUE(Until([this] { return sample.Window()->isActiveWindow(); }));
    EXPECT_EQ(log, "");
    ExpectSectionSelected("00");
    Key(Qt::Key_Up);
    EXPECT_EQ(log, "up ");
}

TEST_F(SpinTest, TabSelectsNothingByItself) {
    sample.minute.GotFocus = nullptr;
    sample.WidgetOf("cmdButton").setFocus();
    Key(Qt::Key_Tab);
    EXPECT_TRUE(Box().hasFocus());
    EXPECT_EQ(Box().selectedText().toStdString(), "");
    EXPECT_EQ(sample.minute.SelLength(), 0);
}

}  // namespace
}  // namespace platform
