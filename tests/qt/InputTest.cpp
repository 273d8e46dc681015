// Which input reaches a form, by mouse, keyboard, wheel or assistive program.
#include <QAccessible>
#include <QLineEdit>
#include <QWheelEvent>

#include "QtFixture.h"

namespace platform {
namespace {

struct InputTest : FormTest {
    QAccessibleInterface& SpokenOf(const char* name) const {
        return *QAccessible::queryAccessibleInterface(&WidgetOf(name));
    }
    static HandleRef Hold() { return TheDesktop().Loop().HoldInput(); }
    void Wheel(const char* name, int angle) const {
        const QPointF place = PlaceOf(name);
        QWheelEvent event(place, Window()->mapToGlobal(place), {}, {0, angle}, {}, {}, {}, false);
        QCoreApplication::sendEvent(Handle(), &event);
    }
};

TEST_F(InputTest, IsTakenRefusedOrHeldWhicheverWayItComes) {
    const std::string all = "click key up click check month ";
    const auto giveAll = [this] {
        Click("cmdButton");
        Key(Qt::Key_F1);
        Wheel("updTime", 120);
        SpokenOf("cmdButton").actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        SpokenOf("chkTrack").actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        SpokenOf("Next month").actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    };
    EXPECT_EQ(After(giveAll), all);
    EnableControls(false);
    EXPECT_EQ(After(giveAll), "key ");
    EnableControls(true);
    form.Enabled = false;
    EXPECT_TRUE(WidgetOf("cmdButton").isEnabled()) << "the look of a refusing form changed";
    EXPECT_EQ(After(giveAll), "");
    Handle()->close();
    EXPECT_TRUE(form.IsLoaded() && Window()->isVisible());
    form.Enabled = true;
    HandleRef hold = Hold();
    giveAll();
    EXPECT_EQ(ShowBox(PressReturn), 1) << "a box takes input meanwhile";
    Handle()->close();
    EXPECT_TRUE(form.IsCloseWaiting());
    EXPECT_EQ(log, "");
    hold.reset();
    EXPECT_TRUE(Until([&] { return log == all + "unloaded "; })) << log;
}

TEST_F(InputTest, NothingStaysPressedOnAFormThatIsDisabled) {
    auto& shown = WidgetOf<QAbstractButton>("cmdButton");
    shown.setFocus();
    form.Enabled = false;
    QTest::keyPress(Handle(), Qt::Key_Space);
    form.Enabled = true;
    QTest::keyRelease(Handle(), Qt::Key_Space);
    QTest::keyPress(Handle(), Qt::Key_Space);
    EXPECT_TRUE(shown.isDown());
    form.Enabled = false;
    EXPECT_FALSE(shown.isDown());
    form.Enabled = true;
    QTest::keyRelease(Handle(), Qt::Key_Space);
    EXPECT_EQ(log, "");
}

TEST_F(InputTest, ABoxShowsWhatTheModelSays) {
    track.Click = [this] { Note("check")(), track.SetValue(0); };
    Click("chkTrack");
    EXPECT_EQ(log, "check check ");
    auto& shown = WidgetOf<QAbstractButton>("chkTrack");
    EXPECT_FALSE(shown.isChecked());
    form.Enabled = false;
    shown.click();  // past the events of the window
    EXPECT_FALSE(shown.isChecked());
}

TEST_F(InputTest, AnAssistiveProgramDoesNotChangeALockedText) {
    SpokenOf("txtMinute").editableTextInterface()->insertText(0, QStringLiteral("9"));
    EXPECT_EQ(WidgetOf<QLineEdit>("txtMinute").text().toStdString(), "00");
    EXPECT_EQ(minute.Text(), u"00");
}

TEST_F(InputTest, FocusGoesAwayFromADisabledControlButNotToABox) {
    minute.GotFocus = [this] { Note("+minute")(), minute.SetSelStart(0), minute.SetSelLength(2); };
    minute.LostFocus = Note("-minute");
    WidgetOf("txtMinute").setFocus();
    ShowBox(PressReturn);
    form.SetFocus();
    ASSERT_TRUE(Until([this] { return Window()->isActiveWindow(); }));
    EXPECT_EQ(log, "+minute ");
    EXPECT_EQ(WidgetOf<QLineEdit>("txtMinute").selectedText().toStdString(), "00");
    minute.Enabled = false;
    EXPECT_EQ(log, "+minute -minute ");
}

TEST_F(InputTest, EventsMayTakeTheFormAway) {
    const auto away = [this](auto&&...) { Note("away")(), TakeAway(); };
    const Table<std::function<void()>, const char*, Qt::Key> cases = {
        {[&] { button.Click = away; }, "cmdButton", {}},
        {[&] { track.Click = away; }, "chkTrack", {}},
        {[&] { spin.UpClick = away; }, "updTime", Qt::Key_Up},
        {[&] { calendar.AfterUpdate = away; }, "Calendar", {}},
        {[] {}, "Calendar", Qt::Key_Right},
        {[&] { calendar.NewMonth = away; }, "Next month", {}},
        {[&] { minute.GotFocus = away; }, "txtMinute", {}},
        // The button has a handler too, but doesn't see the key any more.
        {[&] { form.KeyDown = away; }, "cmdButton", Qt::Key_F1}};
    for (const auto& [handle, widget, key] : cases) {
        handle();
        Show();
        WidgetOf(key ? widget : "chkTrack").setFocus();
        log.clear();
        key ? QTest::keyPress(Handle(), key) : Click(widget);
        Settle();
        EXPECT_TRUE(log.ends_with("away unloaded ") && !Window()) << log << widget << " " << key;
    }
}

TEST_F(InputTest, AnArrowStepsWhileItIsHeldUntilAHandlerOrTheReleaseEndsIt) {
    static constexpr Milliseconds longer = 120ms;  // than the auto-repeat takes here
    const QPoint half(0, 6), arrow = PlaceOf("updTime") - half, beside = arrow + 2 * half;
    const auto hold = [&](const std::function<void()>& act) {
        auto& widget = WidgetOf<QAbstractButton>("updTime");
        widget.setAutoRepeatDelay(40), widget.setAutoRepeatInterval(40);
        log.clear();
        Press(arrow);
        act();
        Release(arrow);
        EXPECT_EQ(After([] { Settle(longer); }), "") << "it is released";
    };
    hold([&] {
        EXPECT_TRUE(log.starts_with("up ")) << "the first step waits for nothing";
        QTest::mouseMove(Handle(), beside);
        EXPECT_EQ(After([] { Settle(longer); }), "") << "outside";
        QTest::mouseMove(Handle(), arrow);
        EXPECT_TRUE(Until([this] { return log.starts_with("up up up "); }));
    });
    const auto answerLate = [](QWidget& box) { Settle(longer), PressReturn(box); };
    const std::function<void()> acts[] = {[&] { ShowBox(answerLate); }, [this] { EnableControls(false); },
                                          [this] { form.Enabled = false; }, [this] { form.Hide(); }};
    for (const auto& act : acts) {
        spin.UpClick = [&] { Note("up")(), act(); };
        hold([&] {
            Settle(longer);
            EXPECT_EQ(log, "up ");
            EnableControls(true);
            form.Enabled = true;
            form.Show();
        });
    }
}

TEST_F(InputTest, ASectionIsPickedAsAWholeAndSteppedWhileItsSpinIsInService) {
    minute.Spin = &spin;
    spin.SetMax(59);
    // The focus selects the section.
    minute.GotFocus = [this] { minute.SetSelStart(0), minute.SetSelLength(2); };
    spin.Change = [this] {
        minute.Text = (spin.Value() < 10 ? u"0" : u"") + DecimalText(spin.Value());
        minute.GotFocus();
    };
    const QPoint inside = PlaceOf("txtMinute"), aside = inside - QPoint(5, 0);
    const QPoint half(0, 6), arrows = PlaceOf("updTime");
    const Table<const char*, std::function<void()>, const char*> inputs = {
        {"click, which brings the focus", [&] { Click(inside); }, ""},
        {"drag", [&] { Press(inside), QTest::mouseMove(Handle(), aside), Release(aside); }, ""},
        {"right click", [&] { Click(inside, Qt::RightButton); }, ""},
        {"Up", [&] { Key(Qt::Key_Up); }, "up "},
        {"Down", [&] { Key(Qt::Key_Down, Qt::KeypadModifier); }, "down "},
        {"Ctrl+Up", [&] { Key(Qt::Key_Up, Qt::ControlModifier); }, ""},
        {"upper arrow", [&] { Click(arrows - half); }, "up "},
        {"lower arrow", [&] { Click(arrows + half); }, "down "},
        {"wheel down twice", [&] { Wheel("txtMinute", -240); }, "down down "},
        {"small turns", [&] { Wheel("txtMinute", 90), Wheel("txtMinute", 150); }, "up up "},
        {"wheel over the arrows", [&] { Wheel("updTime", -120), Wheel("updTime", 120); }, "down up "},
        {"wheel elsewhere", [&] { Wheel("cmdButton", 120); }, ""}};
    const auto& shown = WidgetOf<QLineEdit>("txtMinute");
    for (const bool inService : {true, false}) {
        spin.Enabled = inService;
        for (const auto& [name, act, steps] : inputs) {
            EXPECT_EQ(After(act), inService ? steps : "") << name;
            EXPECT_EQ(FromQt(shown.selectedText()), minute.Text()) << name;
            EXPECT_TRUE(shown.hasFocus() && !QApplication::activePopupWidget()) << name;
        }
        EXPECT_EQ(minute.Text(), u"00");
    }
}

}  // namespace
}  // namespace platform
