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

// Runs `act` on the next box that comes up.
HandleRef WhenBoxOpens(std::function<void(QWidget& box)> act);

// A form that shows one control of each kind.
struct SampleForm {
    SampleForm();

    // The window of the form, and the widget of a control by its object name.
    QWidget* Window() const;
    QWidget& WidgetOf(const char* name) const;
    // Presses and releases a mouse button in the middle of a widget, by way of the window.
    void Click(const char* name, Qt::MouseButton pressed = Qt::LeftButton) const;

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
    forms::Timer& timer = form.Add<forms::Timer>(u"tmrClock");
};

}  // namespace platform
