// One desktop for all tests of a process, and forms to try on it.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QTest>
#include <QWindow>
#include <cstdlib>
#include <functional>

#include "harness/Cases.h"
#include "platform/data/sqlite/SqliteEngine.h"
#include "platform/qt/QtDesktop.h"
#include "platform/qt/QtText.h"

namespace platform {

using namespace std::chrono_literals;

// Opens the desktop ahead of all tests, and closes it while the libraries that it uses are still there.
struct Surroundings : ::testing::Environment {
    void SetUp() override {
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        setenv("LC_ALL", "C.UTF-8", 1);
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

// Serves the loop until the condition holds, or the time is over. The result is the condition's.
inline bool Until(const std::function<bool()>& condition, Milliseconds limit = 10s) {
    EventLoop& loop = TheDesktop().Loop();
    bool over = false;
    const HandleRef end = loop.After(limit, [&] { over = true; }), step = loop.Every(5ms, [] {});
    while (!condition() && !over) loop.ServeOnce();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return condition();
}

// Serves what is due now, and in the time.
inline void Settle(Milliseconds time = 0ms) {
    Until([] { return false; }, time);
}

// Runs `act` on the next box that comes up.
inline HandleRef WhenBoxOpens(std::function<void(QWidget& box)> act) {
    return TheDesktop().Loop().Every(5ms, [act = std::move(act), done = false]() mutable {
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

// A key by way of a window.
inline void PressKey(const QWidget& window, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(window.windowHandle(), key, modifiers);
}
inline const auto PressReturn = [](const QWidget& box) { PressKey(box, Qt::Key_Return); };
inline const auto PressEscape = [](const QWidget& box) { PressKey(box, Qt::Key_Escape); };

// A window of the program that can be seen.
inline QWidget* WindowCalled(const char* name) {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible() && window->objectName() == QLatin1String(name)) return window;
    return nullptr;
}

// A form that shows one control of each kind that takes input, and has the keyboard.
struct FormTest : ::testing::Test {
    // A handler that notes its call.
    auto Note(const char* what) {
        return [this, what](auto&&...) { log.append(what).append(" "); };
    }
    FormTest() {
        form.Move(1500, 1200);
        form.Width = 6000, form.Height = 4500;
        button.Place(150, 150, 975, 375);
        minute.Place(1500, 150, 210, 195);
        track.Place(3000, 150, 195, 240);
        spin.Place(3750, 150, 225, 345);
        calendar.Place(150, 900, 3375, 2895);
        minute.Locked = true, minute.Border = false, minute.Text = u"00";
        // A run-time error ends its event, and nothing else.
        button.Click = [this] {
            Note("click")();
            throw RuntimeError(ErrorNumber::Overflow);
        };
        track.Click = Note("check");
        spin.UpClick = Note("up");
        spin.DownClick = Note("down");
        calendar.NewMonth = Note("month");
        form.KeyDown = Note("key");
        form.Unloaded = Note("unloaded");
    }
    void SetUp() override { Show(); }
    void TearDown() override { TakeAway(); }

    void Show() {
        form.Show();
        ASSERT_TRUE(Until([this] { return Window()->isActiveWindow(); }));
    }
    // Unloads the form, and lets its window go.
    void TakeAway() { form.Unload(), Settle(); }

    void EnableControls(bool enabled) {
        for (const auto& control : form.Controls()) control->Enabled = enabled;
    }

    // The log of a step.
    std::string After(const std::function<void()>& step) { return log.clear(), step(), log; }

    // The window of the form, and a widget by its object name.
    QWidget* Window() const { return WindowCalled("dlgSample"); }
    QWindow* Handle() const { return Window()->windowHandle(); }
    template <class Type = QWidget>
    Type& WidgetOf(const char* name) const {
        return static_cast<Type&>(*Window()->findChild<QWidget*>(QLatin1String(name)));
    }
    // The middle of a widget, seen from the window.
    QPoint PlaceOf(const char* name) const {
        const QWidget& widget = WidgetOf(name);
        return widget.mapTo(Window(), widget.rect().center());
    }
    // Sends input to the window, which may be closed when a button is released.
    void Press(QPoint place, Qt::MouseButton pressed = Qt::LeftButton) const {
        QTest::mousePress(Handle(), pressed, {}, place);
    }
    void Release(QPoint place, Qt::MouseButton pressed = Qt::LeftButton) const {
        if (Window()) QTest::mouseRelease(Handle(), pressed, {}, place);
    }
    void Click(QPoint place, Qt::MouseButton pressed = Qt::LeftButton) const {
        Press(place, pressed);
        Release(place, pressed);
    }
    void Click(const char* name) const { Click(PlaceOf(name)); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const { PressKey(*Window(), key, modifiers); }

    forms::Form form{u"dlgSample", TheDesktop().Loop(), TheDesktop().Toolkit()};
    forms::CommandButton& button = form.Add<forms::CommandButton>(u"cmdButton");
    forms::TextBox& minute = form.Add<forms::TextBox>(u"txtMinute");
    forms::CheckBox& track = form.Add<forms::CheckBox>(u"chkTrack");
    forms::UpDown& spin = form.Add<forms::UpDown>(u"updTime");
    forms::Calendar& calendar = form.Add<forms::Calendar>(u"Calendar");
    std::string log;
};

}  // namespace platform
