// One desktop for all tests of a process, and forms to try on it.
#pragma once

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <QWidget>
#include <QWindow>
#include <cstdlib>
#include <functional>

#include "platform/data/sqlite/SqliteEngine.h"
#include "platform/desktop/qt/QtDesktop.h"

namespace platform {

// Opens the desktop ahead of all tests, and closes it while the libraries that it stands on are still there.
struct Surroundings : ::testing::Environment {
    void SetUp() override {
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        setenv("LC_ALL", "C.UTF-8", 1);
        setenv("TZ", "UTC", 1);
        application.title = u"Default title";
        desktop = OpenDesktop(count, values, application, *engine);
    }
    void TearDown() override { desktop.reset(); }

    char program[9] = "qt_tests";
    char* values[2] = {program, nullptr};
    int count = 1;
    Application application;
    const std::unique_ptr<DatabaseEngine> engine = MakeSqliteEngine();
    std::unique_ptr<QtDesktop> desktop;
};

inline auto& surroundings =
    static_cast<Surroundings&>(*::testing::AddGlobalTestEnvironment(new Surroundings));

inline QtDesktop& TheDesktop() {
    return *surroundings.desktop;
}

// Serves the loop until the condition holds, ten seconds at most. The result is the condition's.
inline bool Until(const std::function<bool()>& condition) {
    EventLoop& loop = TheDesktop().Loop();
    bool over = false;
    const HandleRef end = loop.After(Milliseconds(10000), [&] { over = true; });
    const HandleRef step = loop.Every(Milliseconds(5), [] {});
    while (!condition() && !over) loop.ServeOnce();
    return condition();
}

inline void ServeFor(Milliseconds time) {
    bool over = false;
    const HandleRef end = TheDesktop().Loop().After(time, [&] { over = true; });
    Until([&] { return over; });
}

// Serves what is due now.
inline void Settle() {
    ServeFor(Milliseconds(0));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Longer than the pauses between the steps of an arrow that is held.
inline void WaitLongerThanAStep() {
    ServeFor(Milliseconds(600));
}

// Runs `act` on the next box that comes up.
inline HandleRef WhenBoxOpens(std::function<void(QWidget& box)> act) {
    return TheDesktop().Loop().Every(Milliseconds(5), [act = std::move(act), done = false]() mutable {
        QWidget* box = QApplication::activeModalWidget();
        if (done || !box || !box->isVisible() || !box->isActiveWindow()) return;
        done = true;
        act(*box);
    });
}

// Shows a box and runs `act` on it. The result is the box's answer.
inline std::int16_t ShowBox(std::function<void(QWidget& box)> act,
                            const MessageBox& box = {u"Prompt", 0, {}, {}, 0}) {
    const HandleRef acting = WhenBoxOpens(std::move(act));
    return TheDesktop().Boxes().Show(box);
}

// Enter, for a box that is to be closed.
inline void PressReturn(QWidget& box) {
    QTest::keyClick(box.windowHandle(), Qt::Key_Return);
}

// A window of the program that can be seen.
inline QWidget* WindowCalled(const char* name) {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible() && window->objectName() == QLatin1String(name)) return window;
    return nullptr;
}

// A form that shows one control of each kind that takes input; it has the keyboard once it has been shown.
class FormTest : public ::testing::Test {
  protected:
    FormTest() {
        form.Left = 1500;
        form.Top = 1200;
        form.Width = 6000;
        form.Height = 4500;
        button.Place(150, 150, 975, 375);
        minute.Place(1500, 150, 210, 195);
        track.Place(3000, 150, 195, 240);
        spin.Place(3750, 150, 225, 345);
        calendar.Place(150, 900, 3375, 2895);
        image.Place(3900, 900, 750, 750);
        minute.Locked = true;
        minute.Border = false;
        minute.Text = u"00";
    }
    void TearDown() override { TakeAway(); }

    void Show() {
        form.Show();
        ASSERT_TRUE(Until([this] { return Window()->isActiveWindow(); }));
    }
    // Unloads the form, and lets its window go.
    void TakeAway() {
        form.Unload();
        Settle();
    }

    // The window of the form, and the widget of a control by its object name.
    QWidget* Window() const { return WindowCalled("dlgSample"); }
    QWindow* Handle() const { return Window()->windowHandle(); }
    QWidget& WidgetOf(const char* name) const { return *Window()->findChild<QWidget*>(QLatin1String(name)); }
    // Input by way of the window: a click in the middle of a widget, and a key.
    void Click(const char* name) const {
        const QWidget& widget = WidgetOf(name);
        QTest::mouseClick(Handle(), Qt::LeftButton, {}, widget.mapTo(Window(), widget.rect().center()));
    }
    // What an assistive program does to a widget, past all events of the window.
    QAccessibleInterface& SpokenOf(const char* name) const {
        return *QAccessible::queryAccessibleInterface(&WidgetOf(name));
    }
    void Act(const char* name, const QString& action) const {
        SpokenOf(name).actionInterface()->doAction(action);
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(Handle(), key, modifiers);
    }

    forms::Form form{u"dlgSample", TheDesktop().Loop(), TheDesktop().Toolkit()};
    forms::CommandButton& button = form.Add<forms::CommandButton>(u"cmdButton");
    forms::TextBox& minute = form.Add<forms::TextBox>(u"txtMinute");
    forms::CheckBox& track = form.Add<forms::CheckBox>(u"chkTrack");
    forms::UpDown& spin = form.Add<forms::UpDown>(u"updTime");
    forms::Calendar& calendar = form.Add<forms::Calendar>(u"Calendar");
    forms::Image& image = form.Add<forms::Image>(u"imgBack");
    std::string log;
};

}  // namespace platform
