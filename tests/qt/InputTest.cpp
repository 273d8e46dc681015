// Which input reaches a form, whichever way it comes: by mouse, keyboard or wheel, or past all events of the
// window by an assistive program.
#include <QLineEdit>

#include "QtFixture.h"

namespace platform {
namespace {

class InputTest : public FormTest {
  protected:
    InputTest() {
        // A run-time error ends its event, and nothing else.
        button.Click = [this] {
            Note("click")();
            throw RuntimeError(ErrorNumber::Overflow);
        };
        track.Click = Note("check");
        spin.UpClick = Note("step");
        calendar.NewMonth = Note("month");
        form.KeyDown = [this](auto&&...) { Note("key")(); };
    }

    // What an assistive program does to a widget.
    QAccessibleInterface& SpokenOf(const char* name) const {
        return *QAccessible::queryAccessibleInterface(&WidgetOf(name));
    }
    void Act(const char* name, const QString& action) const {
        SpokenOf(name).actionInterface()->doAction(action);
    }

    void GiveAll() const {
        Click("cmdButton");
        Key(Qt::Key_F1);
        Wheel("updTime", 120);
        Act("cmdButton", QAccessibleActionInterface::pressAction());
        Act("chkTrack", QAccessibleActionInterface::toggleAction());
        Act("Next month", QAccessibleActionInterface::pressAction());
    }
    static HandleRef Hold() { return TheDesktop().Loop().HoldInput(); }
};

TEST_F(InputTest, IsTakenRefusedOrHeldWhicheverWayItComes) {
    const std::string all = "click key step click check month ";
    const auto giveAll = [this] { GiveAll(); };
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

TEST_F(InputTest, PressAndReleaseAreRefusedAsOne) {
    track.MouseUp = [this](auto&&...) { Note("up")(); };
    auto& shown = WidgetOf<QAbstractButton>("cmdButton");
    shown.setFocus();
    const auto press = [this] { QTest::keyPress(Handle(), Qt::Key_Space); };
    const auto release = [this] { QTest::keyRelease(Handle(), Qt::Key_Space); };
    form.Enabled = false;
    press();
    for (const auto which : {Qt::LeftButton, Qt::RightButton}) Press(PlaceOf("chkTrack"), which);
    form.Enabled = true;
    release();
    for (const auto which : {Qt::LeftButton, Qt::RightButton}) Release(PlaceOf("chkTrack"), which);
    EXPECT_EQ(log, "");
    press();
    EXPECT_TRUE(shown.isDown());
    form.Enabled = false;
    EXPECT_FALSE(shown.isDown()) << "nothing stays pressed on a form that is disabled";
    form.Enabled = true;
    release();
    EXPECT_EQ(log, "");
    press(), release();
    EXPECT_EQ(log, "click ");
}

TEST_F(InputTest, ABoxShowsWhatTheModelSays) {
    track.Click = [this] {
        Note("check")();
        if (track.Value() == 1) track.SetValue(0);
    };
    Click("chkTrack");
    EXPECT_EQ(log, "check check ");
    EXPECT_FALSE(WidgetOf<QAbstractButton>("chkTrack").isChecked());
}

TEST_F(InputTest, ATextIsChangedOnlyWhereTheOperatorMay) {
    auto& text = *SpokenOf("txtMinute").editableTextInterface();
    const auto shown = [this] {
        EXPECT_EQ(FromQt(WidgetOf<QLineEdit>("txtMinute").text()), minute.Text());
        return ToUtf8(minute.Text());
    };
    minute.SetSelStart(2);
    text.replaceText(0, 2, QStringLiteral("99"));  // which leaves the cursor where it is
    EXPECT_EQ(shown(), "00") << "locked";
    minute.Locked = false;
    form.Enabled = false;
    text.insertText(0, QStringLiteral("9"));
    EXPECT_EQ(shown(), "00") << "disabled";
    form.Enabled = true;
    HandleRef hold = Hold();
    text.insertText(0, QStringLiteral("9"));
    EXPECT_EQ(shown(), "00") << "a call is out";
    hold.reset();
    EXPECT_TRUE(Until([&] { return shown() == "900"; }));
    WidgetOf("txtMinute").setFocus();
    for (const auto key : {Qt::Key_End, Qt::Key_1, Qt::Key_Home, Qt::Key_2}) Key(key);
    EXPECT_EQ(shown(), "29001");
    EXPECT_EQ(minute.SelStart(), 1);
}

TEST_F(InputTest, FocusGoesAwayFromADisabledControlButNotToABox) {
    minute.GotFocus = [this] {
        Note("+minute")();
        minute.SetSelStart(0);
        minute.SetSelLength(2);
    };
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
    const auto away = [this](auto&&...) {
        Note("away")();
        TakeAway();
    };
    const Table<std::function<void()>, const char*, Qt::Key> cases = {
        {[&] { button.Click = away; }, "cmdButton", {}},
        {[&] { track.Click = away; }, "chkTrack", {}},
        {[&] { image.MouseUp = away; }, "imgBack", {}},
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
        WidgetOf("chkTrack").setFocus();
        log.clear();
        if (key) {
            WidgetOf(widget).setFocus();
            QTest::keyPress(Handle(), key);
        } else {
            Click(widget);
        }
        Settle();
        EXPECT_TRUE(log.ends_with("away unloaded ")) << log << widget << " " << key;
        EXPECT_EQ(Window(), nullptr) << widget << " " << key;
    }
}

// The arrow of a spin control, and one of the calendar, each with a place beside it.
class HeldArrowTest : public FormTest {
  protected:
    HeldArrowTest() {
        SetStep([] {});
    }
    void SetStep(const std::function<void()>& act) {
        spin.UpClick = calendar.NewMonth = [this, act] {
            Note("step")();
            act();
        };
    }
    std::pair<QPoint, QPoint> Arrows(int which) const {
        const QPoint spinArrow = PlaceOf("updTime"), half(0, 6);
        return which == 0 ? std::pair(spinArrow - half, spinArrow + half)
                          : std::pair(PlaceOf("Next month"), PlaceOf("Previous month"));
    }
};

TEST_F(HeldArrowTest, StepsUntilTheReleaseAndPausesOutside) {
    for (const int which : {0, 1}) {
        const auto [arrow, beside] = Arrows(which);
        EXPECT_EQ(After([&] { Press(arrow); }), "step ") << "the first step waits for nothing";
        PointAt(beside);
        Settle(longerThanAStep);
        EXPECT_EQ(log, "step ");
        PointAt(arrow);
        EXPECT_TRUE(Until([this] { return log.starts_with("step step step "); }));
        Release(arrow);
        EXPECT_EQ(After([] { Settle(longerThanAStep); }), "");
    }
}

TEST_F(HeldArrowTest, HoldingEndsWithWhatAHandlerDoes) {
    const auto answerLate = [](QWidget& box) {
        Settle(longerThanAStep);
        PressReturn(box);
    };
    const std::function<void()> acts[] = {[&] { ShowBox(answerLate); }, [this] { EnableControls(false); },
                                          [this] { form.Enabled = false; }, [this] { form.Hide(); }};
    for (const int which : {0, 1})
        for (const auto& act : acts) {
            SetStep(act);
            const QPoint arrow = Arrows(which).first;
            Press(arrow);
            Settle(longerThanAStep);
            EnableControls(true);
            form.Enabled = true;
            form.Show();
            Release(arrow);
            EXPECT_EQ(std::exchange(log, ""), "step ");
        }
}

}  // namespace
}  // namespace platform
