// One desktop for all tests of a process, and forms to try on it.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QWidget>
#include <QWindow>
#include <functional>

#include "platform/desktop/qt/QtDesktop.h"

namespace platform {

QtDesktop& TheDesktop();

// What the desktop knows of its application.
Application& TheApplication();

// Serves the loop until the condition holds, ten seconds at most. The result is the condition's.
bool Until(const std::function<bool()>& condition);

// Serves what is due now.
void Settle();

// Longer than the pauses between the steps of an arrow that is held.
void WaitLongerThanAStep();

// Runs `act` on the next box that comes up.
HandleRef WhenBoxOpens(std::function<void(QWidget& box)> act);

// Shows a box and runs `act` on it. The result is the box's answer.
std::int16_t ShowBox(std::function<void(QWidget& box)> act,
                     const MessageBox& box = {u"Prompt", 0, {}, {}, 0});

// Enter, for a box that is to be closed.
void PressReturn(QWidget& box);

// A form that shows one control of each kind; it has the keyboard once it has been shown.
class FormTest : public ::testing::Test {
  protected:
    FormTest();
    void TearDown() override { TakeAway(); }

    void Show();
    // Unloads the form, and lets its window go.
    void TakeAway();

    // The window of the form, and the widget of a control by its object name.
    QWidget* Window() const;
    QWindow* Handle() const { return Window()->windowHandle(); }
    QWidget& WidgetOf(const char* name) const;
    // Input by way of the window: a click in the middle of a widget, and a key.
    void Click(const char* name, Qt::MouseButton pressed = Qt::LeftButton) const;
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const;

    forms::Form form{u"dlgSample", TheDesktop().Loop(), TheDesktop().Toolkit()};
    forms::Label& frame = form.Add<forms::Label>(u"lblFrame");
    forms::CommandButton& button = form.Add<forms::CommandButton>(u"cmdButton");
    forms::TextBox& minute = form.Add<forms::TextBox>(u"txtMinute");
    forms::TextBox& half = form.Add<forms::TextBox>(u"txtHalf");
    forms::CheckBox& track = form.Add<forms::CheckBox>(u"chkTrack");
    forms::UpDown& spin = form.Add<forms::UpDown>(u"updTime");
    forms::Calendar& calendar = form.Add<forms::Calendar>(u"Calendar");
    forms::Image& image = form.Add<forms::Image>(u"imgBack");
    forms::Menu& menu = form.Add<forms::Menu>(u"mnuWhatsThis");
    forms::Menu& item = form.Add<forms::Menu>(u"itmWhatsThis");
    forms::Menu& blank = form.Add<forms::Menu>(u"itmBlank");
    std::string log;
};

}  // namespace platform
