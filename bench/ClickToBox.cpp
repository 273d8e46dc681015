// Measures from a click on the dialog to the resulting message box, with a host that answers at once. The
// floor is as many Pings, and a click to a box in a program without calls.
//
//   click-to-box RUNS TEXT-DIALOG
//
// Prints for each click, in milliseconds and without timer steps: click to painted box; as many Pings, and
// the other program's click to box; first call to end of last call; as many Pings.
#include "Display.h"
#include "Host.h"
#include "Measure.h"
#include "Program.h"

namespace {

using bench::Display;
using bench::Host;
using Clock = Display::Clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr Milliseconds timerSteps{2 * 100};          // the same in both programs
constexpr std::int16_t buttonX = 47, buttonY = 269;  // in both dialogs

// Serves the host until a condition of the display holds.
void Await(Host& host, Display& display, const std::function<bool()>& condition) {
    const auto look = [&] {
        display.Look();
        return condition();
    };
    host.ServeUntil(look, display.Descriptor());
}

xcb_window_t NextWindow(Host& host, Display& display) {
    std::optional<xcb_window_t> next;
    Await(host, display, [&] { return (next = display.TakePainted()).has_value(); });
    return *next;
}

// As many Pings as the lookup made calls, one after the other.
Milliseconds Pings(Host& host) {
    const auto start = Clock::now();
    for (int left = host.Calls(); left > 0; --left)
        Ask(host.Connection(), host.AddIn(), "org.freedesktop.DBus.Peer", "Ping");
    return Clock::now() - start;
}

Milliseconds FloorsWay(Host& host, Display& display, xcb_window_t window) {
    const auto click = display.Click(window, buttonX, buttonY);
    const xcb_window_t box = NextWindow(host, display);
    const Milliseconds way = display.PaintedAt(box) - click - timerSteps;
    Await(host, display, [&] { return !display.IsShown(box); });
    return way;
}

void MeasureLookup(Host& host, Display& display, xcb_window_t dialog, Milliseconds floorsWay) {
    host.ForgetCalls();
    const auto click = display.Click(dialog, buttonX, buttonY);
    host.ServeUntil([&] { return host.Calls() > 0; });
    const auto called = Clock::now();
    host.ServeUntil([&] { return host.OwesAnswer(); });
    host.AnswerRequest();
    const Milliseconds exchange = Clock::now() - called;
    const xcb_window_t box = NextWindow(host, display);
    const Milliseconds way = display.PaintedAt(box) - click - timerSteps;
    Await(host, display, [&] { return display.HasFocus(box); });
    display.PressEnter();
    Await(host, display, [&] { return !display.IsShown(box); });
    const Milliseconds pings = Pings(host);
    bench::PrintRun<4>({way.count(), (pings + floorsWay).count(), exchange.count(), pings.count()});
}

void MeasureLookups(int runs, char** textDialog) {
    Display display;
    Host host;
    const xcb_window_t dialog = NextWindow(host, display);
    const bench::Program floor(textDialog);
    const xcb_window_t floorsDialog = NextWindow(host, display);
    for (; runs > 0; --runs) MeasureLookup(host, display, dialog, FloorsWay(host, display, floorsDialog));
}

}  // namespace

int main(int, char** arguments) {
    return bench::Measure([&] { MeasureLookups(std::atoi(arguments[1]), arguments + 2); });
}
