#include <QAbstractButton>
#include <QLineEdit>

#include "QtFixture.h"

namespace platform {
namespace {

class FormViewTest : public FormTest {
  protected:
    void SetUp() override {
        form.Unloaded = [this] { log += "unloaded "; };
        // A run-time error ends its event, and nothing else.
        button.Click = [this] {
            log += "click ";
            throw RuntimeError(ErrorNumber::Overflow);
        };
        minute.GotFocus = [this] {
            log += "+minute ";
            minute.SetSelStart(0);
            minute.SetSelLength(2);
        };
        minute.LostFocus = [this] { log += "-minute "; };
    }

    void Show() {
        FormTest::Show();
        WidgetOf("chkTrack").setFocus();
        log.clear();
    }
};

TEST_F(FormViewTest, ClickReachesAnEnabledButtonOfAnEnabledForm) {
    Show();
    Click("cmdButton");
    EXPECT_EQ(log, "click ");
    form.Enabled = false;
    Click("cmdButton");
    Key(Qt::Key_Space);
    EXPECT_EQ(log, "click ");
    EXPECT_TRUE(WidgetOf("cmdButton").isEnabled()) << "the look of a refusing form changed";
    form.Enabled = true;
    button.Enabled = false;
    Click("cmdButton");
    EXPECT_EQ(log, "click +minute ") << "no click, but the focus went on";
}

TEST_F(FormViewTest, CheckBoxFollowsAModelThatRefuses) {
    track.Click = [&] {
        log += "check ";
        if (track.Value() == 1) track.SetValue(0);
    };
    Show();
    Click("chkTrack");
    EXPECT_EQ(log, "check check ");
    EXPECT_FALSE(static_cast<QAbstractButton&>(WidgetOf("chkTrack")).isChecked());
}

TEST_F(FormViewTest, CloseUnloadsUnlessRefused) {
    Show();
    QWindow* window = Handle();
    form.Enabled = false;
    window->close();
    EXPECT_TRUE(form.IsLoaded());
    form.Enabled = true;
    form.Unloading = [](bool& cancel) { cancel = true; };
    window->close();
    EXPECT_TRUE(form.IsLoaded());
    EXPECT_TRUE(Window()->isVisible());
    form.Unloading = nullptr;
    window->close();
    EXPECT_EQ(log, "unloaded ");
    Settle();
    EXPECT_EQ(Window(), nullptr);
}

TEST_F(FormViewTest, FocusGoesAwayFromADisabledControlButNotToABox) {
    Show();
    WidgetOf("txtMinute").setFocus();
    ShowBox(PressReturn);
    form.SetFocus();
    ASSERT_TRUE(Until([this] { return Window()->isActiveWindow(); }));
    EXPECT_EQ(log, "+minute ");
    EXPECT_EQ(static_cast<QLineEdit&>(WidgetOf("txtMinute")).selectedText().toStdString(), "00");
    minute.Enabled = false;
    EXPECT_EQ(log, "+minute -minute ");
}

TEST_F(FormViewTest, EventsMayTakeTheFormAway) {
    const auto away = [this](auto&&...) {
        log += "away ";
        TakeAway();
    };
    const struct {
        std::function<void()> handle;
        const char* widget;
        Qt::Key key = Qt::Key_unknown;  // a click otherwise
    } cases[] = {
        {[&] { button.Click = away; }, "cmdButton"},
        {[&] { track.Click = away; }, "chkTrack"},
        {[&] { image.MouseUp = away; }, "imgBack"},
        {[&] { calendar.AfterUpdate = away; }, "Calendar"},
        {[] {}, "Calendar", Qt::Key_Right},
        {[&] { calendar.NewMonth = away; }, "Next month"},
        {[&] { minute.GotFocus = away; }, "txtMinute"},
        // The button has a handler too, but doesn't see the key any more.
        {[&] { form.KeyDown = away; }, "cmdButton", Qt::Key_Return},
    };
    for (const auto& [handle, widget, key] : cases) {
        handle();
        Show();
        if (key == Qt::Key_unknown) {
            Click(widget);
        } else {
            WidgetOf(widget).setFocus();
            QTest::keyPress(Handle(), key);
        }
        Settle();
        EXPECT_EQ(log, "away unloaded ") << widget << " " << key;
        EXPECT_EQ(Window(), nullptr) << widget << " " << key;
    }
}

}  // namespace
}  // namespace platform
