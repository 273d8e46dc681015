#include <QLineEdit>
#include <QWheelEvent>

#include "QtFixture.h"

namespace platform {
namespace {

// A box whose text the spin control steps, as a section of a time field.
class SpinTest : public FormTest {
  protected:
    void SetUp() override {
        minute.Spin = &spin;
        spin.SetMax(59);
        spin.Change = [this] { minute.Text = (spin.Value() < 10 ? u"0" : u"") + DecimalText(spin.Value()); };
        spin.UpClick = [this] { Stepped("up "); };
        spin.DownClick = [this] { Stepped("down "); };
        Show();
        Box().setFocus();
    }

    void Stepped(const char* step) {
        log += step;
        Select();
    }
    void Select() {
        minute.SetSelStart(0);
        minute.SetSelLength(2);
    }
    QLineEdit& Box() const { return static_cast<QLineEdit&>(WidgetOf("txtMinute")); }
    QWidget& Arrows() const { return WidgetOf("updTime"); }
    QPoint Upper() const { return Arrows().geometry().center() - QPoint(0, 6); }
    QPoint Lower() const { return Arrows().geometry().center() + QPoint(0, 6); }
    void Wheel(const QWidget& widget, int angle) const {
        const QPointF place = widget.geometry().center();
        QWheelEvent event(place, Window()->mapToGlobal(place), {}, {0, angle}, {}, {}, Qt::NoScrollPhase,
                          false);
        QCoreApplication::sendEvent(Handle(), &event);
    }
    void ExpectSectionSelected() const {
        EXPECT_EQ(Box().selectedText().toStdU16String(), minute.Text());
        EXPECT_TRUE(Box().hasFocus());
    }
};

TEST_F(SpinTest, MouseKeysAndWheelStepTheSectionOfASpinInService) {
    const struct {
        const char* name;
        std::function<void()> act;
        const char* steps;
    } inputs[] = {
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
        {"wheel over the arrows", [this] { Wheel(Arrows(), -120), Wheel(Arrows(), 120); }, "down up "},
        {"wheel elsewhere", [this] { Wheel(WidgetOf("cmdButton"), 120); }, ""},
    };
    for (const bool inService : {true, false}) {
        spin.Enabled = inService;
        for (const auto& [name, act, steps] : inputs) {
            log.clear();
            act();
            EXPECT_EQ(log, inService ? steps : "") << name;
            ExpectSectionSelected();
        }
        EXPECT_EQ(minute.Text(), u"00");
    }
}

TEST_F(SpinTest, HasKeysAndWheelOfItsOwnOnceItHasTheKeyboard) {
    Arrows().setFocus();
    Key(Qt::Key_Up);
    Key(Qt::Key_Left);
    Wheel(Arrows(), -120);
    EXPECT_EQ(log, "up down ");
}

TEST_F(SpinTest, HeldArrowStepsUntilTheReleaseAndPausesOutside) {
    QTest::mousePress(Handle(), Qt::LeftButton, {}, Upper());
    EXPECT_EQ(log, "up ") << "the first step waits for nothing";
    QTest::mouseMove(Handle(), Lower());
    WaitLongerThanAStep();
    EXPECT_EQ(log, "up ");
    QTest::mouseMove(Handle(), Upper());
    EXPECT_TRUE(Until([this] { return log.starts_with("up up up "); }));
    QTest::mouseRelease(Handle(), Qt::LeftButton, {}, Upper());
    log.clear();
    WaitLongerThanAStep();
    EXPECT_EQ(log, "");
    ExpectSectionSelected();
}

TEST_F(SpinTest, HoldingEndsWithWhatAHandlerDoes) {
    const auto answerLate = [](QWidget& box) {
        WaitLongerThanAStep();
        PressReturn(box);
    };
    const std::function<void()> acts[] = {
        [&] { ShowBox(answerLate); },
        [this] { spin.Enabled = false; },
        [this] { form.Enabled = false; },
        [this] { TakeAway(); },
    };
    QWidget other;  // takes the release when the form has gone
    other.show();
    form.SetFocus();
    for (const auto& act : acts) {
        log.clear();
        spin.Enabled = true;
        form.Enabled = true;
        spin.UpClick = [&] {
            log += "up ";
            act();
        };
        QTest::mousePress(Handle(), Qt::LeftButton, {}, Upper());
        WaitLongerThanAStep();
        EXPECT_EQ(log, "up ");
        QTest::mouseRelease(form.IsLoaded() ? Handle() : other.windowHandle(), Qt::LeftButton);
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
    // The first click brings the focus, which selects the section.
    minute.GotFocus = [this] { Select(); };
    WidgetOf("cmdButton").setFocus();
    for (const auto& [name, act] : acts) {
        SCOPED_TRACE(name);
        act();
        ExpectSectionSelected();
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    }
}

}  // namespace
}  // namespace platform
