#include <QAbstractButton>
#include <QLineEdit>

#include "QtFixture.h"

namespace platform {
namespace {

class FormViewTest : public ::testing::Test {
  protected:
    FormViewTest() {
        sample.form.Unloaded = [this] { log += "unloaded "; };
        sample.button.Click = [this] { log += "click "; };
        sample.minute.GotFocus = [this] {
            log += "+minute ";
            sample.minute.SetSelStart(0);
            sample.minute.SetSelLength(2);
        };
        sample.minute.LostFocus = [this] { log += "-minute "; };
        sample.half.GotFocus = [this] { log += "+half "; };
        sample.half.LostFocus = [this] { log += "-half "; };
    }
    ~FormViewTest() override {
        sample.form.Unload();
        Settle();
    }

    void Show() {
        sample.form.Show();
        ASSERT_TRUE(Until([this] { return sample.Window()->isActiveWindow(); }));
        sample.WidgetOf("chkTrack").setFocus();
        log.clear();
    }
    QLineEdit& Minute() const { return static_cast<QLineEdit&>(sample.WidgetOf("txtMinute")); }
    void Press(Qt::Key key) { QTest::keyClick(sample.Window()->windowHandle(), key); }

    SampleForm sample;
    std::string log;
};

TEST_F(FormViewTest, WindowHasTheFormsMeasures) {
    sample.form.Caption = u"A [*] & title";
    Show();
    QWidget& window = *sample.Window();
    EXPECT_EQ(window.geometry(), QRect(100, 80, 400, 300));
    EXPECT_EQ(window.minimumSize(), window.maximumSize());
    EXPECT_EQ(window.windowHandle()->title().toStdString(), "A [*] & title");
    EXPECT_EQ(sample.WidgetOf("cmdButton").geometry(), QRect(10, 10, 65, 25));
    sample.button.Left = 300;
    EXPECT_EQ(sample.WidgetOf("cmdButton").x(), 20);
    sample.button.Visible = false;
    EXPECT_FALSE(sample.WidgetOf("cmdButton").isVisible());
}

TEST_F(FormViewTest, ControlsLieAboveLabelsAndImagesAddedLater) {
    sample.image.Place(150, 150, 975, 375);
    Show();
    const QPoint place = sample.WidgetOf("cmdButton").geometry().center();
    EXPECT_EQ(sample.Window()->childAt(place)->objectName().toStdString(), "cmdButton");
    sample.button.Visible = false;
    EXPECT_EQ(sample.Window()->childAt(place)->objectName().toStdString(), "imgBack");
}

TEST_F(FormViewTest, ClickReachesAnEnabledButtonOfAnEnabledForm) {
    Show();
    sample.Click("cmdButton");
    EXPECT_EQ(log, "click ");
    sample.form.Enabled = false;
    sample.Click("cmdButton");
    Press(Qt::Key_Space);
    EXPECT_EQ(log, "click ");
    EXPECT_TRUE(sample.WidgetOf("cmdButton").isEnabled()) << "the look of a refusing form changed";
    sample.form.Enabled = true;
    sample.button.Enabled = false;
    sample.Click("cmdButton");
    EXPECT_EQ(log, "click +minute ") << "no click, but the focus went on";
}

TEST_F(FormViewTest, SpaceAndEnterPressTheButton) {
    Show();
    sample.WidgetOf("cmdButton").setFocus();
    Press(Qt::Key_Space);
    Press(Qt::Key_Return);
    EXPECT_EQ(log, "click click ");
}

TEST_F(FormViewTest, CheckBoxTellsTheModelAndFollowsIt) {
    int clicks = 0;
    sample.track.Click = [&] { ++clicks; };
    Show();
    auto& box = static_cast<QAbstractButton&>(sample.WidgetOf("chkTrack"));
    sample.Click("chkTrack");
    EXPECT_EQ(sample.track.Value(), 1);
    EXPECT_EQ(clicks, 1);
    sample.track.SetValue(0);
    EXPECT_FALSE(box.isChecked());
    EXPECT_EQ(clicks, 2);
    sample.track.Click = [&] {
        if (sample.track.Value() == 1) sample.track.SetValue(0);
    };
    sample.Click("chkTrack");
    EXPECT_FALSE(box.isChecked()) << "the model refused";
}

TEST_F(FormViewTest, CloseUnloadsUnlessRefused) {
    Show();
    QWindow* window = sample.Window()->windowHandle();
    sample.form.Enabled = false;
    window->close();
    EXPECT_TRUE(sample.form.IsLoaded());
    sample.form.Enabled = true;
    sample.form.Unloading = [](bool& cancel) { cancel = true; };
    window->close();
    EXPECT_TRUE(sample.form.IsLoaded());
    EXPECT_TRUE(sample.Window()->isVisible());
    sample.form.Unloading = nullptr;
    window->close();
    EXPECT_EQ(log, "unloaded ");
    Settle();
    EXPECT_EQ(sample.Window(), nullptr);
}

TEST_F(FormViewTest, HideAndShowKeepTheWindow) {
    Show();
    const QWidget* window = sample.Window();
    sample.form.Hide();
    EXPECT_EQ(sample.Window(), nullptr);
    sample.form.Show();
    EXPECT_EQ(sample.Window(), window);
}

TEST_F(FormViewTest, TabFollowsTheIndexesAndTellsTheFocus) {
    Show();
    sample.WidgetOf("txtHalf").setFocus();
    EXPECT_EQ(log, "+half ");
    Press(Qt::Key_Tab);
    Press(Qt::Key_Tab);
    EXPECT_EQ(log, "+half -half +minute ");
    EXPECT_EQ(Minute().selectedText().toStdString(), "00");
}

TEST_F(FormViewTest, PressThatBringsTheFocusKeepsTheSelectionOfTheHandler) {
    Show();
    for (int round = 0; round < 2; ++round) {
        sample.Click("txtMinute");
        EXPECT_EQ(Minute().selectedText().toStdString(), "00") << round;
        sample.WidgetOf("cmdButton").setFocus();
    }
    sample.Click("txtMinute");
    sample.Click("txtMinute");
    EXPECT_FALSE(Minute().hasSelectedText());
    EXPECT_EQ(sample.minute.SelLength(), 0) << "the model follows the operator";
    sample.minute.SetSelStart(0);
    sample.minute.SetSelLength(2);
    EXPECT_EQ(Minute().selectedText().toStdString(), "00");
}

TEST_F(FormViewTest, BoxInFrontIsNoLossOfFocus) {
    Show();
    sample.Click("txtMinute");
    log.clear();
    const HandleRef press =
        WhenBoxOpens([](QWidget& box) { QTest::keyClick(box.windowHandle(), Qt::Key_Return); });
    TheDesktop().Boxes().Show({u"Prompt", 0, {}, {}, 0});
    sample.form.SetFocus();
    ASSERT_TRUE(Until([this] { return sample.Window()->isActiveWindow(); }));
    EXPECT_EQ(log, "");
    Press(Qt::Key_Tab);
    EXPECT_EQ(log, "-minute ");
}

TEST_F(FormViewTest, DisablingTheFocusedControlIsALoss) {
    Show();
    sample.Click("txtMinute");
    sample.minute.Enabled = false;
    EXPECT_EQ(log, "+minute -minute ");
}

TEST_F(FormViewTest, MouseUpTellsButtonAndPlaceInTwips) {
    std::string got;
    sample.frame.MouseUp = [&](forms::MouseButton button, std::int16_t shift, float x, float y) {
        got = std::to_string(static_cast<int>(button)) + " " + std::to_string(shift) + " " +
              std::to_string(static_cast<int>(x)) + " " + std::to_string(static_cast<int>(y));
    };
    Show();
    QWindow* window = sample.Window()->windowHandle();
    QTest::mouseClick(window, Qt::RightButton, Qt::ControlModifier, QPoint(350, 20));
    EXPECT_EQ(got, "2 2 5250 300");
    got.clear();
    sample.frame.Enabled = false;
    QTest::mouseClick(window, Qt::RightButton, {}, QPoint(350, 20));
    EXPECT_EQ(got, "");
}

TEST_F(FormViewTest, FormSeesKeysFirst) {
    sample.form.KeyDown = [this](std::int16_t code, std::int16_t shift) {
        log += std::to_string(code) + "/" + std::to_string(shift) + " ";
    };
    Show();
    sample.WidgetOf("cmdButton").setFocus();
    QTest::keyClick(sample.Window()->windowHandle(), Qt::Key_F1, Qt::ShiftModifier);
    Press(Qt::Key_Space);
    EXPECT_EQ(log, "16/1 112/1 32/0 click ");
}

TEST_F(FormViewTest, FollowsTheOperatorsMovesAndMovesItself) {
    sample.form.Left = 1507;
    Show();
    EXPECT_FLOAT_EQ(sample.form.Left, 1507) << "no move of a whole pixel";
    ASSERT_NE(sample.Window()->pos(), sample.Window()->geometry().topLeft()) << "the window has a frame";
    sample.Window()->setGeometry(200, 150, 400, 300);
    EXPECT_TRUE(Until([this] { return sample.form.Left() == 3000.0F; }));
    EXPECT_FLOAT_EQ(sample.form.Top, 2250);
    sample.form.Move(750, 600);
    EXPECT_EQ(sample.Window()->geometry().topLeft(), QPoint(50, 40));
}

TEST_F(FormViewTest, EventsMayTakeTheFormAway) {
    const std::pair<const char*, std::function<void(std::function<void()>)>> events[] = {
        {"cmdButton", [this](auto act) { sample.button.Click = act; }},
        {"chkTrack", [this](auto act) { sample.track.Click = act; }},
        {"txtMinute", [this](auto act) { sample.minute.GotFocus = act; }},
        {"lblFrame", [this](auto act) { sample.frame.MouseUp = [act](auto...) { act(); }; }},
    };
    for (const auto& [name, set] : events) {
        int gone = 0;
        set([&] {
            ++gone;
            sample.form.Unload();
            Settle();
        });
        Show();
        if (std::string(name) == "lblFrame")
            QTest::mouseClick(sample.Window()->windowHandle(), Qt::LeftButton, {}, QPoint(350, 20));
        else
            sample.Click(name);
        Settle();
        EXPECT_EQ(gone, 1) << name;
        EXPECT_EQ(sample.Window(), nullptr) << name;
        set([] {});
    }
}

TEST_F(FormViewTest, KeyMayTakeTheFormAwayBeforeAControlSeesIt) {
    sample.form.KeyDown = [this](std::int16_t, std::int16_t) { sample.form.Unload(); };
    Show();
    sample.WidgetOf("cmdButton").setFocus();
    log.clear();
    QTest::keyPress(sample.Window()->windowHandle(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(log, "unloaded ");
}

TEST_F(FormViewTest, RunTimeErrorOfAnEventEndsTheEventAlone) {
    sample.button.Click = [this] {
        log += "click ";
        throw RuntimeError(ErrorNumber::Overflow);
    };
    Show();
    sample.Click("cmdButton");
    sample.Click("cmdButton");
    EXPECT_EQ(log, "click click ");
}

}  // namespace
}  // namespace platform
